#include "app/commandline.h"
#include "app/desktop.h"
#include "app/rendererchoice.h"
#include "model/appstate.h"
#include "model/playlist.h"
#include "model/presetlistmodel.h"
#include "model/taskmodel.h"

#include "testsupport.h"

#include <QRegularExpression>
#include <QTranslator>
#include <QtTest>

#include <functional>

using namespace Qt::StringLiterals;

namespace {
// Translates the texts in `words`, and any other by writing its Chinese as "#" (keeping %1 and
// %n): a text that still shows Chinese was put together from a piece that was not translated.
class HashTranslator : public QTranslator
{
public:
    explicit HashTranslator(QHash<QString, QString> words = {})
        : m_words(std::move(words))
    {
        QCoreApplication::installTranslator(this);
    }
    ~HashTranslator() override { QCoreApplication::removeTranslator(this); }
    QString translate(const char *, const char *source, const char *, int) const override
    {
        static const QRegularExpression chinese(u"[\\x{3000}-\\x{303f}\\x{4e00}-\\x{9fff}\\x{ff00}-\\x{ffef}“”]"_s);
        return m_words.value(QString::fromUtf8(source), QString::fromUtf8(source).replace(chinese, u"#"_s));
    }
    bool isEmpty() const override { return false; }

private:
    QHash<QString, QString> m_words;
};
} // namespace

class TestTranslatedTexts : public QObject
{
    Q_OBJECT

private Q_SLOTS:
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
    all.embedThumbnail = all.embedChapters = all.useArchive = true;
    all.sponsorBlock = u"remove"_s;
    all.rateLimit = u"2M"_s;
    all.proxy = u"ftp://x"_s;
    all.compatibility = u"smallest"_s;
    DownloadTask stopped = DownloadTask::create(u"https://v.example/1"_s);
    stopped.status = DownloadStatus::Paused;
    stopped.progress = 0.5;
    stopped.size = u"10.00MiB"_s;
    stopped.eta = u"00:31"_s;
    RendererChoice::Signs remote;
    remote.display = u"far:10.0"_s;

    QTest::newRow("preset card") << std::function(
        [] { return PresetListModel::descriptionFor(DownloadPreset::AudioOnly); });
    QTest::newRow("options") << std::function([all]() -> QString { return all.summary() + all.problem(); });
    QTest::newRow("task details") << std::function([stopped] { return TaskModel::details(stopped); });
    QTest::newRow("item ranges") << std::function([] {
        QString error;
        parseItemRanges(u"3-1"_s, 5, &error);
        return error;
    });
    QTest::newRow("command line") << std::function([] { return CommandLine::parse({ u"--nope"_s }).error; });
    QTest::newRow("renderer") << std::function([remote] { return RendererChoice::decide(u"auto"_s, remote).reason; });
    QTest::newRow("opener") << std::function([] { return Desktop::openerFailure(true, 3, {}); });
}

// With a catalogue loaded, what the model and the application say is translated whole; without
// one, it is the Chinese it always was.
void TestTranslatedTexts::textsAreTranslated()
{
    QFETCH(std::function<QString()>, text);
    static const QRegularExpression anyChinese(u"[\\x{4e00}-\\x{9fff}]"_s);
    const QString chinese = text();
    QVERIFY(chinese.contains(anyChinese));
    {
        const HashTranslator translator;
        QVERIFY2(!text().contains(anyChinese), qPrintable(text()));
    }
    QCOMPARE(text(), chinese);
}

// Labels are shown translated, while the key is what is stored, and a Chinese label an older store
// kept is still read back.
void TestTranslatedTexts::storedValuesStayKeys()
{
    const HashTranslator translator({ { u"已完成"_s, u"Completed"_s } });
    QCOMPARE(rawValue(DownloadStatus::Completed), u"Completed"_s);
    QCOMPARE(storageKey(DownloadStatus::Completed), u"completed"_s);
    QVERIFY(downloadStatusFromRawValue(u"已完成") == DownloadStatus::Completed);
    QVERIFY(!downloadStatusFromRawValue(u"Completed"));
    QVERIFY(downloadPresetFromRawValue(u"最佳视频+音频") == DownloadPreset::BestVideoAudio);
}

// Links from elsewhere are logged in one translated line, with where they came from (the Chinese
// word a hand-over carries, translated on arrival) and what was left out.
void TestTranslatedTexts::receivedLinksAreLoggedTranslated()
{
    const HashTranslator translator({ { u"从%1收到 %n 个链接"_s, u"%n link(s) from %1"_s }, { u"链接"_s, u"a link"_s },
        { u"（未采用：%1）"_s, u" (not taken: %1)"_s }, { u"，"_s, u", "_s },
        { u"%n 行不是链接"_s, u"%n not a link"_s }, { u"%n 行过长"_s, u"%n too long"_s } });
    AppState state;
    const QStringList texts { u"a.example/1 nonsense b.example/2"_s, QString(100000, u'a') };
    QCOMPARE(state.receiveLinks(texts, Handover { false, {}, u"链接"_s }.fromText()), 2);
    QTRY_COMPARE(state.logModel()->count(), 1);
    QCOMPARE(state.logModel()->at(0).message, u"2 link(s) from a link (not taken: 1 not a link, 1 too long)"_s);
}

QTEST_GUILESS_MAIN(TestTranslatedTexts)
#include "tst_translatedtexts.moc"
