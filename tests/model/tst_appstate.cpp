#include "model/appstate.h"

#include "testsupport.h"

#include <QAbstractItemModelTester>
#include <QSettings>
#include <QSignalSpy>
#include <QThread>
#include <QtTest>

using namespace Qt::StringLiterals;

class TestAppState : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init() { IsolatedEnvironment::clearSettings(); }
    void formIsRemembered();
    void previousSettingsAreRead();
    void optionChecks_data();
    void optionChecks();
    void templatePreview_data();
    void templatePreview();
    void settingsAreOwnerOnly();
    void logCapKeepsNewest();
    void longMessagesAreCut_data();
    void longMessagesAreCut();
    void addLogFromManyThreads();

private:
    IsolatedEnvironment m_env;
};

// The form is written as it changes and read back by the next start; values stored by hand that
// cannot be read leave the defaults.
void TestAppState::formIsRemembered()
{
    {
        AppState first;
        QCOMPARE(first.outputDirectory(), m_env.home() + u"/Downloads"_s);
        QVERIFY(first.showLogPanel());
        first.setShowLogPanel(false);
        first.setSelectedPreset(DownloadPreset::AudioOnly);
        first.setOutputDirectory(u"/data/视频"_s);
        first.setNotifyOnFinish(false);
        first.setDownloadPlaylist(false);
        first.setUseCookies(false);
        first.setCookieSource(u"firefox"_s);
        first.setCookieSource(u"no such browser"_s); // refused
        DownloadChoices choices;
        choices.subtitles = u"embed"_s;
        choices.sponsorCategories.clear(); // none is not the default
        choices.proxy = u"socks5://127.0.0.1:1080"_s;
        first.setDownloadChoices(choices);
    }
    QCOMPARE(QSettings().value(u"selectedPreset"_s).toString(), u"audioOnly"_s);
    QSettings().setValue(u"cookiePath"_s, u"/tmp/c.txt"_s);
    AppState next;
    QCOMPARE(next.selectedPreset(), DownloadPreset::AudioOnly);
    QCOMPARE(next.outputDirectory(), u"/data/视频"_s);
    QCOMPARE(next.notifyOnFinish(), false);
    QCOMPARE(next.cookiePath(), u"/tmp/c.txt"_s);
    QCOMPARE(next.downloadPlaylist(), false);
    QCOMPARE(next.useCookies(), false);
    QCOMPARE(next.cookieSource(), u"firefox"_s);
    QCOMPARE(next.showLogPanel(), false);
    QCOMPARE(next.downloadChoices().subtitles, u"embed"_s);
    QCOMPARE(next.downloadChoices().sponsorCategories, QStringList());
    QCOMPARE(next.downloadChoices().proxy, u"socks5://127.0.0.1:1080"_s);

    QSettings().setValue(u"cookieSource"_s, u"$(rm -rf ~)"_s);
    QSettings().setValue(u"selectedPreset"_s, u"no such preset"_s);
    QSettings().setValue(u"downloadPlaylist"_s, u"maybe"_s);
    QSettings().setValue(u"outputDirectory"_s, QString()); // cleared by hand: stays cleared
    QSettings().setValue(u"downloadOptions/subtitles"_s, u"burn"_s);
    QSettings().setValue(u"downloadOptions/compatibility"_s, 3);
    AppState garbled;
    QCOMPARE(garbled.selectedPreset(), DownloadPreset::Default);
    QCOMPARE(garbled.downloadPlaylist(), true);
    QCOMPARE(garbled.useCookies(), false);
    QCOMPARE(garbled.outputDirectory(), QString());
    QCOMPARE(garbled.cookieSource(), u"chrome"_s);
    QCOMPARE(garbled.downloadChoices().subtitles, u"off"_s);
    QCOMPARE(garbled.downloadChoices().compatibility, u"any"_s);
    QCOMPARE(garbled.downloadChoices().proxy, u"socks5://127.0.0.1:1080"_s);
}

