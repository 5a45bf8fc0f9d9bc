#include "app/commandline.h"
#include "app/singleinstance.h"
#include "engine/tooldiscovery.h"
#include "model/appstate.h"

#include <QJSEngine>
#include <QLocalSocket>
#include <QProcess>
#include <QSettings>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QtTest>

#include <unistd.h>

using namespace Qt::StringLiterals;

// The command line, the message a second start hands over, and the socket it goes through, with
// the real `quillbox` as the second start.
class TestSingleInstance : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void commandLine_data();
    void commandLine();
    void messages();
    void hostileLinksAreText();
    void bookmarkletSendsThePage();
    void secondStartHandsOver();
    void refusedMessages_data();
    void refusedMessages();
    void otherUsersCannotConnect();
};

void TestSingleInstance::commandLine_data()
{
    QTest::addColumn<QStringList>("arguments");
    QTest::addColumn<int>("action");
    QTest::addColumn<bool>("start");
    QTest::addColumn<QStringList>("texts");
    const int run = int(CommandLine::Action::Run);
    QTest::newRow("links") << QStringList { u"https://a.example/1"_s, u"b.example/2"_s } << run << false
                           << QStringList { u"https://a.example/1"_s, u"b.example/2"_s };
    QTest::newRow("start, and a quillbox link with two") << QStringList {
        u"--start"_s, u"quillbox://add?url=https%3A%2F%2Fa.example%2F%3Fx%3D1%26y%3D2&url=c.example"_s
    } << run << true << QStringList { u"https://a.example/?x=1&y=2"_s, u"c.example"_s };
    QTest::newRow("after --, an option is only text")
        << QStringList { u"--"_s, u"--exec"_s } << run << false << QStringList { u"--exec"_s };
    QTest::newRow("help") << QStringList { u"a.example"_s, u"--help"_s } << int(CommandLine::Action::Help) << false
                          << QStringList { u"a.example"_s };
    QTest::newRow("version") << QStringList { u"--version"_s } << int(CommandLine::Action::Version) << false
                             << QStringList();
    QTest::newRow("an unknown option") << QStringList { u"--exec=rm"_s } << int(CommandLine::Action::Refused) << false
                                       << QStringList();
    QTest::newRow("another scheme's address")
        << QStringList { u"quillbox://remove?url=a.example"_s } << run << false << QStringList();
    QTest::newRow("Qt's and macOS's own options are left to them")
        << QStringList { u"-session"_s, u"10abc"_s, u"-psn_0_1234"_s, u"-style=Fusion"_s, u"a.example"_s } << run
        << false << QStringList { u"a.example"_s };
    QTest::newRow("a badly escaped value keeps the others, and %20 stays in its link")
        << QStringList { u"quillbox://add?url=bad%zz&url=https%3A%2F%2Fa.example%2Fmy%2520video"_s } << run << false
        << QStringList { u"bad%zz"_s, u"https://a.example/my%20video"_s };
}

void TestSingleInstance::commandLine()
{
    QFETCH(QStringList, arguments);
    QFETCH(int, action);
    QFETCH(bool, start);
    QFETCH(QStringList, texts);
    const CommandLine line = CommandLine::parse(arguments);
    QCOMPARE(int(line.action), action);
    QCOMPARE(line.start, start);
    if (line.action == CommandLine::Action::Run)
        QCOMPARE(line.texts, texts);
    QCOMPARE(line.error.isEmpty(), line.action != CommandLine::Action::Refused);
}

// What goes over the socket comes back as it was; anything else is refused whole.
void TestSingleInstance::messages()
{
    const Handover sent { true, { u"https://a.example/视频"_s, u"x"_s }, u"命令行"_s };
    const QByteArray bytes = sent.encode();
    const std::optional<Handover> read = Handover::decode(bytes);
    QVERIFY(read);
    QCOMPARE(read->texts, sent.texts);
    QVERIFY(read->start);
    QCOMPARE(read->from, sent.from);
    QVERIFY(!Handover::decode(bytes.chopped(1)));
    QVERIFY(!Handover::decode(QByteArray("\xff\x00garbage", 9)));
    QCOMPARE(Handover::expectedSize("QBX"), -1);
    QCOMPARE(Handover::expectedSize(QByteArray("QBX1\xff\xff\xff\xff", 8)), 0); // says 4 GiB: refused
    QVERIFY(!Handover::decode(QByteArray("QBX1\x00\x00\x00\x02[]", 10))); // JSON, but not an object
}

