#include "engine/downloadmanager.h"
#include "engine/shellrunner.h"
#include "engine/shellwords.h"
#include "engine/tooltext.h"

#include "shellrecords.h"

#include <QFileInfo>
#include <QRandomGenerator>
#include <QtTest>

using namespace Qt::StringLiterals;

class TestShellRunner : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void decodeStrictUtf8_data();
    void decodeStrictUtf8();
    void roundTrip_data();
    void roundTrip();
};

void TestShellRunner::decodeStrictUtf8_data()
{
    QTest::addColumn<QByteArray>("bytes");
    QTest::addColumn<QString>("text");
    QTest::newRow("valid") << u"yt-dlp 视频🎬\n"_s.toUtf8() << u"yt-dlp 视频🎬\n"_s;
    QTest::newRow("a stray byte") << QByteArray("ok\xff") << QString();
    QTest::newRow("cut short at the end") << QByteArray("ok\xe9\xa2") << QString();
}

void TestShellRunner::decodeStrictUtf8()
{
    QFETCH(QByteArray, bytes);
    QTEST(decodeUtf8OrEmpty(bytes), "text");
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

void TestShellRunner::roundTrip_data()
{
    QTest::addColumn<QString>("shell");
    QTest::newRow("zsh") << u"/bin/zsh"_s;
    QTest::newRow("bash") << u"/bin/bash"_s;
}

void TestShellRunner::roundTrip()
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

QTEST_GUILESS_MAIN(TestShellRunner)
#include "tst_shellrunner.moc"
