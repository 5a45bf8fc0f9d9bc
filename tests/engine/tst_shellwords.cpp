#include "engine/shellcommand.h"
#include "engine/shellwords.h"

#include "shellrecords.h"

#include <QFileInfo>
#include <QRandomGenerator>
#include <QtTest>

using namespace Qt::StringLiterals;

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
};

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
            QString text;
            for (int i = random.bounded(1, 12); i > 0; --i)
                text += pieces.at(random.bounded(pieces.size()));
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

QTEST_GUILESS_MAIN(TestShellWords)
#include "tst_shellwords.moc"
