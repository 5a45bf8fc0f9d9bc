#include "engine/downloadmanager.h"
#include "engine/secretarguments.h"
#include "engine/shellcommand.h"
#include "engine/shellwords.h"
#include "engine/tooltext.h"

#include <QFileInfo>
#include <QProcess>
#include <QRandomGenerator>
#include <QtTest>

using namespace Qt::StringLiterals;

// Custom text split into words as a POSIX shell splits it, commands rendered from raw words, and
// what of them is shown: each against a real shell wherever one can answer.
class TestShellWords : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void split_data();
    void split();
    void refused_data();
    void refused();
    void agreesWithAShell();
    void rendered_data();
    void rendered();
    void roundTrip_data();
    void roundTrip();
    void masked_data();
    void masked();
    void decodeStrictUtf8_data();
    void decodeStrictUtf8();
};

namespace {
// Runs `commands`, one a line, in one `shell -c`; each command's program prints its arguments,
// each ended by a NUL byte, then 0x1E and a newline (as fakes/argvdump does). Returns the argv
// each command's program received, in order; nothing if the shell failed.
QList<QByteArrayList> recordedArgvs(const QString &shell, const QStringList &commands)
{
    QProcess process;
    process.start(shell, { u"-c"_s, commands.join(u'\n') });
    if (!process.waitForFinished(60000) || process.exitStatus() != QProcess::NormalExit || process.exitCode() != 0)
        return {};
    QList<QByteArray> records = process.readAllStandardOutput().split('\x1e');
    records.removeLast(); // the newline after the last record
    QList<QByteArrayList> argvs;
    for (QByteArray record : std::as_const(records)) {
        if (record.startsWith('\n'))
            record.remove(0, 1);
        QByteArrayList argv = record.split('\0');
        argv.removeLast(); // what follows the last NUL: nothing
        argvs << argv;
    }
    return argvs;
}

// From 1 to `most` - 1 of `pieces`, drawn by `random`.
QString randomText(QRandomGenerator &random, const QStringList &pieces, int most)
{
    QString text;
    for (int i = random.bounded(1, most); i > 0; --i)
        text += pieces.at(random.bounded(pieces.size()));
    return text;
}

// Links and folders: every character a shell treats specially, and text that is not ASCII.
const QStringList textPieces { u"'"_s, u"\""_s, u"$"_s, u"`"_s, u"\\"_s, u" "_s, u"\n"_s, u"\t"_s, u"!"_s, u"*"_s,
    u"?"_s, u"["_s, u"]"_s, u"{"_s, u"}"_s, u";"_s, u"&"_s, u"|"_s, u"<"_s, u">"_s, u"("_s, u")"_s, u"#"_s, u"~"_s,
    u"%"_s, u"="_s, u"-"_s, u"视频"_s, u"é"_s, u"🎬"_s, u"e\u0301"_s, u"$(id)"_s, u"${HOME}"_s, u"'\\''"_s,
    u"%(title)s"_s, u"a"_s, u"Z"_s, u"0"_s, u"/"_s, u"."_s, u"\r"_s, u"\u00a0"_s };

// Custom arguments as people write them, and as an attacker would: options, quotes of every
// kind, expansions, command separators and substitutions.
const QStringList argumentPieces { u" "_s, u" "_s, u"  "_s, u"\t"_s, u"\n"_s, u"-f"_s, u"--limit-rate"_s, u"1M"_s,
    u"-o"_s, u"%(title)s.%(ext)s"_s, u"bv*+ba/b"_s, u"'"_s, u"\""_s, u"\\"_s, u"$'\\'"_s, u"'\\''"_s, u";touch x;#"_s,
    u"$(id)"_s, u"`id`"_s, u"$HOME"_s, u"${HOME}"_s, u"$NOPE"_s, u"$"_s, u"~"_s, u"~/"_s, u"*"_s, u"?"_s, u"["_s,
    u"]"_s, u"{a,b}"_s, u"("_s, u")"_s, u"|"_s, u"&"_s, u"<"_s, u">"_s, u"!"_s, u"="_s, u"=ls"_s, u"#"_s, u"^"_s,
    u"%"_s, u"视频"_s, u"🎬"_s, u"a"_s, u"0"_s, u"/"_s, u"-"_s, u"\r"_s };
} // namespace

