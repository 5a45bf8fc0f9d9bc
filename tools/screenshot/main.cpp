// Renders the real main window offscreen to a PNG, in a sandbox (its own home and settings), so
// the interface can be seen without a display:
//     quillbox_screenshot OUT.png [--yt-dlp PATH] [--scenario DIR] [--settings] [--wait MS]
//                         [--size WxH] [--log] [--tab N] [--stop N] [--select ROW]
//                         [--focus ROW] [--copied ROW] [--info ROW] [--setting KEY=VALUE]...
//                         [--custom-arguments TEXT] [--links TEXT] [--copy TEXT] [--click NAME]...
//                         [--show NAME]
// With --yt-dlp the window uses that yt-dlp; with --scenario it also starts the downloads listed
// in DIR/downloads.txt (one "URL" per line), so the queue shows tasks in their states; with
// --settings the settings sheet is open; --tab shows that sidebar entry's page (0 downloads,
// 1 presets, 2 cookies); each --setting is stored before the window reads its settings
// ("cookiePath=/tmp/c.txt"); --custom-arguments fills the custom preset's text and --links the
// links box (in a folder of the sandbox; "\\n" parts the links); --copy puts the text on the
// clipboard once the window is up, as another program would. Then, half-way
// through the wait, --stop stops the first N tasks, and a little later the queue's row ROW (from
// 0) is selected, has the keyboard focus as Tab gives it, shows that its link was copied, or has
// its video information opened in the sheet. Each --click presses the button of that object name,
// in order, a second apart from the first second on ("folderButton" opens the folder dialog,
// "listFormatsButton" the formats sheet); --show scrolls the view holding the item of that name
// until the item is at its top. The window is drawn the way the application would draw it here
// (RendererChoice); QT_QUICK_BACKEND=software, or the setting interfaceRenderer, chooses.

#include "app/applifecycle.h"
#include "app/cjkfont.h"
#include "app/interfacelanguage.h"
#include "app/qmlsetup.h"
#include "app/rendererchoice.h"
#include "engine/downloadmanager.h"
#include "model/appstate.h"
#include "store/queuememory.h"

#include <QClipboard>
#include <QCommandLineParser>
#include <QDir>
#include <QFile>
#include <QGuiApplication>
#include <QQmlApplicationEngine>
#include <QQmlExpression>
#include <QQuickItem>
#include <QQuickStyle>
#include <QQuickWindow>
#include <QSettings>
#include <QTemporaryDir>
#include <QTimer>
#include <QtQml/qqmlextensionplugin.h>

#include <cstdio>
#include <functional>

Q_IMPORT_QML_PLUGIN(QuillboxPlugin)

using namespace Qt::StringLiterals;

namespace {
// The item of that object name under `item`. Sheets (in the window's overlay) and their rows are
// items, not all QObject children.
QQuickItem *findItem(QQuickItem *item, const QString &name)
{
    if (item->objectName() == name)
        return item;
    for (QQuickItem *child : item->childItems()) {
        if (QQuickItem *found = findItem(child, name))
            return found;
    }
    return nullptr;
}

// Scrolls the nearest view around the item named `name` until the item is at its top, or the
// view at its end.
void scrollIntoView(QQuickWindow *window, const QString &name)
{
    QQuickItem *item = findItem(window->contentItem(), name);
    QQuickItem *view = item ? item->parentItem() : nullptr;
    while (view && view->metaObject()->indexOfProperty("contentY") < 0)
        view = view->parentItem();
    if (!view) {
        std::fprintf(stderr, "nothing scrolls %s into view\n", qPrintable(name));
        return;
    }
    auto *content = view->property("contentItem").value<QQuickItem *>();
    const qreal top = item->mapToItem(content, QPointF()).y();
    const qreal end = view->property("contentHeight").toReal() - view->height();
    view->setProperty("contentY", std::max<qreal>(0, std::min(top, end)));
}
} // namespace

