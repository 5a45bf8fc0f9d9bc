#include "enginefixture.h"
#include "support/mediaserver.h"
#include "support/mediatools.h"
#include "views/presenters/inputpresenter.h"

#include <QElapsedTimer>

using namespace Qt::StringLiterals;

// Playlists with the real yt-dlp against RSS feeds on 127.0.0.1, through the input pane as a user
// starts them: the picker lists a feed, the picked items are downloaded each alone into the
// playlist's folder, a video's link that names a list is asked about, and links that cannot be
// listed are downloaded as they are. Runs once with Debian's yt-dlp and once with the current one.
class TestPlaylistEndToEnd : public QObject
{
    Q_OBJECT

public:
    // `ytDlp` is empty when this one is not here.
    TestPlaylistEndToEnd(const QString &name, const QString &ytDlp)
        : m_name(name)
        , m_ytDlp(ytDlp)
    {
    }

private Q_SLOTS:
    void initTestCase();
    void cleanupTestCase() { m_engine.reset(); }
    void picksThreeOfAThousand();
    void videoLinkWithAList();
    void unlistableLinkIsOneTask_data();
    void unlistableLinkIsOneTask();

private:
    // A presenter whose form holds `path` on the media server, the playlist switch on.
    std::unique_ptr<InputPresenter> presenterFor(const QString &path, const QString &folder) const;
    // The tasks queued since the queue held `before`, once every task has ended.
    QList<DownloadTask> settledSince(qsizetype before) const;
    QStringList logSince(qsizetype before) const { return m_engine->log().sliced(before); }
    QByteArray lastWords() const
    {
        return logSince(std::max<qsizetype>(0, m_engine->log().size() - 8)).join(u'\n').toUtf8();
    }

    QString m_name;
    QString m_ytDlp;
    QTemporaryDir m_media;
    std::unique_ptr<MediaServer> m_server;
    QString m_base; // "http://127.0.0.1:PORT/"
    std::unique_ptr<SandboxEngine> m_engine;
};

namespace {
using namespace MediaTools;
const QString fellBack = u"⚠️ 无法列出播放列表中的视频"_s;
} // namespace

void TestPlaylistEndToEnd::initTestCase()
{
    if (m_ytDlp.isEmpty())
        QSKIP(qPrintable(m_name + u" yt-dlp is not here (/usr/bin/yt-dlp, ../shared/tools/yt-dlp/yt-dlp)"_s));
    for (const QString &tool : { ffmpeg, ffprobe }) {
        if (!QFileInfo(tool).isExecutable())
            QSKIP(qPrintable(tool + u" is not installed"_s));
    }
    QVERIFY(m_media.isValid());
    m_server = std::make_unique<MediaServer>(qEnvironmentVariable("QUILLBOX_TESTS_DIR"), m_media.path());
    m_base = m_server->base();
    QVERIFY2(!m_base.isEmpty(), qPrintable(m_server->error()));
    m_engine = startWithRealTools(m_ytDlp);
    QVERIFY(m_engine);
    qInfo("%s yt-dlp %s: %s", qPrintable(m_name), qPrintable(m_engine->manager->ytDlpVersion()), qPrintable(m_ytDlp));
}

std::unique_ptr<InputPresenter> TestPlaylistEndToEnd::presenterFor(const QString &path, const QString &folder) const
{
    AppState &state = m_engine->state;
    state.setDownloadPlaylist(true);
    state.setUseCookies(false);
    state.setOutputDirectory(folder);
    state.setUrlInput(m_base + path);
    return std::make_unique<InputPresenter>(&state, m_engine->manager.get());
}

QList<DownloadTask> TestPlaylistEndToEnd::settledSince(qsizetype before) const
{
    if (!QTest::qWaitFor([this] { return m_engine->settled(); }, Patience * 3))
        qWarning("the downloads have not ended after %d ms", Patience * 3);
    return m_engine->manager->taskModel()->tasks().sliced(before);
}