void TestShellWords::initTestCase()
{
    qputenv("HOME", "/home/someone");
    qputenv("QB_SPACED", " two  words ");
    qunsetenv("QB_UNSET");
}

void TestShellWords::split_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<QStringList>("words");
    // Quotes, escapes, variables and "~" are compared with a real shell by agreesWithAShell; these
    // are the cases it does not generate.
    QTest::newRow("empty") << QString() << QStringList();
    QTest::newRow("blanks and newlines") << u" --limit-rate\t1M\n-f  best "_s
                                         << QStringList { u"--limit-rate"_s, u"1M"_s, u"-f"_s, u"best"_s };
    QTest::newRow("single quotes keep everything")
        << u"-f 'best[height<=480]' '$HOME `x` \\'"_s
        << QStringList { u"-f"_s, u"best[height<=480]"_s, u"$HOME `x` \\"_s };
    QTest::newRow("backslash-newline joins") << u"ab\\\ncd"_s << QStringList { u"abcd"_s };
    QTest::newRow("command separators are ordinary")
        << u";touch x;# a|b&c>d"_s << QStringList { u";touch"_s, u"x;#"_s, u"a|b&c>d"_s };
    QTest::newRow("a dollar that names nothing")
        << u"$ 5$ $/ $-"_s << QStringList { u"$"_s, u"5$"_s, u"$/"_s, u"$-"_s };
}

void TestShellWords::split()
{
    QFETCH(QString, text);
    QFETCH(QStringList, words);
    const ShellWords result = splitShellWords(text);
    QVERIFY2(result.ok(), qPrintable(result.error));
    QCOMPARE(result.words, words);
}

void TestShellWords::refused_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<QString>("reason");
    QTest::newRow("open double quote") << u"-o \"x"_s << u"双引号没有闭合"_s;
    QTest::newRow("command substitution") << u"-o $(id)"_s << u"命令替换"_s;
    QTest::newRow("backticks") << u"-o `id`"_s << u"命令替换"_s;
    QTest::newRow("substitution inside double quotes") << u"\"$(touch x)\""_s << u"命令替换"_s;
    QTest::newRow("braced expression") << u"${HOME:-x}"_s << u"变量名"_s;
    QTest::newRow("unclosed brace") << u"${HOME"_s << u"变量名"_s;
}

void TestShellWords::refused()
{
    QFETCH(QString, text);
    QFETCH(QString, reason);
    const ShellWords result = splitShellWords(text);
    QVERIFY(!result.ok());
    QVERIFY2(result.error.contains(reason), qPrintable(result.error));
    QVERIFY(result.words.isEmpty());
}

