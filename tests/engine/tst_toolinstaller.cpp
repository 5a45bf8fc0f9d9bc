#include "engine/toolinstaller.h"

#include "support/releaseserver.h"
#include "testsupport.h"

#include <QCryptographicHash>
#include <QProcess>
#include <QRandomGenerator>
#include <QSignalSpy>
#include <QTcpServer>
#include <QtTest>

using namespace Qt::StringLiterals;
using Tool = ToolInstaller::Tool;

// The installer against releaseserver.py on 127.0.0.1, laid out as GitHub's release pages are.
class TestToolInstaller : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void addressRules_data();
    void addressRules();
    void checksumFiles();
    void installsTheSharedYtDlp();
    void failuresLeaveTheOldCopy_data();
    void failuresLeaveTheOldCopy();
    void cancelDuringDownloadLeavesTheOldCopy();
    void replaceWaitsForTheGate();
    void installsDeno_data();
    void installsDeno();

private:
    IsolatedEnvironment m_environment;
    QString m_testsDir;
};

namespace {
constexpr int Patience = 60000;
const QString tag = u"2026.08.19"_s;
const QByteArray oldCopy = "#!/bin/sh\necho 2023.03.04\n";
const QString denoAsset = ReleaseLocations::standard().deno.assetName;

QByteArray sha256(const QByteArray &data)
{
    return QCryptographicHash::hash(data, QCryptographicHash::Sha256).toHex();
}

QByteArray readFile(const QString &path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

bool writeFile(const QString &path, const QByteArray &data, QFileDevice::Permissions permissions = {})
{
    QDir().mkpath(QFileInfo(path).path());
    QFile file(path);
    return file.open(QIODevice::WriteOnly) && file.write(data) == data.size()
        && (!permissions || file.setPermissions(permissions));
}

// `size` bytes no compressor can shrink much, so a download or an inflate takes several blocks.
QByteArray noise(qsizetype size)
{
    QByteArray data(size, Qt::Uninitialized);
    QRandomGenerator generator(42);
    generator.fillRange(reinterpret_cast<quint32 *>(data.data()), size / 4);
    return data;
}

// The release server's view of this test's base, with yt-dlp's asset called "yt-dlp".
ReleaseLocations locationsAt(const QString &base)
{
    qputenv("QUILLBOX_RELEASES_URL", base.toUtf8());
    ReleaseLocations locations = ReleaseLocations::standard();
    qunsetenv("QUILLBOX_RELEASES_URL");
    locations.ytDlp.assetName = u"yt-dlp"_s;
    return locations;
}

struct Outcome
{
    bool ok = false;
    QString path;
    QString version;
    QString message;
};

Outcome install(ToolInstaller &installer, Tool tool)
{
    QSignalSpy finished(&installer, &ToolInstaller::finished);
    installer.install(tool);
    if (!finished.wait(Patience))
        return { false, {}, {}, u"no finished() in time"_s };
    const QList<QVariant> &arguments = finished.constFirst();
    return { arguments.at(1).toBool(), arguments.at(2).toString(), arguments.at(3).toString(),
        arguments.at(4).toString() };
}

QStringList entries(const QString &folder)
{
    return QDir(folder).entryList(QDir::AllEntries | QDir::Hidden | QDir::System | QDir::NoDotAndDotDot);
}

QString run(const QString &program)
{
    QProcess process;
    process.start(program, { u"--version"_s });
    process.waitForFinished(Patience);
    return QString::fromUtf8(process.readAllStandardOutput()).trimmed();
}

constexpr QFileDevice::Permissions mode0755 = QFileDevice::ReadOwner | QFileDevice::WriteOwner | QFileDevice::ExeOwner
    | QFileDevice::ReadUser | QFileDevice::WriteUser | QFileDevice::ExeUser | QFileDevice::ReadGroup
    | QFileDevice::ExeGroup | QFileDevice::ReadOther | QFileDevice::ExeOther;
} // namespace

void TestToolInstaller::initTestCase()
{
    m_testsDir = qEnvironmentVariable("QUILLBOX_TESTS_DIR");
    QVERIFY(!m_testsDir.isEmpty());
    if (ReleaseServer::python().isEmpty())
        QSKIP("python3 is not installed");
}

void TestToolInstaller::addressRules_data()
{
    QTest::addColumn<QString>("url");
    QTest::addColumn<bool>("allowed");
    QTest::newRow("https anywhere") << u"https://github.com/yt-dlp/yt-dlp/releases"_s << true;
    QTest::newRow("http to 127.0.0.1") << u"http://127.0.0.1:8123/x"_s << true;
    QTest::newRow("http to localhost") << u"http://localhost/x"_s << true;
    QTest::newRow("http to ::1") << u"http://[::1]:80/x"_s << true;
    QTest::newRow("http elsewhere") << u"http://example.com/x"_s << false;
    QTest::newRow("http to another loopback address") << u"http://127.0.0.2/x"_s << false;
    QTest::newRow("ftp") << u"ftp://127.0.0.1/x"_s << false;
    QTest::newRow("file") << u"file:///usr/bin/yt-dlp"_s << false;
}

void TestToolInstaller::addressRules()
{
    QFETCH(QString, url);
    QFETCH(bool, allowed);
    QCOMPARE(ReleaseLocations::isAllowed(QUrl(url)), allowed);
}

void TestToolInstaller::checksumFiles()
{
    using Format = ReleaseLocations::ChecksumFormat;
    const QByteArray a(64, 'a'), b(64, 'B');
    const QByteArray sums = a + "  yt-dlp_linux_aarch64\n" + b + " *yt-dlp_linux\n";
    QCOMPARE(ReleaseLocations::expectedDigest(Format::NamedLines, sums, u"yt-dlp_linux"_s), b.toLower());
    QCOMPARE(ReleaseLocations::expectedDigest(Format::NamedLines, sums, u"yt-dlp"_s), QByteArray());
    QCOMPARE(ReleaseLocations::expectedDigest(Format::FirstDigest, "Hash: " + b + "\n" + a, {}), b.toLower());
    QCOMPARE(ReleaseLocations::expectedDigest(Format::FirstDigest, "abc 123\n", {}), QByteArray());
}

void TestToolInstaller::installsTheSharedYtDlp()
{
    const QString shared = sharedYtDlp();
    if (shared.isEmpty())
        QSKIP("../shared (the current yt-dlp beside the project) is absent");
    QTemporaryDir served, folder;
    const QString release = served.filePath(u"yt-dlp/yt-dlp/"_s + tag + u'/');
    QVERIFY(QDir().mkpath(release));
    QVERIFY(QFile::copy(shared, release + u"yt-dlp"_s));
    QVERIFY(QFile::copy(QFileInfo(shared).dir().filePath(u"SHA2-256SUMS"_s), release + u"SHA2-256SUMS"_s));
    // An old copy, not executable by the group, is replaced by one that is.
    QVERIFY(writeFile(folder.filePath(u"yt-dlp"_s), oldCopy, QFileDevice::ReadOwner | QFileDevice::WriteOwner));

    ReleaseServer server(m_testsDir, served.path());
    QVERIFY2(!server.base().isEmpty(), qPrintable(server.error()));
    ToolInstaller installer(locationsAt(server.base()), folder.path(), folder.filePath(u"deno"_s));
    const Outcome outcome = install(installer, Tool::YtDlp);
    QVERIFY2(outcome.ok, qPrintable(outcome.message));
    QCOMPARE(outcome.path, folder.filePath(u"yt-dlp"_s));
    QCOMPARE(outcome.version, tag);
    QCOMPARE(readFile(outcome.path), readFile(shared));
    QCOMPARE(QFile::permissions(outcome.path), mode0755);
    QCOMPARE(entries(folder.path()), QStringList { u"yt-dlp"_s });
    QCOMPARE(run(outcome.path), tag);
    QVERIFY(!installer.isBusy());
    QCOMPARE(installer.progress(), 1.0);
}

void TestToolInstaller::failuresLeaveTheOldCopy_data()
{
    QTest::addColumn<QStringList>("serverArguments");
    QTest::addColumn<QString>("sumsName"); // the name the checksum file lists
    QTest::addColumn<QString>("apiUrl"); // replaces the API address; "closed" for a port nobody listens on
    QTest::addColumn<QString>("message");

    const QString sums = u"yt-dlp"_s, api;
    const QString mismatch = u"下载的文件校验失败（SHA-256 不符），已丢弃，原有文件未改动。"_s;
    const QString rateLimited = u"GitHub 暂时限制了请求次数，请过一会儿再试。"_s;
    QTest::newRow("tampered") << QStringList { u"--fault"_s, u"tamper:yt-dlp"_s } << sums << api << mismatch;
    QTest::newRow("cut off") << QStringList { u"--fault"_s, u"cut:yt-dlp"_s } << sums << api
                             << u"下载中断，文件不完整，已丢弃。"_s;
    QTest::newRow("not found") << QStringList { u"--fault"_s, u"404:yt-dlp"_s } << sums << api << u"HTTP 404"_s;
    QTest::newRow("rate limited") << QStringList { u"--fault"_s, u"ratelimit:latest"_s } << sums << api << rateLimited;
    QTest::newRow("too many requests") << QStringList { u"--fault"_s, u"429:SHA2-256SUMS"_s } << sums << api
                                       << rateLimited;
    QTest::newRow("sums without the asset") << QStringList {} << u"yt-dlp_linux"_s << api << u"校验文件里没有 yt-dlp"_s;
    // The server itself under an address that is not one of the allowed names: were it not
    // refused, the download would succeed.
    QTest::newRow("redirect to a refused address") << QStringList { u"--redirect"_s, u"yt-dlp"_s,
        u"http://[::ffff:127.0.0.1]:{port}/assets/yt-dlp/yt-dlp/"_s + tag + u"/yt-dlp"_s }
                                                   << sums << api << u"已拒绝"_s;
    QTest::newRow("http to a non-loopback host")
        << QStringList {} << sums << u"http://example.com/repos/yt-dlp/yt-dlp/releases/latest"_s << u"已拒绝"_s;
    QTest::newRow("nobody listening") << QStringList {} << sums << u"closed"_s
                                      << u"无法连接到下载服务器，请检查网络后重试。"_s;
}

void TestToolInstaller::failuresLeaveTheOldCopy()
{
    QFETCH(QStringList, serverArguments);
    QFETCH(QString, sumsName);
    QFETCH(QString, apiUrl);
    QFETCH(QString, message);

    QTemporaryDir served, folder;
    const QByteArray asset = noise(300 * 1024);
    const QString release = served.filePath(u"yt-dlp/yt-dlp/"_s + tag + u'/');
    QVERIFY(writeFile(release + u"yt-dlp"_s, asset));
    QVERIFY(writeFile(release + u"SHA2-256SUMS"_s, sha256(asset) + "  " + sumsName.toUtf8() + '\n'));
    const QString installed = folder.filePath(u"yt-dlp"_s);
    QVERIFY(writeFile(installed, oldCopy, mode0755));

    ReleaseServer server(m_testsDir, served.path(), serverArguments);
    QVERIFY2(!server.base().isEmpty(), qPrintable(server.error()));
    ReleaseLocations locations = locationsAt(server.base());
    if (apiUrl == u"closed"_s) {
        QTcpServer closed;
        QVERIFY(closed.listen(QHostAddress::LocalHost));
        apiUrl = u"http://127.0.0.1:%1/repos/yt-dlp/yt-dlp/releases/latest"_s.arg(closed.serverPort());
    }
    if (!apiUrl.isEmpty())
        locations.ytDlp.latestApi = QUrl(apiUrl);

    ToolInstaller installer(locations, folder.path(), folder.filePath(u"deno"_s));
    const Outcome outcome = install(installer, Tool::YtDlp);
    QVERIFY(!outcome.ok);
    QVERIFY2(outcome.message.contains(message), qPrintable(outcome.message));
    QCOMPARE(installer.statusText(), outcome.message);
    QCOMPARE(readFile(installed), oldCopy);
    QCOMPARE(entries(folder.path()), QStringList { u"yt-dlp"_s });
}

void TestToolInstaller::cancelDuringDownloadLeavesTheOldCopy()
{
    QTemporaryDir served, folder;
    const QByteArray asset = noise(4 * 1024 * 1024);
    const QString release = served.filePath(u"yt-dlp/yt-dlp/"_s + tag + u'/');
    QVERIFY(writeFile(release + u"yt-dlp"_s, asset));
    QVERIFY(writeFile(release + u"SHA2-256SUMS"_s, sha256(asset) + "  yt-dlp\n"));
    QVERIFY(writeFile(folder.filePath(u"yt-dlp"_s), oldCopy, mode0755));

    ReleaseServer server(m_testsDir, served.path(), { u"--fault"_s, u"slow:yt-dlp"_s, u"--rate"_s, u"100000"_s });
    QVERIFY2(!server.base().isEmpty(), qPrintable(server.error()));
    ToolInstaller installer(locationsAt(server.base()), folder.path(), folder.filePath(u"deno"_s));
    QSignalSpy finished(&installer, &ToolInstaller::finished);
    installer.install(Tool::YtDlp);
    QTRY_VERIFY_WITH_TIMEOUT(installer.progress() > 0, Patience);
    QVERIFY(installer.statusText().contains(u" / 4.0 MB"_s));
    installer.cancel();
    QCOMPARE(finished.size(), 1);
    QCOMPARE(finished.constFirst().at(1).toBool(), false);
    QVERIFY(!installer.isBusy());
    QCOMPARE(readFile(folder.filePath(u"yt-dlp"_s)), oldCopy);
    QCOMPARE(entries(folder.path()), QStringList { u"yt-dlp"_s });
}

void TestToolInstaller::replaceWaitsForTheGate()
{
    QTemporaryDir served, folder;
    const QByteArray asset = "#!/bin/sh\necho " + tag.toUtf8() + '\n';
    const QString release = served.filePath(u"yt-dlp/yt-dlp/"_s + tag + u'/');
    QVERIFY(writeFile(release + u"yt-dlp"_s, asset));
    QVERIFY(writeFile(release + u"SHA2-256SUMS"_s, sha256(asset) + "  yt-dlp\n"));
    const QString installed = folder.filePath(u"yt-dlp"_s);
    QVERIFY(writeFile(installed, oldCopy, mode0755));

    ReleaseServer server(m_testsDir, served.path());
    QVERIFY2(!server.base().isEmpty(), qPrintable(server.error()));
    ToolInstaller installer(locationsAt(server.base()), folder.path(), folder.filePath(u"deno"_s));
    std::function<void()> proceed;
    installer.setReplaceGate([&proceed](std::function<void()> next) { proceed = std::move(next); });
    QSignalSpy finished(&installer, &ToolInstaller::finished);

    // Held, then cancelled: the old copy stays. A second install meanwhile is refused.
    installer.install(Tool::YtDlp);
    QTRY_VERIFY_WITH_TIMEOUT(proceed, Patience);
    QCOMPARE(installer.statusText(), u"等待下载结束后替换…"_s);
    installer.install(Tool::Deno);
    QTRY_COMPARE(finished.size(), 1);
    QCOMPARE(finished.takeFirst().at(0).value<Tool>(), Tool::Deno);
    QVERIFY(installer.isBusy());
    QCOMPARE(readFile(installed), oldCopy);
    installer.cancel();
    QCOMPARE(finished.takeFirst().at(1).toBool(), false);
    proceed(); // too late: nothing happens
    QCOMPARE(readFile(installed), oldCopy);
    QCOMPARE(entries(folder.path()), QStringList { u"yt-dlp"_s });

    // Held, then let go.
    proceed = nullptr;
    installer.install(Tool::YtDlp);
    QTRY_VERIFY_WITH_TIMEOUT(proceed, Patience);
    QCOMPARE(readFile(installed), oldCopy);
    QVERIFY(finished.isEmpty());
    proceed();
    QCOMPARE(finished.size(), 1);
    QCOMPARE(finished.constFirst().at(1).toBool(), true);
    QCOMPARE(readFile(installed), asset);
    QCOMPARE(run(installed), tag);
}

void TestToolInstaller::installsDeno_data()
{
    QTest::addColumn<QString>("method");
    QTest::addColumn<QString>("entry");
    QTest::addColumn<bool>("damageData"); // one byte of the stored data changed, the zip's digest matching
    QTest::addColumn<QString>("message"); // empty when it installs
    QTest::newRow("deflated") << u"deflated"_s << u"deno"_s << false << QString();
    QTest::newRow("stored") << u"stored"_s << u"deno"_s << false << QString();
    QTest::newRow("no deno inside") << u"deflated"_s << u"node"_s << false << u"压缩包里没有 deno"_s;
    QTest::newRow("bad CRC") << u"stored"_s << u"deno"_s << true << u"压缩包已损坏"_s;
}

void TestToolInstaller::installsDeno()
{
    QFETCH(QString, method);
    QFETCH(QString, entry);
    QFETCH(bool, damageData);
    QFETCH(QString, message);

    const QString version = u"deno 2.9.6 (stable, release, x86_64-unknown-linux-gnu)"_s;
    QTemporaryDir served, work;
    // A script with a long tail of noise, so the zip's data spans several blocks.
    const QByteArray script = "#!/bin/sh\necho '" + version.toUtf8() + "'\nexit 0\n" + noise(700 * 1024).toBase64();
    QVERIFY(writeFile(work.filePath(u"deno"_s), script, mode0755));
    const QString release = served.filePath(u"denoland/deno/v2.9.6/"_s);
    const QString zipPath = release + denoAsset;
    QVERIFY(QDir().mkpath(release));
    const QString zipError
        = ReleaseServer::makeZip(m_testsDir, { zipPath, method, entry + u'=' + work.filePath(u"deno"_s) });
    QVERIFY2(zipError.isEmpty(), qPrintable(zipError));
    QByteArray zip = readFile(zipPath);
    if (damageData) {
        const qsizetype at = zip.indexOf("exit 0");
        QVERIFY(at > 0);
        zip[at] = 'E';
        QVERIFY(writeFile(zipPath, zip));
    }
    QVERIFY(writeFile(zipPath + u".sha256sum"_s, "Algorithm : SHA256\nHash      : " + sha256(zip).toUpper() + '\n'));

    ReleaseServer server(m_testsDir, served.path());
    QVERIFY2(!server.base().isEmpty(), qPrintable(server.error()));
    const QString home = m_environment.home() + u"/.deno/bin"_s;
    QDir(home).removeRecursively();
    ToolInstaller installer(locationsAt(server.base()), work.filePath(u"bin"_s), home);
    const Outcome outcome = install(installer, Tool::Deno);
    QCOMPARE(outcome.ok, message.isEmpty());
    if (!outcome.ok) {
        QVERIFY2(outcome.message.contains(message), qPrintable(outcome.message));
        QCOMPARE(entries(home), QStringList());
        return;
    }
    QCOMPARE(outcome.version, u"v2.9.6"_s);
    QCOMPARE(outcome.path, home + u"/deno"_s);
    QCOMPARE(readFile(outcome.path), script);
    QCOMPARE(QFile::permissions(outcome.path), mode0755);
    QCOMPARE(run(outcome.path), version);
    QCOMPARE(entries(home), QStringList { u"deno"_s });
}

QTEST_GUILESS_MAIN(TestToolInstaller)
#include "tst_toolinstaller.moc"
