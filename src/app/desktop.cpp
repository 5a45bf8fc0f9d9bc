#include "app/desktop.h"

#include "app/buildinfo.h"

#include <QClipboard>
#include <QDesktopServices>
#include <QFileInfo>
#include <QFontDatabase>
#include <QGuiApplication>
#include <QKeySequence>
#include <QProcess>
#include <QStandardPaths>

using namespace Qt::StringLiterals;

void Desktop::openUrl(const QUrl &url)
{
    if (qEnvironmentVariableIsEmpty("QUILLBOX_NO_BROWSER"))
        QDesktopServices::openUrl(url);
    Q_EMIT urlOpened(url);
}

namespace {
// The desktop's own opener: "open" on macOS, "xdg-open" elsewhere, found on the PATH.
QString startOpener(const QStringList &arguments)
{
#ifdef Q_OS_MACOS
    const QString name = u"open"_s;
#else
    const QString name = u"xdg-open"_s;
#endif
    const QString program = QStandardPaths::findExecutable(name);
    if (program.isEmpty())
        return u"找不到用来打开文件的程序（%1）"_s.arg(name);
    if (!QProcess::startDetached(program, arguments))
        return u"无法启动 %1"_s.arg(name);
    return {};
}
} // namespace

QString Desktop::openFile(const QString &path)
{
    if (!QFileInfo(path).isFile())
        return u"文件已不存在：%1"_s.arg(path);
    return startOpener({ path });
}

QString Desktop::showInFolder(const QString &path)
{
    const QFileInfo file(path);
    if (!file.exists())
        return u"文件已不存在：%1"_s.arg(path);
#ifdef Q_OS_MACOS
    return startOpener({ u"-R"_s, file.absoluteFilePath() });
#else
    return startOpener({ file.absolutePath() });
#endif
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
