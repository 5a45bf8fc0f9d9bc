#include "engine/downloadmanager.h"
#include "engine/shellrunner.h"

#include <QFileInfo>
#include <QProcess>
#include <QRandomGenerator>
#include <QtTest>

using namespace Qt::StringLiterals;

class TestShellQuoting : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void quotePath_data();
    void quotePath();
    void balancedQuotes_data();
    void balancedQuotes();
    void roundTrip_data();
    void roundTrip();
    void shellChoice();
};

void TestShellQuoting::quotePath_data()
{
    QTest::addColumn<QString>("path");
    QTest::addColumn<QString>("word");
    QTest::newRow("plain") << u"/opt/homebrew/bin/yt-dlp"_s << u"/opt/homebrew/bin/yt-dlp"_s;
    QTest::newRow("all safe punctuation") << u"/a_b/c-d+e:f@g%h.i"_s << u"/a_b/c-d+e:f@g%h.i"_s;
    QTest::newRow("space") << u"/Users/a b/yt-dlp"_s << u"'/Users/a b/yt-dlp'"_s;
    QTest::newRow("quote") << u"/x/it's"_s << u"'/x/it'\\''s'"_s;
    QTest::newRow("non-ASCII") << u"/家/yt-dlp"_s << u"'/家/yt-dlp'"_s;
    QTest::newRow("dollar") << u"/x/$HOME"_s << u"'/x/$HOME'"_s;
    QTest::newRow("empty") << QString() << u"''"_s;
}

void TestShellQuoting::quotePath()
{
    QFETCH(QString, path);
    QFETCH(QString, word);
    QCOMPARE(quoteIfNeeded(path), word);
}

void TestShellQuoting::balancedQuotes_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<bool>("balanced");
    QTest::newRow("empty") << QString() << true;
    QTest::newRow("plain words") << u"--limit-rate 1M -f best"_s << true;
    QTest::newRow("single-quoted") << u"-f 'best[height<=480]'"_s << true;
    QTest::newRow("double-quoted with escape") << u"--match-title \"Don\\\"t\""_s << true;
    QTest::newRow("escaped quote outside") << u"--match-title Don\\'t"_s << true;
    QTest::newRow("double quote inside single") << u"'say \"hi'"_s << true;
    QTest::newRow("open single quote") << u"--match-title Don't"_s << false;
    QTest::newRow("open double quote") << u"-o \"x"_s << false;
    QTest::newRow("trailing backslash escapes the space after it") << u"-f best \\"_s << true;
    QTest::newRow("escaped backslash at the end") << u"-f best \\\\"_s << true;
}

void TestShellQuoting::balancedQuotes()
{
    QFETCH(QString, text);
    QFETCH(bool, balanced);
    QCOMPARE(shellQuotesBalanced(text), balanced);
    // Whatever the answer, it agrees with a real shell: a balanced text parses, an open one does not.
    QProcess shell;
    shell.start(u"/bin/sh"_s, { u"-n"_s, u"-c"_s, u"echo "_s + text + u" 'https://x'"_s });
    QVERIFY(shell.waitForFinished(5000));
    QCOMPARE(shell.exitCode() == 0, balanced);
}

namespace {
QString randomText(QRandomGenerator &random)
{
    static const QStringList pieces { u"'"_s, u"\""_s, u"$"_s, u"`"_s, u"\\"_s, u" "_s, u"\n"_s, u"\t"_s, u"!"_s,
        u"*"_s, u"?"_s, u"["_s, u"]"_s, u"{"_s, u"}"_s, u";"_s, u"&"_s, u"|"_s, u"<"_s, u">"_s, u"("_s, u")"_s, u"#"_s,
        u"~"_s, u"%"_s, u"="_s, u"-"_s, u"视频"_s, u"é"_s, u"🎬"_s, u"e\u0301"_s, u"$(id)"_s, u"${HOME}"_s, u"'\\''"_s,
        u"%(title)s"_s, u"a"_s, u"Z"_s, u"0"_s, u"/"_s, u"."_s, u"\r"_s, u"\u00a0"_s };
    QString text;
    const int length = random.bounded(1, 24);
    for (int i = 0; i < length; ++i)
        text += pieces.at(random.bounded(pieces.size()));
    return text;
}
} // namespace

void TestShellQuoting::roundTrip_data()
{
    QTest::addColumn<QString>("shell");
    QTest::newRow("zsh") << u"/bin/zsh"_s;
    QTest::newRow("bash") << u"/bin/bash"_s;
}

void TestShellQuoting::roundTrip()
{
    // Real download commands for generated links and folders, run by the real shell: the child
    // must receive every link and folder byte for byte.
    QFETCH(QString, shell);
    if (!QFileInfo::exists(shell))
        QSKIP("shell not installed");
    const QString dumper = QCoreApplication::applicationDirPath() + u"/argvdump"_s;
    QVERIFY(QFileInfo::exists(dumper));

    QRandomGenerator random(20261123);
    constexpr int pairs = 5000; // 10,000 generated values
    constexpr int perBatch = 250;
    int checked = 0;
    for (int batch = 0; batch < pairs / perBatch; ++batch) {
        QList<QPair<QString, QString>> expected;
        QStringList commands;
        for (int i = 0; i < perBatch; ++i) {
            DownloadRequest request;
            request.url = u"https://example.invalid/"_s + randomText(random);
            request.outputDir = u"/tmp/"_s + randomText(random);
            request.preset = DownloadPreset::Custom;
            commands << DownloadManager::buildDownloadCommand(dumper, request, {}, {}, false);
            expected.append({ request.url, request.outputDir });
        }
        QProcess process;
        process.start(shell, { u"-c"_s, commands.join(u'\n') });
        QVERIFY(process.waitForFinished(60000));
        QCOMPARE(process.exitCode(), 0);
        const QList<QByteArray> records = process.readAllStandardOutput().split('\x1e');
        QCOMPARE(records.size(), perBatch + 1);
        for (int i = 0; i < perBatch; ++i) {
            QByteArray record = records.at(i);
            if (record.startsWith('\n'))
                record.remove(0, 1);
            QList<QByteArray> argv = record.split('\0');
            QCOMPARE(argv.takeLast(), QByteArray());
            const QList<QByteArray> wanted { "-o", (expected.at(i).second + u"/%(title)s.%(ext)s"_s).toUtf8(),
                "--progress", expected.at(i).first.toUtf8() };
            if (argv != wanted) {
                qWarning() << "link" << expected.at(i).first << "folder" << expected.at(i).second << "gave" << argv;
                QFAIL("argv differs");
            }
            ++checked;
        }
    }
    QCOMPARE(checked, pairs);
}

void TestShellQuoting::shellChoice()
{
    qputenv("QUILLBOX_SHELL", "/usr/local/bin/myshell");
    QCOMPARE(shellProgram(), u"/usr/local/bin/myshell"_s);
    qunsetenv("QUILLBOX_SHELL");
    const QString chosen = shellProgram();
    if (QFileInfo::exists(u"/bin/zsh"_s))
        QCOMPARE(chosen, u"/bin/zsh"_s);
    else if (QFileInfo::exists(u"/bin/bash"_s))
        QCOMPARE(chosen, u"/bin/bash"_s);
    else
        QCOMPARE(chosen, u"/bin/sh"_s);
}

QTEST_GUILESS_MAIN(TestShellQuoting)
#include "tst_shellquoting.moc"