// A quillbox:// link carrying an option is text and nothing else.
void TestSingleInstance::hostileLinksAreText()
{
    AppState state;
    state.setUrlInput(u"https://kept.example/0"_s);
    const CommandLine line = CommandLine::parse(
        { u"quillbox://add?url=https%3A%2F%2Fa.example%2F1&url=--exec%20rm%20-rf&url=b.example%2F2"_s });
    QCOMPARE(state.receiveLinks(line.texts, u"链接"_s), 2);
    QCOMPARE(state.urlInput(), u"https://kept.example/0\nhttps://a.example/1\nb.example/2"_s);
    QSignalSpy started(&state, &AppState::linksToStart);
    QCOMPARE(state.receiveLinks({ u"c.example/3"_s }, u"命令行"_s, true), 1);
    QCOMPARE(started.size(), 1);
    QCOMPARE(started.at(0).at(0).toStringList(), QStringList { u"c.example/3"_s });
}

// The bookmark, run on a page whose address has "&", "#" and Chinese, gives a quillbox:// link
// that brings back exactly that address.
void TestSingleInstance::bookmarkletSendsThePage()
{
    const QString page = u"https://v.example/watch?v=a&list=b#t=1m 视频"_s;
    const QString bookmarklet = quillboxBookmarklet();
    QVERIFY(bookmarklet.startsWith(u"javascript:"_s));
    QJSEngine js;
    QJSValue location = js.newObject();
    location.setProperty(u"href"_s, page);
    js.globalObject().setProperty(u"location"_s, location);
    const QJSValue ran = js.evaluate(bookmarklet.mid(QStringLiteral("javascript:").size()));
    QVERIFY2(!ran.isError(), qPrintable(ran.toString()));
    const QString sent = js.evaluate(u"location.href"_s).toString();
    QVERIFY(sent.startsWith(u"quillbox://add?url="_s));
    QCOMPARE(linksOfQuillboxUrl(sent), QStringList { page });
}

// The real second start: it hands its links to the one listening and exits 0 at once.
// Two real starts: the first keeps running and starts what the second was given; the second
// hands the links over and exits.
void TestSingleInstance::secondStartHandsOver()
{
    QTemporaryDir root;
    const QString runtime = root.filePath(u"runtime"_s);
    QVERIFY(QDir().mkpath(runtime));
    QVERIFY(QFile::setPermissions(runtime, QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner));
    const QString argvFile = root.filePath(u"argv.jsonl"_s);
    {
        QSettings settings(root.filePath(u"config/Quillbox/Quillbox.conf"_s), QSettings::IniFormat);
        settings.setValue(QLatin1String(ToolDiscovery::CustomYtDlpPathKey),
            QString(qEnvironmentVariable("QUILLBOX_TESTS_DIR") + u"/fakes/yt-dlp"_s));
    }
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    for (const auto &[name, folder] : { std::pair { "HOME", "home" }, { "XDG_CONFIG_HOME", "config" },
             { "XDG_DATA_HOME", "data" }, { "XDG_CACHE_HOME", "cache" } }) {
        QVERIFY(QDir().mkpath(root.filePath(QLatin1String(folder))));
        environment.insert(QLatin1String(name), root.filePath(QLatin1String(folder)));
    }
    environment.insert(u"XDG_RUNTIME_DIR"_s, runtime);
    environment.insert(u"QT_QPA_PLATFORM"_s, u"offscreen"_s);
    environment.insert(u"QUILLBOX_NO_BROWSER"_s, u"1"_s);
    environment.insert(u"QUILLBOX_RELEASES_URL"_s, u"http://127.0.0.1:9"_s);
    environment.insert(u"FAKE_YTDLP_ARGV_FILE"_s, argvFile);

    // Two starts at the same moment: one runs, the other hands its link over once it listens.
    QProcess starts[2];
    for (int i = 0; i < 2; ++i) {
        starts[i].setProcessEnvironment(environment);
        starts[i].start(QStringLiteral(QUILLBOX_BINARY), { u"--start"_s, u"https://c.example/%1"_s.arg(i) });
    }
    QTRY_VERIFY_WITH_TIMEOUT(
        starts[0].state() == QProcess::NotRunning || starts[1].state() == QProcess::NotRunning, 20000);
    QProcess &first = starts[0].state() == QProcess::NotRunning ? starts[1] : starts[0];
    QProcess &racer = starts[0].state() == QProcess::NotRunning ? starts[0] : starts[1];
    QCOMPARE(racer.exitStatus(), QProcess::NormalExit);
    QCOMPARE(racer.exitCode(), 0);

    QProcess second;
    second.setProcessEnvironment(environment);
    second.start(QStringLiteral(QUILLBOX_BINARY),
        { u"--start"_s, u"https://a.example/1"_s, u"quillbox://add?url=https%3A%2F%2Fb.example%2F2&url=--exec"_s });
    QVERIFY(second.waitForFinished(10000));
    QCOMPARE(second.exitStatus(), QProcess::NormalExit);
    QCOMPARE(second.exitCode(), 0);
    QCOMPARE(first.state(), QProcess::Running);

    // The first start downloads every link with its current form; the hostile value is not run.
    const auto given = [&] {
        QFile file(argvFile);
        return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
    };
    QTRY_VERIFY_WITH_TIMEOUT(given().contains("https://a.example/1") && given().contains("https://b.example/2")
            && given().contains("https://c.example/0") && given().contains("https://c.example/1"),
        20000);
    QVERIFY2(!given().contains("\"--exec\""), given().constData());
    QCOMPARE(first.state(), QProcess::Running);
    first.terminate();
    QVERIFY(first.waitForFinished(10000));
    QCOMPARE(first.exitCode(), 0);

    // --version answers without any window or socket.
    QProcess version;
    version.start(QStringLiteral(QUILLBOX_BINARY), { u"--version"_s });
    QVERIFY(version.waitForFinished(10000));
    QCOMPARE(version.exitCode(), 0);
    QVERIFY(version.readAllStandardOutput().startsWith("Quillbox "));
}

