#include "app/desktop.h"

#include "app/buildinfo.h"

#include <QClipboard>
#include <QDesktopServices>
#include <QElapsedTimer>
#include <QFileInfo>
#include <QFontDatabase>
#include <QGuiApplication>
#include <QKeySequence>
#include <QProcess>
#include <QStandardPaths>
#include <QTemporaryFile>

#include <memory>

using namespace Qt::StringLiterals;

void Desktop::openUrl(const QUrl &url)
{
    if (qEnvironmentVariableIsEmpty("QUILLBOX_NO_BROWSER"))
        QDesktopServices::openUrl(url);
    Q_EMIT urlOpened(url);
}

namespace {
// An opener that has been running this long has handed the file to an application (xdg-open
// without a desktop environment waits for it); its exit no longer says whether opening worked.
constexpr int OpenerVerdictMs = 10000;
} // namespace

Desktop::~Desktop()
{
    // The openers still running wait for the application they started, which stays open.
    for (QProcess *opener : findChildren<QProcess *>()) {
        opener->disconnect(this);
        opener->kill();
        opener->waitForFinished(1000);
    }
}

QString Desktop::openerFailure(bool folder, int exitCode, const QString &output)
{
    const QStringList lines = output.split(u'\n', Qt::SkipEmptyParts);
    const QString said = lines.isEmpty() ? QString() : lines.constLast().trimmed().left(300);
    // xdg-open's "no method available" (status 3), macOS open's "No application knows how to open".
    const bool noHandler = exitCode == 3 || said.contains(u"no method available"_s, Qt::CaseInsensitive)
        || said.contains(u"No application knows"_s, Qt::CaseInsensitive);
    const QString reason = said.isEmpty() ? tr("退出码 %1").arg(exitCode) : said;
    if (noHandler)
        return (folder ? tr("没有可以打开此文件夹的程序（%1）") : tr("没有可以打开此文件的程序（%1）")).arg(reason);
    return (folder ? tr("无法打开此文件夹（%1）") : tr("无法打开此文件（%1）")).arg(reason);
}

// The desktop's own opener: "open" on macOS, "xdg-open" elsewhere, found on the PATH. Its error
// output goes to a file rather than a pipe: the application it starts inherits it, and may
// outlive both the opener and us.
QString Desktop::startOpener(const QString &path, bool folder, const QStringList &arguments)
{
#ifdef Q_OS_MACOS
    const QString name = u"open"_s;
#else
    const QString name = u"xdg-open"_s;
#endif
    const QString program = QStandardPaths::findExecutable(name);
    if (program.isEmpty())
        return tr("找不到用来打开文件的程序（%1）").arg(name);
    auto errors = std::make_shared<QTemporaryFile>();
    if (!errors->open())
        return tr("无法启动 %1：临时文件夹不可写").arg(name);
    auto *opener = new QProcess(this);
    opener->setProgram(program);
    opener->setArguments(arguments);
    opener->setStandardInputFile(QProcess::nullDevice());
    opener->setStandardOutputFile(QProcess::nullDevice());
    opener->setStandardErrorFile(errors->fileName());
    QElapsedTimer clock;
    clock.start();
    connect(opener, &QProcess::finished, this,
        [this, opener, errors, clock, path, folder](int exitCode, QProcess::ExitStatus status) {
            opener->deleteLater();
            if ((status == QProcess::NormalExit && exitCode == 0) || clock.elapsed() > OpenerVerdictMs)
                return;
            errors->seek(0);
            const QString output = QString::fromUtf8(errors->read(16384));
            Q_EMIT openFailed(path, openerFailure(folder, status == QProcess::NormalExit ? exitCode : -1, output));
        });
    opener->start();
    if (!opener->waitForStarted()) {
        delete opener;
        return tr("无法启动 %1").arg(name);
    }
    return {};
}

QString Desktop::openFile(const QString &path)
{
    if (!QFileInfo(path).isFile())
        return tr("文件已不存在：%1").arg(path);
    return startOpener(path, false, { path });
}

QString Desktop::showInFolder(const QString &path)
{
    const QFileInfo file(path);
    const QString folder = file.absolutePath();
    if (!QFileInfo(folder).isDir())
        return tr("文件夹已不存在：%1").arg(folder);
#ifdef Q_OS_MACOS
    if (file.exists())
        return startOpener(path, true, { u"-R"_s, file.absoluteFilePath() });
#endif
    return startOpener(path, true, { folder });
}

bool Desktop::seesBackgroundCopies()
{
    return QGuiApplication::platformName() != u"wayland";
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
