#include "notify/notifier.h"

#include "engine/enginefixture.h"

#include <QDBusConnection>
#include <QProcess>
#include <QtTest>

using namespace Qt::StringLiterals;

// Stands in for the desktop's notification service and records what it is asked to show.
class NotificationService : public QObject
{
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "org.freedesktop.Notifications")

public:
    struct Call
    {
        QString icon, summary, body;
    };
    QList<Call> calls;

public Q_SLOTS:
    QStringList GetCapabilities() { return { u"body"_s, u"body-markup"_s }; }
    uint Notify(const QString &, uint, const QString &icon, const QString &summary, const QString &body,
        const QStringList &, const QVariantMap &, int)
    {
        calls.append({ icon, summary, body });
        return uint(calls.size());
    }
};

// Finished downloads of the real engine (the stand-in yt-dlp) announced on a private session bus.
class TestNotifier : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void cleanupTestCase();
    void finishedDownloads_data();
    void finishedDownloads();

private:
    QTemporaryDir m_dir;
    QProcess m_bus;
    NotificationService m_service;
};

void TestNotifier::initTestCase()
{
    // A bus of our own, with no service files: nothing on it can be started on demand.
    const QString config = m_dir.filePath(u"bus.conf"_s);
    QFile file(config);
    QVERIFY(file.open(QIODevice::WriteOnly));
    file.write(R"(<!DOCTYPE busconfig PUBLIC "-//freedesktop//DTD D-Bus Bus Configuration 1.0//EN"
 "http://www.freedesktop.org/standards/dbus/1.0/busconfig.dtd">
<busconfig><type>session</type><listen>unix:path=)"
        + m_dir.filePath(u"bus"_s).toUtf8() + R"(</listen><auth>EXTERNAL</auth>
<policy context="default"><allow send_destination="*" eavesdrop="true"/><allow eavesdrop="true"/><allow own="*"/></policy>
</busconfig>)");
    file.close();
    const QString daemon = QStandardPaths::findExecutable(u"dbus-daemon"_s);
    QVERIFY2(!daemon.isEmpty(), "dbus-daemon is not installed");
    m_bus.start(daemon, { u"--config-file="_s + config, u"--nofork"_s, u"--print-address"_s });
    QVERIFY(m_bus.waitForReadyRead(10000));
    const QByteArray address = m_bus.readLine().trimmed();
    QVERIFY(!address.isEmpty());
    qputenv("DBUS_SESSION_BUS_ADDRESS", address);

    QDBusConnection standin = QDBusConnection::connectToBus(QString::fromUtf8(address), u"standin"_s);
    QVERIFY(standin.isConnected());
    QVERIFY(standin.registerObject(u"/org/freedesktop/Notifications"_s, &m_service, QDBusConnection::ExportAllSlots));

    // Links ending in "/fail" fail, the others download.
    QFile scenario(m_dir.filePath(u"fail.json"_s));
    QVERIFY(scenario.open(QIODevice::WriteOnly));
    scenario.write(
        R"({"steps": [{"err": "ERROR: Unable to download webpage: HTTP Error 404: Not Found\n"}], "exit": 1})");
    qputenv("FAKE_YTDLP_SCENARIO_DIR", m_dir.path().toUtf8());
}

void TestNotifier::cleanupTestCase()
{
    QDBusConnection::disconnectFromBus(u"standin"_s);
    m_bus.terminate();
    m_bus.waitForFinished(5000);
}

void TestNotifier::finishedDownloads_data()
{
    QTest::addColumn<bool>("windowActive");
    QTest::addColumn<bool>("enabled");
    QTest::addColumn<bool>("service");
    QTest::addColumn<bool>("announced");

    QTest::newRow("window in the background") << false << true << true << true;
    QTest::newRow("window active") << true << true << true << false;
    QTest::newRow("switched off") << false << false << true << false;
    QTest::newRow("no notification service") << false << true << false << false;
}

void TestNotifier::finishedDownloads()
{
    QFETCH(bool, windowActive);
    QFETCH(bool, enabled);
    QFETCH(bool, service);
    QFETCH(bool, announced);
    QDBusConnection standin(u"standin"_s);
    if (service)
        QVERIFY(standin.registerService(u"org.freedesktop.Notifications"_s));
    else
        standin.unregisterService(u"org.freedesktop.Notifications"_s);
    m_service.calls.clear();

    const auto engine = SandboxEngine::start();
    QVERIFY(engine);
    qputenv("FAKE_YTDLP_INFO_EXIT", "1"); // no information: every title stays its link
    engine->state.setNotifyOnFinish(enabled);
    TaskModel *tasks = engine->manager->taskModel();
    const Notifier notifier(tasks, &engine->state, [windowActive] { return windowActive; });

    // A task that comes in finished (as one read back from disk would) has nothing to announce.
    DownloadTask restored = DownloadTask::create(u"https://n.example/restored"_s);
    restored.status = DownloadStatus::Completed;
    tasks->append(restored);
    for (const QString &url :
        { u"https://n.example/q&a/ok"_s, u"https://n.example/2/ok"_s, u"https://n.example/fail"_s })
        engine->download(url);
    QTRY_VERIFY_WITH_TIMEOUT(engine->settled(), 20000);
    const QList<DownloadTask> ended = engine->manager->tasks();
    QCOMPARE(ended.size(), 4);
    QCOMPARE(ended.at(3).status, DownloadStatus::Failed);

    QStringList expected;
    if (announced) {
        for (const DownloadTask &task : ended.mid(1)) {
            QCOMPARE(task.title, task.url);
            // The service reads markup: the title reaches it escaped.
            expected << (task.status == DownloadStatus::Completed ? u"下载完成|"_s : u"下载失败|"_s)
                    + QString(task.title).replace(u'&', u"&amp;"_s);
        }
        QTRY_COMPARE_WITH_TIMEOUT(m_service.calls.size(), 3, 5000);
    }
    QTest::qWait(300); // time for a call that should not come
    QStringList shown;
    for (const NotificationService::Call &call : std::as_const(m_service.calls)) {
        QCOMPARE(call.icon, u"app.quillbox.Quillbox"_s);
        shown << call.summary + u'|' + call.body.section(u'\n', 0, 0);
    }
    shown.sort();
    expected.sort();
    QCOMPARE(shown, expected);

    // A desktop without the service loses nothing and shows no error: one line in the system log.
    const QStringList said = engine->fixture.systemLog().filter(u"桌面通知"_s);
    QCOMPARE(said.size(), service ? 0 : 1);
    QVERIFY(engine->log().filter(u"通知"_s).isEmpty());
}

QTEST_GUILESS_MAIN(TestNotifier)
#include "tst_notifier.moc"