void TestPlaylistEndToEnd::picksThreeOfAThousand()
{
    const QString folder = m_engine->fixture.path(u"thousand"_s);
    const auto presenter = presenterFor(u"feed/1000.xml"_s, folder);
    PlaylistPicker *picker = presenter->playlistPicker();
    const qsizetype tasksBefore = m_engine->manager->taskModel()->tasks().size();
    const qsizetype logBefore = m_engine->log().size();
    QElapsedTimer clock;
    qint64 firstItem = -1;
    qint64 lastItem = -1;
    QObject watching;
    connect(picker, &QAbstractItemModel::rowsInserted, &watching, [&] {
        firstItem = firstItem < 0 ? clock.elapsed() : firstItem;
        lastItem = lastItem < 0 && picker->rowCount() == 1000 ? clock.elapsed() : lastItem;
    });
    clock.start();
    presenter->startDownload();
    QTRY_VERIFY_WITH_TIMEOUT(picker->isActive(), Patience);
    QTRY_VERIFY_WITH_TIMEOUT(!picker->isListing(), Patience);
    qInfo("%s yt-dlp: first item listed after %lld ms, the 1000th after %lld ms", qPrintable(m_name),
        qlonglong(firstItem), qlonglong(lastItem));
    QCOMPARE(picker->title(), u"测试列表 1000"_s);
    QCOMPARE(picker->rowCount(), 1000);
    QCOMPARE(picker->progressText(), u"共 1000 项"_s);
    for (int row = 0; row < 1000; ++row) {
        const QModelIndex at = picker->index(row);
        QCOMPARE(at.data(PlaylistPicker::NumberRole).toInt(), row + 1);
        QCOMPARE(at.data(PlaylistPicker::TitleRole).toString(), u"第 %1 个视频"_s.arg(row + 1));
    }
    QCOMPARE(m_engine->manager->taskModel()->tasks().size(), tasksBefore); // nothing queued while picking

    QCOMPARE(picker->selectRange(u"2, 5-6"_s), QString());
    QCOMPARE(picker->selectedCount(), 3);
    picker->confirm();
    QVERIFY(!picker->isActive());
    const QList<DownloadTask> tasks = settledSince(tasksBefore);
    QCOMPARE(tasks.size(), 3);
    const QString playlistFolder = folder + u"/测试列表 1000"_s;
    QStringList files;
    for (const int i : { 0, 1, 2 }) {
        const DownloadTask &task = tasks.at(i);
        const int number = QList { 2, 5, 6 }.at(i);
        QVERIFY2(task.status == DownloadStatus::Completed, lastWords());
        QCOMPARE(task.url, m_base + u"clip/%1.mp4"_s.arg(number));
        QVERIFY(task.playlist.isSet());
        QCOMPARE(task.playlist,
            (PlaylistPlace {
                tasks.first().playlist.group, u"测试列表 1000"_s, number, 1000, u"第 %1 个视频"_s.arg(number) }));
        QCOMPARE(task.progress, 1.0);
        QVERIFY(task.outputPath);
        const QFileInfo file(*task.outputPath);
        QCOMPARE(file.path(), playlistFolder);
        // Numbered to the width of the playlist's count, so that the folder sorts in its order, and
        // named as the sheet showed the item.
        QCOMPARE(file.fileName(), u"%1 - 第 %2 个视频.mp4"_s.arg(number, 4, 10, QChar(u'0')).arg(number));
        QVERIFY2(streamsOf(file.filePath()).contains(u"video"_s), qPrintable(file.filePath()));
        files << file.fileName();
    }
    files.sort();
    QCOMPARE(QDir(playlistFolder).entryList(QDir::Files | QDir::Hidden, QDir::Name), files);
    // Each item alone: the item's own link never lists the feed again.
    const QStringList commands = logSince(logBefore).filter(u"执行命令: "_s).filter(u"--progress"_s);
    QCOMPARE(commands.size(), 3);
    for (const QString &command : commands)
        QVERIFY2(command.contains(u" --no-playlist "_s), qPrintable(command));
}

