#include "views/desktop.h"

#include "app/buildinfo.h"

#include <QClipboard>
#include <QDesktopServices>
#include <QFontDatabase>
#include <QGuiApplication>
#include <QKeySequence>

void Desktop::openUrl(const QUrl &url)
{
    if (qEnvironmentVariableIsEmpty("QUILLBOX_NO_BROWSER"))
        QDesktopServices::openUrl(url);
    Q_EMIT urlOpened(url);
}

QString Desktop::clipboardText() const
{
    return QGuiApplication::clipboard()->text();
}

void Desktop::setClipboardText(const QString &text)
{
    QGuiApplication::clipboard()->setText(text);
}

QFont Desktop::fixedFont() const
{
    return QFontDatabase::systemFont(QFontDatabase::FixedFont);
}

QString Desktop::version() const
{
    return QString::fromLatin1(QuillboxVersion);
}

QUrl Desktop::homePage() const
{
    return QUrl(QString::fromLatin1(QuillboxHomePage));
}

QString Desktop::shortcutText(const QVariant &shortcut) const
{
    if (shortcut.typeId() == QMetaType::QString)
        return QKeySequence(shortcut.toString()).toString(QKeySequence::NativeText);
    bool isKey = false;
    const int standardKey = shortcut.toInt(&isKey);
    if (!isKey || standardKey == QKeySequence::UnknownKey)
        return QString();
    const QList<QKeySequence> bindings = QKeySequence::keyBindings(QKeySequence::StandardKey(standardKey));
    return bindings.isEmpty() ? QString() : bindings.constFirst().toString(QKeySequence::NativeText);
}
