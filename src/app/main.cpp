#include "app/applifecycle.h"
#include "app/buildinfo.h"
#include "app/cjkfont.h"
#include "app/commandline.h"
#include "app/firstframe.h"
#include "app/interfacelanguage.h"
#include "app/qmlsetup.h"
#include "app/rendererchoice.h"
#include "app/singleinstance.h"
#include "engine/downloadmanager.h"
#include "model/appstate.h"
#include "notify/notifier.h"
#include "store/queuememory.h"

#include <QGuiApplication>
#include <QIcon>
#include <QLockFile>
#include <QQmlApplicationEngine>
#include <QQuickStyle>
#include <QQuickWindow>
#include <QtQml/qqmlextensionplugin.h>

#include <cstdio>
#include <functional>

Q_IMPORT_QML_PLUGIN(QuillboxPlugin)

using namespace Qt::StringLiterals;

namespace {
// The names QSettings files the settings under.
void nameApplication()
{
    QCoreApplication::setApplicationName(QStringLiteral("Quillbox"));
    QCoreApplication::setOrganizationName(QStringLiteral("Quillbox"));
    QCoreApplication::setOrganizationDomain(QStringLiteral("quillbox.app"));
}

// Prints what `text` makes, in the interface's language, to `to`, and returns `code`: for the
// answers given before (or instead of) the window, by an application object of their own.
int say(int argc, char *argv[], std::FILE *to, const std::function<QString()> &text, int code)
{
    QCoreApplication core(argc, argv);
    nameApplication();
    InterfaceLanguage::instance()->applyAtStart();
    std::fputs(text().toLocal8Bit().constData(), to);
    return code;
}
} // namespace

int main(int argc, char *argv[])
{
    QStringList arguments;
    for (int i = 1; i < argc; ++i)
        arguments << QString::fromLocal8Bit(argv[i]);
    const CommandLine line = CommandLine::parse(arguments);
    switch (line.action) {
    case CommandLine::Action::Help:
        return say(argc, argv, stdout, &CommandLine::helpText, 0);
    case CommandLine::Action::Version:
        std::printf("Quillbox %s\n", QuillboxVersion);
        return 0;
    case CommandLine::Action::Refused:
        return say(
            argc, argv, stderr, [&arguments]() -> QString { return CommandLine::parse(arguments).error + u'\n'; }, 2);
    case CommandLine::Action::Run:
        break;
    }
    // A Quillbox already running takes the links and shows its window; this one is done.
    const Handover handover { line.start, line.texts,
        QString::fromUtf8(
            line.fromUrls ? QT_TRANSLATE_NOOP("Handover", "链接") : QT_TRANSLATE_NOOP("Handover", "命令行")) };
    QLockFile instanceLock(SingleInstance::lockPath());
    switch (SingleInstance::startOrHandOver(handover.encode(), instanceLock)) {
    case SingleInstance::Start::Run:
        break;
    case SingleInstance::Start::HandedOver:
        return 0;
    case SingleInstance::Start::Silent:
        return say(
            argc, argv, stderr,
            [] {
                return QCoreApplication::translate(
                    "CommandLine", "Quillbox 已在运行，但没有回应；链接已交给它，它恢复后会收到。\n");
            },
            1);
    case SingleInstance::Start::Busy:
        return say(
            argc, argv, stderr,
            [] {
                return QCoreApplication::translate(
                    "CommandLine", "另一个 Quillbox 正在启动，但没有回应；链接没有交出。\n");
            },
            1);
    }

    if (!AppLifecycle::checkDisplay())
        return 1;

    QGuiApplication app(argc, argv);
    nameApplication();
    // No display name: on X11 Qt would append it to every window title.
    QGuiApplication::setApplicationVersion(QString::fromLatin1(QuillboxVersion));
    // The desktop finds the launcher entry, and with it the icon, by this name.
    QGuiApplication::setDesktopFileName(QString::fromLatin1(QuillboxAppId));
    QIcon icon;
    for (const int size : { 16, 32, 48, 64, 128 })
        icon.addFile(QStringLiteral(":/icons/quillbox-%1.png").arg(size), QSize(size, size));
    QGuiApplication::setWindowIcon(icon);
    QQuickStyle::setStyle(QStringLiteral("Basic"));
    // Before the first window: software drawing where the machine's OpenGL is software anyway.
    RendererChoice::applyAtStart();
    AppLifecycle::quitOnTerminationSignals();
    InterfaceLanguage::instance()->applyAtStart();
    // On macOS the quillbox:// link that started Quillbox arrives as an event while the window is
    // still loading: kept until there is a window to take it.
    LinkOpenFilter opened;
    app.installEventFilter(&opened);
    QList<Handover> openedEarly;
    const QMetaObject::Connection keepEarly = QObject::connect(
        &opened, &LinkOpenFilter::received, &app, [&openedEarly](const Handover &given) { openedEarly << given; });

    DownloadManager::deferDiscovery();
    AppLifecycle lifecycle(DownloadManager::instance());
    QQmlApplicationEngine engine;
    // The installed fonts are read while the QML loads, before any text is laid out.
    const std::unique_ptr<QQuickWindow> window = loadMainWindow(engine, &preferCjkFont);
    if (!window)
        return 1;
    reportFirstFrame(window.get());
    lifecycle.startDiscoveryAfterFirstFrame(window.get());
    lifecycle.restoreQueueAfterFirstFrame(window.get(), QueueMemory::instance());
    QObject::connect(QueueMemory::instance(), &QueueMemory::restored, &reportMoment);
    lifecycle.attachMainWindow(window.get());
    // Later starts hand their links over here; this start's own go the same way.
    InstanceServer instance;
    const auto take = [window = window.get()](const Handover &given) {
        AppState::instance()->receiveLinks(given.texts, given.fromText(), given.start);
        window->show();
        window->raise();
        window->requestActivate();
    };
    QObject::connect(&instance, &InstanceServer::received, AppState::instance(), take);
    QObject::disconnect(keepEarly);
    QObject::connect(&opened, &LinkOpenFilter::received, AppState::instance(), take);
    QObject::connect(&instance, &InstanceServer::refused, AppState::instance(), [](const QString &why) {
        AppState::instance()->addLog(
            QCoreApplication::translate("InstanceServer", "已拒绝一个交给 Quillbox 链接的连接：%1").arg(why),
            LogEntry::LogType::Warning);
    });
    if (!instance.listen())
        qWarning("Quillbox: cannot listen for later starts: %s", qPrintable(instance.errorString()));
    if (!line.texts.isEmpty())
        AppState::instance()->receiveLinks(line.texts, handover.fromText(), line.start);
    for (const Handover &given : std::as_const(openedEarly))
        take(given);
    // Once the tools are known, the newest yt-dlp release is looked for (at most once a day).
    ToolKeeper *keeper = DownloadManager::instance()->keeper();
    QObject::connect(
        DownloadManager::instance()->tools(), &ToolDiscovery::ready, keeper, [keeper] { keeper->checkForUpdates(); });
    // A download that ends while another application is in front is announced on the desktop.
    const Notifier notifier(DownloadManager::instance()->taskModel(), AppState::instance(),
        [] { return QGuiApplication::applicationState() == Qt::ApplicationActive; });
    return app.exec();
}