void TestPlaylistEndToEnd::videoLinkWithAList()
{
    const QString folder = m_engine->fixture.path(u"watch"_s);
    const auto presenter = presenterFor(u"watch?v=a&list=L"_s, folder);
    PlaylistPicker *picker = presenter->playlistPicker();
    const qsizetype tasksBefore = m_engine->manager->taskModel()->tasks().size();
    const qsizetype logBefore = m_engine->log().size();
    QSignalSpy asked(presenter.get(), &InputPresenter::playlistQuestionAsked);

    presenter->startDownload();
    QCOMPARE(asked.size(), 1);
    QCOMPARE(asked.first().first().toInt(), 1);
    QCOMPARE(m_engine->manager->taskModel()->tasks().size(), tasksBefore); // nothing until answered

    // Only the video: its link without the list, downloaded as it is.
    presenter->answerPlaylistQuestion(false);
    const QList<DownloadTask> tasks = settledSince(tasksBefore);
    QCOMPARE(tasks.size(), 1);
    QCOMPARE(tasks.first().url, m_base + u"watch?v=a"_s);
    QVERIFY2(tasks.first().status == DownloadStatus::Completed, lastWords());
    QVERIFY(tasks.first().outputPath);
    QCOMPARE(QDir(folder).entryList(QDir::Files | QDir::Hidden),
        QStringList { QFileInfo(*tasks.first().outputPath).fileName() });
    QVERIFY2(streamsOf(*tasks.first().outputPath).contains(u"video"_s), qPrintable(*tasks.first().outputPath));
    QCOMPARE(logSince(logBefore).filter(u"正在读取播放列表: "_s), QStringList()); // not listed

    // The whole list: listed in the picker, and nothing queued when it is cancelled.
    presenter->answerPlaylistQuestion(true);
    QTRY_VERIFY_WITH_TIMEOUT(picker->isActive() && !picker->isListing(), Patience);
    QCOMPARE(picker->title(), u"测试列表 5"_s);
    QCOMPARE(picker->rowCount(), 5);
    QCOMPARE(picker->index(4).data(PlaylistPicker::TitleRole).toString(), u"第 5 个视频"_s);
    picker->cancel();
    QVERIFY(!picker->isActive());
    QCOMPARE(m_engine->manager->taskModel()->tasks().size(), tasksBefore + 1);
}

void TestPlaylistEndToEnd::unlistableLinkIsOneTask_data()
{
    QTest::addColumn<QString>("path");
    QTest::addColumn<DownloadStatus>("ending");
    QTest::addColumn<QString>("why"); // in the log's fallback line
    QTest::addColumn<QString>("notice"); // on the row
    // The listing fails on the server's 500, and the download of the link then fails on it too.
    QTest::newRow("broken") << u"broken-feed.xml"_s << DownloadStatus::Failed << u"HTTP Error 500"_s << QString();
    QTest::newRow("empty") << u"empty-feed.xml"_s << DownloadStatus::Completed << u"yt-dlp 没有列出任何视频"_s
                           << u"没有下载任何文件"_s;
}

void TestPlaylistEndToEnd::unlistableLinkIsOneTask()
{
    QFETCH(QString, path);
    QFETCH(DownloadStatus, ending);
    QFETCH(QString, why);
    QFETCH(QString, notice);
    const QString folder = m_engine->fixture.path(u"unlisted/"_s + QString::fromLatin1(QTest::currentDataTag()));
    const auto presenter = presenterFor(path, folder);
    QSignalSpy opened(presenter->playlistPicker(), &PlaylistPicker::activeChanged);
    const qsizetype tasksBefore = m_engine->manager->taskModel()->tasks().size();
    const qsizetype logBefore = m_engine->log().size();

    presenter->startDownload();
    QTRY_COMPARE_WITH_TIMEOUT(m_engine->manager->taskModel()->tasks().size(), tasksBefore + 1, Patience);
    const QList<DownloadTask> tasks = settledSince(tasksBefore);
    QCOMPARE(tasks.size(), 1);
    QCOMPARE(tasks.first().url, m_base + path);
    QVERIFY2(tasks.first().status == ending, lastWords());
    QCOMPARE(tasks.first().notice, notice);
    QCOMPARE(opened.size(), 0);
    const QStringList fallback = logSince(logBefore).filter(fellBack);
    QCOMPARE(fallback.size(), 1);
    QVERIFY2(fallback.first().startsWith(fellBack) && fallback.first().contains(why), qPrintable(fallback.first()));
}

int main(int argc, char *argv[])
{
    QCoreApplication app(argc, argv);
    const QString debian = u"/usr/bin/yt-dlp"_s;
    TestPlaylistEndToEnd withDebian(u"Debian's"_s, QFileInfo(debian).isExecutable() ? debian : QString());
    TestPlaylistEndToEnd withCurrent(u"The current"_s, sharedYtDlp());
    const int failed = QTest::qExec(&withDebian, argc, argv);
    return std::min(failed + QTest::qExec(&withCurrent, argc, argv), 127);
}
#include "tst_playlistendtoend.moc"
