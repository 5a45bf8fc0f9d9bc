#include "engine/downloadmanager.h"
#include "engine/shellrunner.h"
#include "engine/shellwords.h"

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

// Custom arguments as people write them, and as an attacker would: options, quotes of every
// kind, expansions, command separators and substitutions.
QString randomArguments(QRandomGenerator &random)
{
    static const QStringList pieces { u" "_s, u" "_s, u"  "_s, u"\t"_s, u"\n"_s, u"-f"_s, u"--limit-rate"_s, u"1M"_s,
        u"-o"_s, u"%(title)s.%(ext)s"_s, u"bv*+ba/b"_s, u"'"_s, u"\""_s, u"\\"_s, u"$'\\'"_s, u"'\\''"_s,
        u";touch x;#"_s, u"$(id)"_s, u"`id`"_s, u"$HOME"_s, u"${HOME}"_s, u"$NOPE"_s, u"$"_s, u"~"_s, u"~/"_s, u"*"_s,
        u"?"_s, u"["_s, u"]"_s, u"{a,b}"_s, u"("_s, u")"_s, u"|"_s, u"&"_s, u"<"_s, u">"_s, u"!"_s, u"="_s, u"=ls"_s,
        u"#"_s, u"^"_s, u"%"_s, u"视频"_s, u"🎬"_s, u"a"_s, u"0"_s, u"/"_s, u"-"_s, u"\r"_s };
    QString text;
    const int length = random.bounded(1, 16);
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
    // Real download commands for generated links, folders and custom arguments, run by the real
    // shell: the child must receive the link and folder byte for byte, and exactly the words the
    // custom text splits into. The child is a shell function that prints its arguments with
    // builtins, so ten thousand commands need no process each.
    QFETCH(QString, shell);
    if (!QFileInfo::exists(shell))
        QSKIP("shell not installed");
    const QString dumper = u"argvdump"_s;
    const QString function = uR"(argvdump() { for a in "$@"; do printf '%s\0' "$a"; done; printf '\036\n'; })"_s;

    QRandomGenerator random(20261123);
    constexpr int texts = 10000;
    constexpr int perBatch = 500;
    int checked = 0;
    int refused = 0;
    while (checked < texts) {
        QList<QByteArrayList> expected;
        QStringList commands { function };
        while (commands.size() <= perBatch) {
            DownloadRequest request;
            request.url = u"https://example.invalid/"_s + randomText(random);
            request.outputDir = u"/tmp/"_s + randomText(random);
            request.preset = DownloadPreset::Custom;
            request.customArgs = randomArguments(random);
            const ShellWords custom = splitShellWords(request.customArgs);
            if (!custom.ok()) {
                ++refused;
                continue;
            }
            commands << DownloadManager::buildDownloadCommand(dumper, request, {}, {}, false);
            QByteArrayList argv { "-o", (request.outputDir + u"/%(title)s.%(ext)s"_s).toUtf8() };
            for (const QString &word : custom.words)
                argv << word.toUtf8();
            argv << "--progress"
                 << "--" << request.url.toUtf8();
            expected << argv;
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
            if (argv != expected.at(i)) {
                qWarning() << "command" << commands.at(i + 1) << "gave" << argv << "wanted" << expected.at(i);
                QFAIL("argv differs");
            }
            ++checked;
        }
    }
    QCOMPARE(checked, texts);
    qInfo("%d texts kept their link and words, %d refused as unusable", checked, refused);
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
