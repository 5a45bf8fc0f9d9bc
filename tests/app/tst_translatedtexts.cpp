#include "app/commandline.h"
#include "app/desktop.h"
#include "app/rendererchoice.h"
#include "model/appstate.h"
#include "model/downloadchoices.h"
#include "model/downloadpreset.h"
#include "model/downloadtask.h"
#include "model/playlist.h"
#include "model/presetlistmodel.h"
#include "model/taskmodel.h"
#include "model/videoinfo.h"

#include "testsupport.h"

#include <QRegularExpression>
#include <QSettings>
#include <QTranslator>
#include <QtTest>

#include <functional>

using namespace Qt::StringLiterals;

namespace {
// A catalogue that translates the texts in `words` and every other one by writing its Chinese as
// "#", keeping its %1 and %n: a text shown with any Chinese left in it was put together from a
// piece that was not translated.
class HashTranslator : public QTranslator
{
public:
    explicit HashTranslator(QHash<QString, QString> words = {})
        : m_words(std::move(words))
    {
        QCoreApplication::installTranslator(this);
    }
    ~HashTranslator() override { QCoreApplication::removeTranslator(this); }

    QString translate(const char *, const char *sourceText, const char *, int) const override
    {
        static const QRegularExpression chinese(u"[\\x{3000}-\\x{303f}\\x{4e00}-\\x{9fff}\\x{ff00}-\\x{ffef}“”]"_s);
        const QString source = QString::fromUtf8(sourceText);
        return m_words.value(source, QString(source).replace(chinese, u"#"_s));
    }
    bool isEmpty() const override { return false; }

private:
    QHash<QString, QString> m_words;
};

const QRegularExpression anyChinese(u"[\\x{4e00}-\\x{9fff}]"_s);
} // namespace

class TestTranslatedTexts : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init() { IsolatedEnvironment::clearSettings(); }
    void textsAreTranslated_data();
    void textsAreTranslated();
    void storedValuesStayKeys();
    void receivedLinksAreLoggedTranslated();

private:
    IsolatedEnvironment m_env;
};

void TestTranslatedTexts::textsAreTranslated_data()
{
    QTest::addColumn<std::function<QString()>>("text");
    DownloadChoices all;
    all.subtitles = u"embed"_s;
    all.embedThumbnail = all.embedChapters = true;
    all.sponsorBlock = u"remove"_s;
    all.rateLimit = u"2M"_s;
    all.proxy = u"ftp://x"_s;
    all.fileTemplate = u"%(title)s"_s;
    all.useArchive = true;
    all.compatibility = u"smallest"_s;
    DownloadTask stopped = DownloadTask::create(u"https://v.example/1"_s);
    stopped.status = DownloadStatus::Paused;
    stopped.progress = 0.5;
    stopped.size = u"10.00MiB"_s;
    stopped.eta = u"00:31"_s;
    RendererChoice::Signs remote;
    remote.display = u"far:10.0"_s;

    QTest::newRow("status") << std::function([] { return rawValue(DownloadStatus::Completed); });
    QTest::newRow("preset") << std::function([] { return rawValue(DownloadPreset::BestVideoAudio); });
    QTest::newRow("preset card") << std::function(
        [] { return PresetListModel::descriptionFor(DownloadPreset::AudioOnly); });
    QTest::newRow("options summary") << std::function([all] { return all.summary(); });
    QTest::newRow("options unset") << std::function([] { return DownloadChoices().summary(); });
    QTest::newRow("options problem") << std::function([all] { return all.problem(); });
    QTest::newRow("task details") << std::function([stopped] { return TaskModel::details(stopped); });
    QTest::newRow("unknown length") << std::function([] { return VideoInfo().durationText(); });
    QTest::newRow("item ranges") << std::function([] {
        QString error;
        parseItemRanges(u"3-1"_s, 5, &error);
        return error;
    });
    QTest::newRow("unknown option") << std::function([] { return CommandLine::parse({ u"--nope"_s }).error; });
    QTest::newRow("help") << std::function([] { return CommandLine::helpText(); });
    QTest::newRow("renderer") << std::function([remote] { return RendererChoice::decide(u"auto"_s, remote).reason; });
    QTest::newRow("opener") << std::function([] { return Desktop::openerFailure(true, 3, {}); });
    QTest::newRow("handed over") << std::function([] { return Handover { false, {}, u"命令行"_s }.fromText(); });
}

// With a catalogue loaded, what the model and the application say is all of it translated; with
// none, it is the Chinese it always was.
void TestTranslatedTexts::textsAreTranslated()
{
    QFETCH(std::function<QString()>, text);
    const QString chinese = text();
    QVERIFY(chinese.contains(anyChinese));
    {
        const HashTranslator translator;
        const QString translated = text();
        QVERIFY2(!translated.contains(anyChinese), qPrintable(translated));
    }
    QCOMPARE(text(), chinese);
}

// Labels are shown translated, but what is stored stays the key, and a label an older store kept
// is still read back in whatever language is shown.
void TestTranslatedTexts::storedValuesStayKeys()
{
    const HashTranslator translator({ { u"已完成"_s, u"Completed"_s } });
    QCOMPARE(rawValue(DownloadStatus::Completed), u"Completed"_s);
    QCOMPARE(storageKey(DownloadStatus::Completed), u"completed"_s);
    QVERIFY(downloadStatusFromRawValue(u"已完成") == DownloadStatus::Completed);
    QVERIFY(!downloadStatusFromRawValue(u"Completed"));
    QVERIFY(downloadPresetFromRawValue(u"最佳视频+音频") == DownloadPreset::BestVideoAudio);
    {
        AppState state;
        state.setSelectedPreset(DownloadPreset::BestAudio);
    }
    QCOMPARE(QSettings().value(QLatin1String(AppState::SelectedPresetKey)).toString(), u"bestAudio"_s);
}

// The log line of links taken from elsewhere is one translated text, with where they came from
// (said by the caller) and how many were left out.
void TestTranslatedTexts::receivedLinksAreLoggedTranslated()
{
    const HashTranslator translator(
        { { u"从%1收到 %n 个链接"_s, u"%n link(s) from %1"_s }, { u"链接"_s, u"a quillbox:// link"_s },
            { u"（未采用：%1）"_s, u" (not taken: %1)"_s }, { u"%n 行不是链接"_s, u"%n line(s) not a link"_s },
            { u"%n 行过长"_s, u"%n line(s) too long"_s }, { u"，"_s, u", "_s } });
    AppState state;
    const QStringList texts { u"a.example/1 nonsense b.example/2"_s, QString(100000, u'a') };
    QCOMPARE(state.receiveLinks(texts, Handover { false, {}, u"链接"_s }.fromText()), 2);
    QTRY_COMPARE(state.logModel()->count(), 1);
    QCOMPARE(state.logModel()->at(0).message,
        u"2 link(s) from a quillbox:// link (not taken: 1 line(s) not a link, 1 line(s) too long)"_s);
}

QTEST_GUILESS_MAIN(TestTranslatedTexts)
#include "tst_translatedtexts.moc"
