#include "views/presenters/formatpicker.h"
#include "views/presenters/inputpresenter.h"

#include "engine/enginefixture.h"

#include <QSignalSpy>
#include <QtTest>

using namespace Qt::StringLiterals;

class TestInputPresenter : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void pasteAndDrop();
    void startQueuesEveryLink();
    void customArgumentsOnlyUnderCustom();
    void blankInputQueuesNothing();
    void listFormats();
};

namespace {
// The stand-in as yt-dlp, downloading into the sandbox without cookies; nothing waited for.
std::unique_ptr<SandboxEngine> makeEngine()
{
    auto engine = SandboxEngine::start({}, {});
    engine->state.setOutputDirectory(engine->fixture.path(u"out"_s));
    engine->state.setUseCookies(false);
    engine->fake.setScenario("[]");
    return engine;
}
} // namespace

void TestInputPresenter::pasteAndDrop()
{
    auto engine = makeEngine();
    InputPresenter presenter(&engine->state, engine->manager.get());
    QVERIFY(!presenter.paste(QString()));
    QCOMPARE(engine->state.urlInput(), QString());
    QVERIFY(presenter.paste(u"https://one"_s));
    QCOMPARE(engine->state.urlInput(), u"https://one"_s);
    QVERIFY(presenter.paste(u"https://two"_s));
    QCOMPARE(engine->state.urlInput(), u"https://one\nhttps://two"_s);

    engine->state.setUrlInput(u"x"_s);
    QVERIFY(presenter.dropLinks({ QUrl(u"https://a.example/1"_s), QUrl(u"https://a.example/2"_s) }, QString()));
    QCOMPARE(engine->state.urlInput(), u"x\nhttps://a.example/1\nhttps://a.example/2"_s);
    QVERIFY(presenter.dropLinks({}, u"  https://b.example/3\n"_s));
    QCOMPARE(engine->state.urlInput(), u"x\nhttps://a.example/1\nhttps://a.example/2\nhttps://b.example/3"_s);
    QVERIFY(!presenter.dropLinks({}, u"  "_s));
}

void TestInputPresenter::startQueuesEveryLink()
{
    auto engine = makeEngine();
    InputPresenter presenter(&engine->state, engine->manager.get());
    QSignalSpy loading(&presenter, &InputPresenter::isLoadingChanged);
    const QString input = u"  a.example/1  \n\nhello world\n\thttps://b.example/2\n   "_s;
    engine->state.setUrlInput(input);
    engine->state.setSelectedPreset(DownloadPreset::AudioOnly);
    engine->state.setDownloadPlaylist(false);
    presenter.startDownload();
    QCOMPARE(loading.count(), 2);
    QVERIFY(!presenter.isLoading());
    const auto tasks = engine->manager->tasks();
    QCOMPARE(tasks.size(), 2);
    QCOMPARE(tasks.at(0).url, u"a.example/1"_s);
    QCOMPARE(tasks.at(1).url, u"https://b.example/2"_s);
    QCOMPARE(engine->state.urlInput(), input); // the editor keeps its text
    QCOMPARE(presenter.rejectedLines(), QStringList { u"hello world"_s });
    QCOMPARE(presenter.startNotice(), QString());
    engine->state.setUrlInput(input + u"x"_s); // an edit clears the marks
    QCOMPARE(presenter.rejectedLines(), QStringList());

    QTRY_COMPARE_WITH_TIMEOUT(engine->fake.runs().size(), 2, 20000);
    for (const QStringList &argv : engine->fake.runs()) {
        QVERIFY(argv.contains(u"--no-playlist"_s));
        QVERIFY(argv.contains(u"--audio-format"_s));
        QVERIFY(
            argv.contains(u"-o"_s) && argv.at(argv.indexOf(u"-o"_s) + 1).startsWith(engine->fixture.path(u"out/"_s)));
    }
}

void TestInputPresenter::customArgumentsOnlyUnderCustom()
{
    auto engine = makeEngine();
    InputPresenter presenter(&engine->state, engine->manager.get());
    engine->state.setCustomArguments(u"--limit-rate 1M"_s);
    engine->state.setUrlInput(u"https://c.example/1"_s);
    engine->state.setSelectedPreset(DownloadPreset::BestQuality);
    presenter.startDownload();
    engine->state.setSelectedPreset(DownloadPreset::Custom);
    engine->state.setUrlInput(u"https://c.example/2"_s);
    presenter.startDownload();
    QTRY_COMPARE_WITH_TIMEOUT(engine->fake.runs().size(), 2, 20000);
    for (const QStringList &argv : engine->fake.runs()) {
        const bool custom = argv.constLast() == u"https://c.example/2"_s;
        QCOMPARE(argv.contains(u"--limit-rate"_s), custom);
        QCOMPARE(argv.contains(u"bv*+ba/b"_s), !custom);
    }
    QCOMPARE(engine->state.customArguments(), u"--limit-rate 1M"_s);
}

void TestInputPresenter::blankInputQueuesNothing()
{
    auto engine = makeEngine();
    InputPresenter presenter(&engine->state, engine->manager.get());
    QSignalSpy loading(&presenter, &InputPresenter::isLoadingChanged);
    presenter.startDownload(); // empty: nothing but the notice
    QCOMPARE(loading.count(), 0);
    QCOMPARE(presenter.startNotice(), u"请先输入视频链接"_s);
    engine->state.setUrlInput(u" \n\t\nhello\n"_s);
    QCOMPARE(presenter.startNotice(), QString());
    presenter.startDownload(); // no link: busy for a moment, nothing queued
    QCOMPARE(loading.count(), 2);
    QCOMPARE(engine->manager->tasks().size(), 0);
    QCOMPARE(presenter.startNotice(), u"没有可以下载的链接"_s);
    QCOMPARE(presenter.rejectedLines(), QStringList { u"hello"_s });
}

void TestInputPresenter::listFormats()
{
    auto engine = makeEngine();
    InputPresenter presenter(&engine->state, engine->manager.get());
    QSignalSpy listed(&presenter, &InputPresenter::formatsListed);
    engine->state.setUrlInput(u"  https://f.example/1\nhttps://f.example/2"_s);
    qputenv("FAKE_YTDLP_FORMATS", "ID EXT\n18 mp4");
    presenter.listFormats();
    QVERIFY(presenter.isListingFormats());
    presenter.listFormats(); // one at a time: a second press while listing does nothing
    QTRY_COMPARE_WITH_TIMEOUT(listed.count(), 1, 20000);
    // The picker fetches the same link's formats alongside.
    QTRY_COMPARE_WITH_TIMEOUT(presenter.formatPicker()->count(), 5, 20000);
    QTest::qWait(200);
    QCOMPARE(listed.count(), 1);
    QVERIFY(!presenter.isListingFormats());
    QCOMPARE(listed.at(0).at(0).toString(), u"ID EXT\n18 mp4\n"_s);
    const QList<QStringList> runs = engine->fake.runs(true);
    QCOMPARE(runs.size(), 2);
    for (const QStringList &argv : runs) // the first line, untrimmed
        QCOMPARE(argv.constLast(), u"  https://f.example/1"_s);
    QCOMPARE(runs.at(0).contains(u"-J"_s) + runs.at(1).contains(u"-J"_s), 1);
}

QTEST_MAIN(TestInputPresenter)
#include "tst_inputpresenter.moc"