void TestAppState::optionChecks_data()
{
    QTest::addColumn<QString>("kind");
    QTest::addColumn<QString>("value");
    QTest::addColumn<bool>("usable");

    const QList<std::tuple<const char *, QString, bool>> rows {
        { "proxy", u"socks5h://127.0.0.1:1080"_s, true },
        { "proxy", u"http://user:it's@[::1]:8080/"_s, true },
        { "proxy", u"127.0.0.1:8080"_s, false }, // no scheme
        { "proxy", u"ftp://127.0.0.1"_s, false },
        { "proxy", u"http://127.0.0.1:8080/path"_s, false },
        { "proxy", u"http://127.0.0.1:99999"_s, false },
        { "rate", u"2M"_s, true },
        { "rate", u"0.5K"_s, true },
        { "rate", u"0M"_s, false },
        { "rate", u"2 MB"_s, false },
        { "rate", u"-1M"_s, false },
        { "template", u"%(uploader)s/%(title)s"_s, true },
        { "template", u"/etc/%(title)s"_s, false },
        { "template", u"~/%(title)s"_s, false },
        { "template", u"a/../../%(title)s"_s, false },
        { "template", u"two\nlines"_s, false },
    };
    for (const auto &[kind, value, usable] : rows)
        QTest::addRow("%s %s", kind, qPrintable(value)) << QString::fromLatin1(kind) << value << usable;
}

void TestAppState::optionChecks()
{
    QFETCH(QString, kind);
    QFETCH(QString, value);
    QFETCH(bool, usable);
    const QString problem = kind == u"proxy" ? DownloadChoices::proxyProblem(value)
        : kind == u"rate"                    ? DownloadChoices::rateLimitProblem(value)
                                             : DownloadChoices::templateProblem(value);
    QCOMPARE(problem.isEmpty(), usable);
}

void TestAppState::templatePreview_data()
{
    QTest::addColumn<QString>("fileTemplate");
    QTest::addColumn<QString>("name");

    QTest::newRow("a slash in a value") << u"%(title)s.%(ext)s"_s << u"A⧸B 视频.mp4"_s;
    QTest::newRow("widths and flags") << u"%(playlist_index)03d-%(title).3s|%(id)6s"_s << u"007-A⧸B|    x1"_s;
    QTest::newRow("fields not given, a %") << u"100%% %(uploader)s [%(none)d]"_s << u"100% NA [NA]"_s;
}

// What yt-dlp would call the file, from the information known.
void TestAppState::templatePreview()
{
    QFETCH(QString, fileTemplate);
    QFETCH(QString, name);
    const QJsonObject fields { { u"title"_s, u"A/B 视频"_s }, { u"ext"_s, u"mp4"_s }, { u"id"_s, u"x1"_s },
        { u"playlist_index"_s, 7 } };
    QCOMPARE(previewFileName(fileTemplate, fields), name);
}

// The settings the previous version wrote, its preset by label: read, and kept by key from then on.
void TestAppState::previousSettingsAreRead()
{
    const QString file = QSettings().fileName();
    QFile::remove(file);
    QVERIFY(QFile::copy(qEnvironmentVariable("QUILLBOX_TESTS_DIR") + u"/data/store/Quillbox-v3.conf"_s, file));
    AppState state;
    QCOMPARE(state.selectedPreset(), DownloadPreset::BestAudio);
    QVERIFY(!state.downloadPlaylist() && state.cookieSource() == u"firefox"_s);
    QCOMPARE(QSettings().value(u"selectedPreset"_s).toString(), u"bestAudio"_s);
}

// Whatever the umask and whoever wrote last, the settings file is 0600 in a 0700 folder, even when
// an earlier run left both wide open. (A store made new under any umask: tst_taskstore.)
void TestAppState::settingsAreOwnerOnly()
{
    const QString file = QSettings().fileName();
    const QString folder = QFileInfo(file).absolutePath();
    QVERIFY(QDir(folder).removeRecursively());
    const UmaskScope scope { 0 };
    QSettings().setValue(u"cookiePath"_s, u"/tmp/c.txt"_s);
    QCOMPARE(modeOf(file), 0666);
    AppState state;
    state.setOutputDirectory(u"/data/视频"_s);
    // Written again by another part of the application, the way each of them writes.
    QSettings settings;
    settings.setValue(u"maxConcurrentDownloads"_s, 3);
    settings.sync();
    QCOMPARE(settings.status(), QSettings::NoError);
    QCOMPARE(modeOf(folder), 0700);
    QCOMPARE(modeOf(file), 0600);
    QCOMPARE(QSettings().value(u"outputDirectory"_s).toString(), u"/data/视频"_s);
}

