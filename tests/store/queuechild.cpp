// A Quillbox engine with its queue store and nothing else, for a test to kill mid-download:
//   queuechild STORE YT_DLP FOLDER LINK...
// starts one download per link once the stored queue is read, and prints "downloading" when
// every one of them is downloading and has shown some progress.

#include "engine/downloadmanager.h"
#include "engine/shellrunner.h"
#include "model/appstate.h"
#include "store/queuememory.h"

#include <QCoreApplication>
#include <QDir>
#include <QTimer>

#include <algorithm>
#include <cstdio>

int main(int argc, char **argv)
{
    QCoreApplication app(argc, argv);
    const QStringList args = QCoreApplication::arguments();
    if (args.size() < 5) {
        std::fprintf(stderr, "usage: queuechild STORE YT_DLP FOLDER LINK...\n");
        return 2;
    }
    AppState state;
    ToolLocations locations;
    locations.home = QDir::homePath();
    locations.ytDlp = { args.at(2) };
    locations.runtimes = { { QStringLiteral("deno"), {} } };
    DownloadManager downloads(&state, locations);
    const QStringList links = args.mid(4);
    downloads.setMaxConcurrentDownloads(int(links.size()));
    QueueMemory memory(&downloads, &state, args.at(1));
    QObject::connect(&memory, &QueueMemory::restored, &downloads, [&] {
        DownloadOptions options;
        options.outputDir = args.at(3);
        options.useCookies = false;
        downloads.startDownloads(links, options);
    });
    memory.start();

    QTimer poll;
    QObject::connect(&poll, &QTimer::timeout, &downloads, [&] {
        const QList<DownloadTask> tasks = downloads.tasks();
        if (tasks.size() == links.size() && std::all_of(tasks.cbegin(), tasks.cend(), [](const DownloadTask &task) {
                return task.status == DownloadStatus::Downloading && task.progress > 0;
            })) {
            poll.stop();
            // Whoever kills this process can kill the groups' guardian too, to leave orphans.
            std::printf("guardian %lld\ndownloading\n", static_cast<long long>(GroupGuard::guardianPid()));
            std::fflush(stdout);
        }
    });
    poll.start(20);
    return app.exec();
}
