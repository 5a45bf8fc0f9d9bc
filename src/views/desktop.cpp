#include "views/desktop.h"

#include "app/buildinfo.h"

#include <QClipboard>
#include <QDesktopServices>
#include <QFontDatabase>
#include <QGuiApplication>

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