// The log keeps the newest 500 lines, whether they trickle in or come in one batch, and tells its
// views exactly which rows went and came.
void TestAppState::logCapKeepsNewest()
{
    AppState state;
    LogModel *model = state.logModel();
    QAbstractItemModelTester tester(model, QAbstractItemModelTester::FailureReportingMode::QtTest);
    QSignalSpy inserted(model, &QAbstractItemModel::rowsInserted);
    QSignalSpy removed(model, &QAbstractItemModel::rowsRemoved);
    QSignalSpy reset(model, &QAbstractItemModel::modelReset);
    QSignalSpy countChanged(model, &LogModel::countChanged);
    state.clearLog(); // an empty log has nothing to tell
    QCOMPARE(countChanged.count(), 0);

    // One line per event-loop turn, as lines trickle in from a download.
    for (int i = 0; i < 500; ++i) {
        state.addLog(u"line %1"_s.arg(i), LogEntry::LogType::Info);
        QCoreApplication::processEvents();
    }
    QTRY_COMPARE(model->count(), 500);
    QCOMPARE(removed.count(), 0);
    QCOMPARE(inserted.count(), 500);
    const QUuid secondId = model->at(1).id;

    inserted.clear();
    countChanged.clear();
    state.addLog(u"line 500"_s, LogEntry::LogType::Error);
    QTRY_COMPARE(inserted.count(), 1);
    QCOMPARE(model->count(), 500);
    QCOMPARE(model->at(0).id, secondId);
    QCOMPARE(model->at(499).message, u"line 500"_s);
    // Exactly the oldest row went, and the count stayed: views keyed on the count see no change.
    QCOMPARE(removed.count(), 1);
    QCOMPARE(removed.at(0).at(1).toInt(), 0);
    QCOMPARE(removed.at(0).at(2).toInt(), 0);
    QCOMPARE(countChanged.count(), 0);
    QCOMPARE(reset.count(), 0);

    // More lines in one turn than the log holds.
    for (int i = 0; i < 1234; ++i)
        state.addLog(QString::number(i), LogEntry::LogType::Info);
    QTRY_COMPARE(state.logEntries().constLast().message, u"1233"_s);
    QCOMPARE(model->count(), 500);
    QCOMPARE(state.logEntries().constFirst().message, u"734"_s);

    state.clearLog();
    QCOMPARE(model->count(), 0);
    QCOMPARE(countChanged.count(), 1);
}

void TestAppState::longMessagesAreCut_data()
{
    QTest::addColumn<QString>("message");
    QTest::addColumn<QString>("shown");
    const QString full(AppState::MaxLogMessageChars, u'x');
    QTest::newRow("at the bound: whole") << full << full;
    QTest::newRow("1 MiB: cut, with a note")
        << QString(1 << 20, u'x') << full + u"…（已省略 %1 个字符）"_s.arg((1 << 20) - AppState::MaxLogMessageChars);
    QTest::newRow("a character made of two is not split") << full.left(AppState::MaxLogMessageChars - 1)
            + u"🎬y"_s << full.left(AppState::MaxLogMessageChars - 1) + u"…（已省略 3 个字符）"_s;
}

void TestAppState::longMessagesAreCut()
{
    QFETCH(QString, message);
    QFETCH(QString, shown);
    AppState state;
    state.addLog(message, LogEntry::LogType::Download);
    QTRY_COMPARE(state.logModel()->count(), 1);
    QCOMPARE(state.logEntries().constFirst().message, shown);
}

void TestAppState::addLogFromManyThreads()
{
    AppState state;
    constexpr int threads = 4;
    constexpr int perThread = 100;
    QList<QThread *> workers;
    for (int t = 0; t < threads; ++t) {
        workers.append(QThread::create([&state, t] {
            for (int i = 0; i < perThread; ++i)
                state.addLog(u"%1:%2"_s.arg(t).arg(i), LogEntry::LogType::Info);
        }));
    }
    for (QThread *worker : std::as_const(workers))
        worker->start();
    for (QThread *worker : std::as_const(workers)) {
        QVERIFY(worker->wait(10000));
        delete worker;
    }
    QTRY_COMPARE(state.logModel()->count(), threads * perThread);

    QList<int> next(threads, 0);
    QDateTime previous;
    for (const LogEntry &entry : state.logEntries()) {
        QCOMPARE(QThread::currentThread(), state.thread());
        const auto parts = entry.message.split(u':');
        const int t = parts.at(0).toInt();
        QCOMPARE(parts.at(1).toInt(), next[t]); // each thread's lines in the order it wrote them
        ++next[t];
        QVERIFY(!previous.isValid() || entry.timestamp >= previous);
        previous = entry.timestamp;
    }
    QCOMPARE(next, QList<int>(threads, perThread));
}

QTEST_GUILESS_MAIN(TestAppState)
#include "tst_appstate.moc"