void TestShellWords::agreesWithAShell()
{
    // Generated texts without the parts where shells differ from one another (ANSI-C quotes,
    // brace expansion, comments, operators, special parameters, a newline ending a command): a
    // POSIX shell with file-name
    // matching off must hand a program exactly the words we split.
    const QString sh = u"/bin/sh"_s;
    const QString dumper = QCoreApplication::applicationDirPath() + u"/argvdump"_s;
    if (!QFileInfo(dumper).isExecutable())
        QSKIP("argvdump is not built");
    static const QStringList pieces { u" "_s, u"  "_s, u"\t"_s, u"'"_s, u"\""_s, u"\\"_s, u"$HOME"_s, u"${HOME}"_s,
        u"$QB_SPACED"_s, u"$QB_UNSET"_s, u"$/"_s, u"~"_s, u"~/"_s, u"/"_s, u"-f"_s, u"a"_s, u"Z9"_s, u"*"_s, u"?"_s,
        u"["_s, u"]"_s, u"="_s, u"%"_s, u"视频"_s, u"é"_s, u"."_s, u"-"_s };
    QRandomGenerator random(18);
    int compared = 0;
    for (int batch = 0; batch < 5; ++batch) {
        QStringList commands { u"set -f"_s };
        QList<QStringList> expected;
        while (expected.size() < 200) {
            const QString text = randomText(random, pieces, 12);
            const ShellWords result = splitShellWords(text);
            // Each text on its own line, so a last backslash would join it to the next one.
            if (!result.ok() || text.endsWith(u'\\'))
                continue;
            commands << u"'"_s + dumper + u"' "_s + text;
            expected << result.words;
        }
        const QList<QByteArrayList> argvs = recordedArgvs(sh, commands);
        QCOMPARE(argvs.size(), expected.size());
        for (qsizetype i = 0; i < expected.size(); ++i) {
            QStringList words;
            for (const QByteArray &word : argvs.at(i))
                words << QString::fromUtf8(word);
            QVERIFY2(words == expected.at(i),
                qPrintable(u"text %1: shell %2, split %3"_s.arg(
                    commands.at(i + 1), words.join(u'|'), expected.at(i).join(u'|'))));
            ++compared;
        }
    }
    QCOMPARE(compared, 1000);
}

void TestShellWords::rendered_data()
{
    QTest::addColumn<QStringList>("words");
    QTest::addColumn<QString>("link");
    QTest::addColumn<QString>("text"); // after the program
    QTest::newRow("plain") << QStringList { u"-f"_s, u"/a_b/c-d+e:f@g%h.i"_s } << u"u"_s
                           << u"-f /a_b/c-d+e:f@g%h.i -- 'u'"_s;
    QTest::newRow("blanks, quotes") << QStringList { u"a b\tc\nd"_s, u"it's \"$HOME`id`\\;|&>~"_s } << u"-x"_s
                                    << u"'a b\tc\nd' 'it'\\''s \"$HOME`id`\\;|&>~' -- '-x'"_s;
    QTest::newRow("glob, empty, non-ASCII")
        << QStringList { u"bv*+ba/b"_s, QString(), u"视频🎬"_s } << u"https://e.test/?a&b"_s
        << u"'bv*+ba/b' '' '视频🎬' -- 'https://e.test/?a&b'"_s;
}

void TestShellWords::rendered()
{
    // A real shell hands the program exactly the raw words, and the link after "--".
    QFETCH(QStringList, words);
    QFETCH(QString, link);
    const QString dumper = QCoreApplication::applicationDirPath() + u"/argvdump"_s;
    const QString text = ShellCommand(dumper, words).link(link).text();
    QTEST(text.mid(ShellCommand(dumper).text().size() + 1), "text");
    QByteArrayList argv;
    for (const QString &word : words + QStringList { u"--"_s, link })
        argv << word.toUtf8();
    QCOMPARE(recordedArgvs(u"/bin/sh"_s, { text }), QList<QByteArrayList> { argv });
}

void TestShellWords::roundTrip_data()
{
    QTest::addColumn<QString>("shell");
    QTest::newRow("zsh") << u"/bin/zsh"_s;
    QTest::newRow("bash") << u"/bin/bash"_s;
}