int main(int argc, char *argv[])
{
    // Without a display nothing but the software scene graph can draw.
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM"))
        qputenv("QT_QPA_PLATFORM", "offscreen");
    if (qgetenv("QT_QPA_PLATFORM") == "offscreen" && qEnvironmentVariableIsEmpty("QT_QUICK_BACKEND"))
        qputenv("QT_QUICK_BACKEND", "software");

    QTemporaryDir sandbox;
    qputenv("HOME", QDir(sandbox.path()).filePath(u"home"_s).toUtf8());
    QDir(sandbox.path()).mkpath(u"home/Downloads"_s);
    // The store of the queue and the saved presets, which the presets page reads.
    qputenv("XDG_DATA_HOME", QDir(sandbox.path()).filePath(u"data"_s).toUtf8());
    qputenv("QUILLBOX_NO_BROWSER", "1");

    QGuiApplication app(argc, argv);
    QGuiApplication::setApplicationName(u"Quillbox"_s);
    QGuiApplication::setOrganizationName(u"Quillbox"_s);
    QSettings::setPath(QSettings::NativeFormat, QSettings::UserScope, sandbox.filePath(u"settings"_s));
    QSettings::setPath(QSettings::IniFormat, QSettings::UserScope, sandbox.filePath(u"settings"_s));

    QCommandLineParser parser;
    parser.addPositionalArgument(u"output"_s, u"PNG file to write"_s);
    const QCommandLineOption ytDlp(u"yt-dlp"_s, u"yt-dlp to use"_s, u"path"_s);
    const QCommandLineOption scenario(u"scenario"_s, u"folder with downloads.txt"_s, u"dir"_s);
    const QCommandLineOption wait(u"wait"_s, u"milliseconds to let the window settle"_s, u"ms"_s, u"2500"_s);
    const QCommandLineOption maxDownloads(u"max-downloads"_s, u"downloads at once"_s, u"n"_s, u"2"_s);
    const QCommandLineOption settings(u"settings"_s, u"open the settings sheet"_s);
    const QCommandLineOption size(u"size"_s, u"window size"_s, u"WxH"_s, u"1200x800"_s);
    const QCommandLineOption log(u"log"_s, u"open the log panel"_s);
    const QCommandLineOption tab(u"tab"_s, u"sidebar entry to show"_s, u"n"_s, u"0"_s);
    const QCommandLineOption stop(u"stop"_s, u"tasks to stop"_s, u"n"_s, u"0"_s);
    const QCommandLineOption select(u"select"_s, u"queue row to select"_s, u"row"_s);
    const QCommandLineOption focus(u"focus"_s, u"queue row to give the keyboard focus"_s, u"row"_s);
    const QCommandLineOption copied(u"copied"_s, u"queue row whose link was just copied"_s, u"row"_s);
    const QCommandLineOption info(u"info"_s, u"queue row whose video information to open"_s, u"row"_s);
    const QCommandLineOption click(u"click"_s, u"press the button of this object name"_s, u"name"_s);
    const QCommandLineOption show(u"show"_s, u"scroll the item of this object name into view"_s, u"name"_s);
    const QCommandLineOption setting(u"setting"_s, u"store a setting first"_s, u"key=value"_s);
    const QCommandLineOption links(u"links"_s, u"text for the links box (\\n between links)"_s, u"text"_s);
    const QCommandLineOption customArguments(u"custom-arguments"_s, u"the custom preset's text"_s, u"text"_s);
    const QCommandLineOption copy(u"copy"_s, u"text copied once the window is up (\\n between lines)"_s, u"text"_s);
    parser.addOptions({ links, copy });
    parser.addOptions({ ytDlp, scenario, wait, maxDownloads, settings, size, log, tab, stop, select, focus, copied,
        info, click, setting, customArguments, show });
    parser.addHelpOption();
    parser.process(app);
    if (parser.positionalArguments().size() != 1)
        parser.showHelp(2);
    const QString output = parser.positionalArguments().constFirst();

    for (const QString &pair : parser.values(setting))
        QSettings().setValue(pair.section(u'=', 0, 0), pair.section(u'=', 1));
    if (parser.isSet(ytDlp))
        QSettings().setValue(QLatin1String(DownloadManager::CustomYtDlpPathKey), parser.value(ytDlp));
    QQuickStyle::setStyle(u"Basic"_s);
    InterfaceLanguage::instance()->applyAtStart();
    RendererChoice::applyAtStart();
    preferCjkFont();

    AppLifecycle lifecycle(DownloadManager::instance());
    QQmlApplicationEngine engine;
    const std::unique_ptr<QQuickWindow> owner = loadMainWindow(engine);
    QQuickWindow *window = owner.get();
    if (!window)
        return 1;
    lifecycle.attachMainWindow(window);
    const QStringList extent = parser.value(size).split(u'x');
    window->setGeometry(0, 0, extent.value(0).toInt(), extent.value(1).toInt());
    AppState::instance()->setShowLogPanel(parser.isSet(log));
    AppState::instance()->setSelectedTab(parser.value(tab).toInt());
    if (parser.isSet(customArguments))
        AppState::instance()->setCustomArguments(parser.value(customArguments));

    if (parser.isSet(scenario)) {
        QFile list(QDir(parser.value(scenario)).filePath(u"downloads.txt"_s));
        if (list.open(QIODevice::ReadOnly)) {
            const QStringList urls = QString::fromUtf8(list.readAll()).split(u'\n', Qt::SkipEmptyParts);
            AppState::instance()->setUrlInput(urls.join(u'\n'));
            AppState::instance()->setSelectedPreset(DownloadPreset::BestVideoAudio);
            DownloadManager::instance()->setMaxConcurrentDownloads(parser.value(maxDownloads).toInt());
            DownloadOptions options;
            options.outputDir = QDir(sandbox.path()).filePath(u"home/Downloads"_s);
            options.useCookies = false;
            options.choices = AppState::instance()->downloadChoices(); // as --setting downloadOptions/… left them
            DownloadManager::instance()->startDownloads(urls, options);
        }
    }

    if (parser.isSet(links)) {
        AppState::instance()->setUrlInput(parser.value(links).replace(u"\\n"_s, u"\n"_s));
        AppState::instance()->setOutputDirectory(QDir(sandbox.path()).filePath(u"home/Downloads"_s));
    }
    if (parser.isSet(settings))
        AppState::instance()->setShowSettings(true);

    const int waitMs = parser.value(wait).toInt();
    if (parser.isSet(copy)) {
        QTimer::singleShot(waitMs / 4, &app,
            [text = parser.value(copy).replace(u"\\n"_s, u"\n"_s)] { QGuiApplication::clipboard()->setText(text); });
    }
    QTimer::singleShot(waitMs / 2, &app, [&] {
        const QList<DownloadTask> tasks = DownloadManager::instance()->tasks();
        for (qsizetype i = 0; i < std::min<qsizetype>(parser.value(stop).toInt(), tasks.size()); ++i)
            DownloadManager::instance()->stopDownload(tasks.at(i).id.toString());
    });
    QTimer::singleShot(waitMs * 3 / 4, &app, [&] {
        auto *queue = window->findChild<QQuickItem *>(u"downloadQueue"_s);
        auto *list = window->findChild<QQuickItem *>(u"taskList"_s);
        const auto rowAt = [list](const QString &row) {
            QQuickItem *item = nullptr;
            if (list)
                QMetaObject::invokeMethod(
                    list, "itemAtIndex", Q_RETURN_ARG(QQuickItem *, item), Q_ARG(int, row.toInt()));
            return item;
        };
        if (QQuickItem *row = parser.isSet(select) ? rowAt(parser.value(select)) : nullptr; row && queue)
            queue->setProperty("selectedTaskId", row->property("taskId"));
        if (QQuickItem *row = parser.isSet(focus) ? rowAt(parser.value(focus)) : nullptr)
            row->forceActiveFocus(Qt::TabFocusReason);
        if (QQuickItem *row = parser.isSet(copied) ? rowAt(parser.value(copied)) : nullptr)
            row->setProperty("linkCopied", true);
        auto *mainView = window->findChild<QQuickItem *>(u"mainView"_s);
        if (QQuickItem *row = parser.isSet(info) ? rowAt(parser.value(info)) : nullptr; row && mainView)
            QMetaObject::invokeMethod(mainView, "openVideoInfo", Q_ARG(QString, row->property("url").toString()));
        if (parser.isSet(show))
            scrollIntoView(window, parser.value(show));
    });

    const QStringList clicks = parser.values(click);
    for (qsizetype i = 0; i < clicks.size(); ++i) {
        QTimer::singleShot(1000 * int(i + 1), &app, [window, name = clicks.at(i)] {
            QQuickItem *button = findItem(window->contentItem(), name);
            if (!button || !QMetaObject::invokeMethod(button, "clicked"))
                std::fprintf(stderr, "no button named %s\n", qPrintable(name));
        });
    }

    int status = 0;
    QTimer::singleShot(waitMs, &app, [&] {
        const QImage image = window->grabWindow();
        if (image.isNull() || !image.save(output)) {
            std::fprintf(stderr, "could not write %s\n", qPrintable(output));
            status = 1;
        }
        // The scenario's downloads are still running: stopped first, quitting does not ask about them.
        DownloadManager::instance()->shutdown();
        app.quit();
    });
    app.exec();
    // The presets page opened the store; its thread ends before the process does.
    if (AppState::instance()->selectedTab() == 1)
        QueueMemory::instance()->close();
    return status;
}