void TestSingleInstance::refusedMessages_data()
{
    QTest::addColumn<QByteArray>("bytes");
    QTest::addColumn<QString>("why");
    QTest::newRow("garbage") << QByteArray("\xff\x00garbage", 9) << u"无法读取的消息"_s;
    QTest::newRow("a header that says 5 MiB") << QByteArray("QBX1\x00\x50\x00\x00", 8) << u"无法读取的消息"_s;
    QTest::newRow("half a message, then silence") << QByteArray("QBX1\x00\x00\x00\x10{", 9) << u"消息不完整"_s;
    QTest::newRow("silence") << QByteArray() << u"消息不完整"_s;
}

// What is not a whole message of ours is turned away, and the next start is still heard.
void TestSingleInstance::refusedMessages()
{
    QFETCH(QByteArray, bytes);
    QFETCH(QString, why);
    QTemporaryDir runtime;
    const QString path = runtime.filePath(u"quillbox-instance"_s);
    InstanceServer server;
    QVERIFY(server.listen(path));
    QSignalSpy refused(&server, &InstanceServer::refused);
    QSignalSpy received(&server, &InstanceServer::received);
    QLocalSocket peer;
    peer.connectToServer(path);
    QVERIFY(peer.waitForConnected());
    peer.write(bytes);
    QTRY_COMPARE_WITH_TIMEOUT(refused.size(), 1, 5000);
    QCOMPARE(refused.at(0).at(0).toString(), why);
    QTRY_COMPARE(peer.state(), QLocalSocket::UnconnectedState);

    QLocalSocket next;
    next.connectToServer(path);
    QVERIFY(next.waitForConnected());
    next.write(Handover { false, { u"a.example"_s }, u"命令行"_s }.encode());
    QTRY_COMPARE(received.size(), 1);
    QCOMPARE(received.at(0).at(0).value<Handover>().texts, QStringList { u"a.example"_s });
}

// Another user is turned away by the server itself: here the folder and the socket are open to
// everyone, so only the peer's user id keeps it out.
void TestSingleInstance::otherUsersCannotConnect()
{
    if (::getuid() != 0 || QStandardPaths::findExecutable(u"runuser"_s).isEmpty())
        QSKIP("needs root and runuser to act as another user");
    QTemporaryDir runtime;
    const QString path = runtime.filePath(u"quillbox-instance"_s);
    InstanceServer server;
    QVERIFY(server.listen(path));
    QSignalSpy refused(&server, &InstanceServer::refused);
    QSignalSpy received(&server, &InstanceServer::received);
    QVERIFY(QFile::setPermissions(
        runtime.path(), QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner | QFile::ExeGroup | QFile::ExeOther));
    QVERIFY(QFile::setPermissions(path, QFileDevice::Permissions(0x7777)));
    QProcess other;
    other.start(u"runuser"_s,
        { u"-u"_s, u"nobody"_s, u"--"_s, u"python3"_s, u"-c"_s,
            u"import socket,sys\ns=socket.socket(socket.AF_UNIX)\ns.connect(sys.argv[1])\n"
            "s.sendall(sys.stdin.buffer.read())\nprint(repr(s.recv(1)))"_s,
            path });
    other.write(Handover { true, { u"a.example"_s }, u"命令行"_s }.encode());
    other.closeWriteChannel();
    QTRY_COMPARE_WITH_TIMEOUT(refused.size(), 1, 10000);
    QVERIFY2(refused.at(0).at(0).toString().startsWith(u"另一个用户"_s), qPrintable(refused.at(0).at(0).toString()));
    QTRY_COMPARE_WITH_TIMEOUT(other.state(), QProcess::NotRunning, 10000);
    QCOMPARE(received.size(), 0);
    QVERIFY(!other.readAllStandardOutput().contains("K"));
}

QTEST_GUILESS_MAIN(TestSingleInstance)
#include "tst_singleinstance.moc"
