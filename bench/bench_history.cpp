// Ten thousand rows of history in the queue view: how long the engine takes to put them back,
// how long the first screen of them takes to draw, how long each frame takes while the list is
// scrolled from top to bottom a screen at a time, what they cost in memory, how long each
// keystroke of a search through them takes, and how long "清除已完成" takes over them. Each frame
// is rendered whole and synchronously (grabWindow) with the software renderer, so a frame's time
// is everything the window does for it.

#include "benchsupport.h"
#include "history.h"

#include "app/qmlsetup.h"
#include "engine/downloadmanager.h"

#include <QElapsedTimer>
#include <QGuiApplication>
#include <QImage>
#include <QQmlApplicationEngine>
#include <QQuickItem>
#include <QQuickWindow>

#include <algorithm>

using namespace Qt::StringLiterals;
using namespace bench;

namespace {
double msSince(const QElapsedTimer &timer)
{
    return double(timer.nsecsElapsed()) / 1e6;
}
} // namespace

int main(int argc, char **argv)
{
    qputenv("QT_QUICK_BACKEND", "software");
    // No display needed: every frame is rendered into an image.
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM"))
        qputenv("QT_QPA_PLATFORM", "offscreen");
    QGuiApplication app(argc, argv);
    return run("bench_history", [&] {
        const bool quick = shortMode(argc, argv);
        const int rows = intOption(argc, argv, "rows", quick ? 1000 : 10000);
        Sandbox sandbox;
        // No tool is looked for: nothing here downloads.
        DownloadManager::deferDiscovery();
        DownloadManager *downloads = DownloadManager::instance();

        QQmlApplicationEngine qml;
        setupQmlEngine(qml);
        qml.loadData(R"(import QtQuick
            import Quillbox
            Window { width: 560; height: 800; visible: true; color: Theme.background
                DownloadQueueView { anchors.fill: parent } })");
        if (qml.rootObjects().isEmpty())
            fail(u"the queue view did not load"_s);
        auto *window = qobject_cast<QQuickWindow *>(qml.rootObjects().constFirst());
        auto *list = window ? window->findChild<QQuickItem *>(u"taskList"_s) : nullptr;
        if (!list)
            fail(u"the queue view has no task list"_s);
        window->grabWindow();
        spin(200);

        say(u"bench_history: %1 rows of history, a %2×%3 window, software rendering%4"_s.arg(QString::number(rows),
            QString::number(window->width()), QString::number(window->height()),
            quick ? u", short mode"_s : QString()));
        const QList<StoredTask> history = historyRows(rows);
        const qint64 rssBefore = rssKiB();
        QElapsedTimer timer;
        timer.start();
        downloads->restoreTasks(history);
        const double restoreMs = msSince(timer);
        timer.restart();
        window->grabWindow();
        const double firstScreenMs = msSince(timer);
        if (downloads->taskModel()->count() != rows)
            fail(u"%1 rows restored, not %2"_s.arg(downloads->taskModel()->count()).arg(rows));

        const double viewport = list->height();
        QList<double> frames;
        for (;;) {
            const double bottom = list->property("contentHeight").toDouble() - viewport;
            const double y = list->property("contentY").toDouble();
            if (y >= bottom - 1)
                break;
            list->setProperty("contentY", std::min(bottom, y + viewport));
            timer.restart();
            window->grabWindow();
            frames << msSince(timer);
        }
        const qint64 rssAfter = rssKiB();
        const double median = percentile(frames, 0.5);
        const double p95 = percentile(frames, 0.95);
        const double slowest = frames.isEmpty() ? 0 : *std::max_element(frames.cbegin(), frames.cend());
        say(u"  restore into the engine: %1 ms; first screen drawn in %2 ms"_s.arg(
            number(restoreMs, 1), number(firstScreenMs, 1)));
        say(u"  scrolled a screen at a time to the end: %1 frames, median %2 ms, 95th percentile %3 ms, slowest "
            "%4 ms (a 60 Hz frame is 16.7 ms)"_s.arg(
                QString::number(frames.size()), number(median, 1), number(p95, 1), number(slowest, 1)));
        say(u"  memory: +%1 MiB for the rows and their screens (%2 KiB a row)"_s.arg(
            number(mib(rssAfter - rssBefore)), number(double(rssAfter - rssBefore) / rows, 2)));

        // The queue's search, typed as a person would type it: each keystroke filters every row.
        auto *search = window->findChild<QQuickItem *>(u"queueSearch"_s);
        auto *shown = window->findChild<QObject *>(u"queueFilter"_s);
        if (!search || !shown)
            fail(u"the queue view has no search"_s);
        QList<double> keystrokes;
        QString typed;
        for (const QChar key : u"第 77"_s) {
            typed += key;
            timer.restart();
            search->setProperty("text", typed);
            window->grabWindow();
            keystrokes << msSince(timer);
        }
        const int found = shown->property("count").toInt();
        timer.restart();
        search->setProperty("text", QString());
        window->grabWindow();
        const double clearSearchMs = msSince(timer);
        if (shown->property("count").toInt() != rows)
            fail(u"the search, cleared, shows %1 rows, not %2"_s.arg(shown->property("count").toInt()).arg(rows));
        const double slowestKey = *std::max_element(keystrokes.cbegin(), keystrokes.cend());
        say(u"  search \"第 77\", a key at a time: slowest keystroke %1 ms (filtered and drawn), %2 rows found; "
            "cleared in %3 ms"_s.arg(number(slowestKey, 1), QString::number(found), number(clearSearchMs, 1)));

        timer.restart();
        downloads->clearCompleted();
        const double clearMs = msSince(timer);
        timer.restart();
        window->grabWindow();
        const double afterClearMs = msSince(timer);
        say(u"  \"清除已完成\": %1 ms, and %2 ms to draw what is left (%3 rows)"_s.arg(
            number(clearMs, 1), number(afterClearMs, 1), QString::number(downloads->taskModel()->count())));
        writeResult("bench_history",
            {
                { u"rows"_s, QString::number(rows) },
                { u"restore_ms"_s, number(restoreMs, 1) },
                { u"first_screen_ms"_s, number(firstScreenMs, 1) },
                { u"frames"_s, QString::number(frames.size()) },
                { u"frame_median_ms"_s, number(median, 1) },
                { u"frame_p95_ms"_s, number(p95, 1) },
                { u"frame_max_ms"_s, number(slowest, 1) },
                { u"rss_delta_mib"_s, number(mib(rssAfter - rssBefore)) },
                { u"clear_ms"_s, number(clearMs, 1) },
                { u"search_key_max_ms"_s, number(slowestKey, 1) },
                { u"search_clear_ms"_s, number(clearSearchMs, 1) },
            });
        return 0;
    });
}