void TestShellWords::roundTrip()
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
            request.url = u"https://example.invalid/"_s + randomText(random, textPieces, 24);
            request.outputDir = u"/tmp/"_s + randomText(random, textPieces, 24);
            request.preset = DownloadPreset::Custom;
            request.customArgs = randomText(random, argumentPieces, 16);
            const ShellWords custom = splitShellWords(request.customArgs);
            if (!custom.ok()) {
                ++refused;
                continue;
            }
            commands << DownloadManager::buildDownloadCommand(dumper, request, {}, {}, {});
            QByteArrayList argv { "-o", (request.outputDir + u"/%(title)s.%(ext)s"_s).toUtf8() };
            for (const QString &word : custom.words)
                argv << word.toUtf8();
            argv << "--progress"
                 << "--" << request.url.toUtf8();
            expected << argv;
        }
        const QList<QByteArrayList> argvs = recordedArgvs(shell, commands);
        QCOMPARE(argvs.size(), perBatch);
        for (int i = 0; i < perBatch; ++i) {
            if (argvs.at(i) != expected.at(i)) {
                qWarning() << "command" << commands.at(i + 1) << "gave" << argvs.at(i) << "wanted" << expected.at(i);
                QFAIL("argv differs");
            }
            ++checked;
        }
    }
    QCOMPARE(checked, texts);
    qInfo("%d texts kept their link and words, %d refused as unusable", checked, refused);
}

void TestShellWords::masked_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<QString>("shown");

    const QString m = SecretMask.toString();
    QTest::newRow("value apart") << u"-u me --password hunter2 -f b"_s << u"-u me --password "_s + m + u" -f b"_s;
    QTest::newRow("value joined") << u"--video-password=v1 --ap-password=\"a b\""_s
                                  << u"--video-password="_s + m + u" --ap-password="_s + m;
    QTest::newRow("short -p, apart and joined") << u"-p hunter2 -phunter2"_s << u"-p "_s + m + u" -p"_s + m;
    QTest::newRow("quoted value, quote inside") << u"--client-certificate-password \"a\\\" b\" --twofactor 123456"_s
                                                << u"--client-certificate-password "_s + m + u" --twofactor "_s + m;
    QTest::newRow("quoted option name") << u"'--password' 's e c' -x"_s << u"'--password' "_s + m + u" -x"_s;
    QTest::newRow("blanks kept, newline between")
        << u"--password\n\tpw  -f  b"_s << u"--password\n\t"_s + m + u"  -f  b"_s;
    QTest::newRow("open quote masked to the end") << u"--password 'hunter2 -f b"_s << u"--password "_s + m;
    QTest::newRow("option last, no value") << u"-f b --password"_s << u"-f b --password"_s;
    QTest::newRow("not the option, only like it")
        << u"--password-x=1 --passwords y -P pp"_s << u"--password-x=1 --passwords y -P pp"_s;
    // A whole command: what follows "--" is the link, whatever it looks like.
    QTest::newRow("rendered command")
        << u"/usr/bin/yt-dlp --no-playlist -o '/tmp/x/%(title)s.%(ext)s' --password 'p w' --progress -- "
           u"'https://e.test/--password'"_s
        << u"/usr/bin/yt-dlp --no-playlist -o '/tmp/x/%(title)s.%(ext)s' --password "_s + m
            + u" --progress -- 'https://e.test/--password'"_s;
    QTest::newRow("after --, -p is the link") << u"-- -p secret"_s << u"-- -p secret"_s;
}

void TestShellWords::masked()
{
    QFETCH(QString, text);
    QFETCH(QString, shown);
    QCOMPARE(maskSecrets(text), shown);
}

void TestShellWords::decodeStrictUtf8_data()
{
    QTest::addColumn<QByteArray>("bytes");
    QTest::addColumn<QString>("text");
    QTest::newRow("valid") << u"yt-dlp 视频🎬\n"_s.toUtf8() << u"yt-dlp 视频🎬\n"_s;
    QTest::newRow("a stray byte") << QByteArray("ok\xff") << QString();
    QTest::newRow("cut short at the end") << QByteArray("ok\xe9\xa2") << QString();
}

void TestShellWords::decodeStrictUtf8()
{
    QFETCH(QByteArray, bytes);
    QTEST(decodeUtf8OrEmpty(bytes), "text");
}

QTEST_GUILESS_MAIN(TestShellWords)
#include "tst_shellwords.moc"
