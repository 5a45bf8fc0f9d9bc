// What the views' C++ helpers do on their own: the palette's hex colours, the format picker, the
// saved presets against a real store on its own thread, the input pane's presenter against the
// real engine (whose yt-dlp is the stand-in), and the thumbnails' cache on disk.

#include "app/thumbnailcache.h"
#include "views/colors.h"
#include "views/presenters/formatpicker.h"
#include "views/presenters/inputpresenter.h"
#include "views/presenters/savedpresetmodel.h"

#include "store/queuememory.h"

#include "engine/enginefixture.h"
#include "support/localserver.h"
#include "support/mediaserver.h"

#include <QAbstractItemModelTester>
#include <QNetworkAccessManager>
#include <QNetworkReply>
#include <QSignalSpy>
#include <QtTest>

using namespace Qt::StringLiterals;

namespace {
VideoFormat format(const QString &id, const char *vcodec, const char *acodec)
{
    VideoFormat f;
    f.formatId = id;
    f.ext = u"mp4"_s;
    if (vcodec)
        f.vcodec = QString::fromLatin1(vcodec);
    if (acodec)
        f.acodec = QString::fromLatin1(acodec);
    return f;
}

// The stand-in as yt-dlp, downloading into the sandbox without cookies; nothing waited for.
std::unique_ptr<SandboxEngine> makeEngine()
{
    auto engine = SandboxEngine::start({}, {});
    engine->state.setOutputDirectory(engine->fixture.path(u"out"_s));
    engine->state.setUseCookies(false);
    engine->fake.setScenario("[]");
    return engine;
}

// One GET through a manager of its own, as each of the QML engine's threads has: the body (or
// "error N"), and whether it came from the cache.
std::pair<QByteArray, bool> get(ThumbnailNetworkFactory &factory, const QUrl &url)
{
    QObject owner;
    std::unique_ptr<QNetworkReply> reply(factory.create(&owner)->get(QNetworkRequest(url)));
    if (!reply->isFinished())
        QSignalSpy(reply.get(), &QNetworkReply::finished).wait(30000);
    const QByteArray body = reply->error() ? "error " + QByteArray::number(reply->error()) : reply->readAll();
    return { body, reply->attribute(QNetworkRequest::SourceIsFromCacheAttribute).toBool() };
}
} // namespace

class TestViewModels : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void hexColor_data();
    void hexColor();
    void formatChoice_data();
    void formatChoice();
    void formatsFitTheOutcome_data();
    void formatsFitTheOutcome();
    void formatCells_data();
    void formatCells();
    void presetInsertIsAwaited();
    void presetStoreThatCannotSave();
    void pasteAndDrop();
    void startQueuesEveryLink();
    void listFormats();
    void thumbnailsKeptOnDisk();

private:
    IsolatedEnvironment m_env;
};

// The palette's colours are all "#RRGGBB"; anything unreadable is black, never transparent.
void TestViewModels::hexColor_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<QRgb>("rgb");
    QTest::newRow("no hash") << u"00D4FF"_s << QRgb(0x00D4FF);
    QTest::newRow("trimmed, lower case") << u" #00d4ff\n"_s << QRgb(0x00D4FF);
    QTest::newRow("unreadable is black") << u"zz"_s << QRgb(0x000000);
}

void TestViewModels::hexColor()
{
    QFETCH(QString, text);
    const QColor color = colorFromHex(text);
    QTEST(color.rgb() & 0xFFFFFF, "rgb");
    QCOMPARE(color.alphaF(), 1.0f);
}

// Rows: 0, 1 audio only; 2, 3 video only; 4 combined; 5 a storyboard (neither); 6 codecs unknown;
// 7 combined, with an id that needs quoting. What the clicks choose is what "apply" puts in the
// custom arguments; with nothing chosen it changes nothing.
void TestViewModels::formatChoice_data()
{
    QTest::addColumn<QList<int>>("clicks");
    QTest::addColumn<QString>("arguments");
    QTest::newRow("video and audio") << QList<int> { 3, 0 } << u"-f 5+1"_s;
    QTest::newRow("audio first still reads video+audio") << QList<int> { 0, 3 } << u"-f 5+1"_s;
    QTest::newRow("another audio replaces the audio") << QList<int> { 3, 0, 1 } << u"-f 5+2"_s;
    QTest::newRow("a combined format replaces both") << QList<int> { 3, 0, 4 } << u"-f 18"_s;
    QTest::newRow("a video replaces the combined one") << QList<int> { 4, 2 } << u"-f 3"_s;
    QTest::newRow("a second click unchooses") << QList<int> { 3, 0, 3 } << u"-f 1"_s;
    QTest::newRow("nothing chosen") << QList<int> {} << QString();
    QTest::newRow("a storyboard cannot be chosen") << QList<int> { 5 } << QString();
    QTest::newRow("unknown codecs count as combined") << QList<int> { 3, 6 } << u"-f mp4"_s;
    QTest::newRow("an id with a space is quoted") << QList<int> { 7 } << u"-f 'a b'"_s;
}

void TestViewModels::formatChoice()
{
    QFETCH(QList<int>, clicks);
    QFETCH(QString, arguments);
    AppState state;
    state.setSelectedPreset(DownloadPreset::Default);
    state.setCustomArguments(u"--limit-rate 1M"_s);
    FormatPicker picker(&state, nullptr);
    QAbstractItemModelTester tester(&picker);
    picker.setFormats({ format(u"1"_s, "none", "mp4a.40.2"), format(u"2"_s, "none", "opus"),
        format(u"3"_s, "avc1", "none"), format(u"5"_s, "vp9", "none"), format(u"18"_s, "avc1.42001E", "mp4a.40.2"),
        format(u"sb0"_s, "none", "none"), format(u"mp4"_s, nullptr, nullptr), format(u"a b"_s, "avc1", "mp4a") });
    for (int row : clicks)
        picker.toggle(row);
    QCOMPARE(picker.arguments(), arguments);
    QCOMPARE(picker.apply(), !arguments.isEmpty());
    QCOMPARE(state.customArguments(), arguments.isEmpty() ? u"--limit-rate 1M"_s : arguments);
    QCOMPARE(state.selectedPreset() == DownloadPreset::Custom, !arguments.isEmpty());
}

void TestViewModels::formatsFitTheOutcome_data()
{
    QTest::addColumn<QString>("outcome");
    QTest::addColumn<QStringList>("marked");
    QTest::newRow("any") << u"any"_s << QStringList();
    QTest::newRow("everywhere: H.264 and AAC in MP4") << u"everywhere"_s << QStringList { u"h"_s, u"aac"_s, u"c"_s };
    QTest::newRow("quality: the most pixels, the best sound") << u"quality"_s << QStringList { u"vp9"_s, u"opus"_s };
    QTest::newRow("smallest: a whole small file needs no sound") << u"smallest"_s << QStringList { u"c"_s };
}

// The formats sheet marks what the compatibility chosen in "下载选项" would take, and follows a
// change of it.
void TestViewModels::formatsFitTheOutcome()
{
    QFETCH(QString, outcome);
    QFETCH(QStringList, marked);
    AppState state;
    FormatPicker picker(&state, nullptr);
    const auto sized = [](VideoFormat f, const char *ext, const char *resolution, double tbr, qint64 bytes) {
        f.ext = QString::fromLatin1(ext);
        f.resolution = QString::fromLatin1(resolution);
        f.tbr = tbr;
        if (bytes)
            f.filesize = bytes;
        return f;
    };
    picker.setFormats({ sized(format(u"vp9"_s, "vp9", "none"), "webm", "1920x1080", 2000, 0),
        sized(format(u"h"_s, "avc1.640028", "none"), "mp4", "1280x720", 1500, 5'000'000),
        sized(format(u"opus"_s, "none", "opus"), "webm", "audio only", 128, 0),
        sized(format(u"aac"_s, "none", "mp4a.40.2"), "m4a", "audio only", 96, 1'000'000),
        sized(format(u"c"_s, "avc1.42001E", "mp4a.40.2"), "mp4", "640x360", 600, 3'000'000),
        format(u"sb0"_s, "none", "none") });
    DownloadChoices choices;
    choices.compatibility = outcome;
    state.setDownloadChoices(choices);
    QStringList fitting;
    for (int row = 0; row < picker.rowCount(); ++row) {
        if (picker.index(row).data(FormatPicker::FitsRole).toBool())
            fitting << picker.index(row).data(FormatPicker::FormatIdRole).toString();
    }
    QCOMPARE(fitting, marked);
    QCOMPARE(picker.outcomeHint().isEmpty(), marked.isEmpty());
}

// The size and frame-rate cells say what yt-dlp's own table says of each format, in its units:
// the tables and the -J records of the same links (tests/data/videoinfo), from Debian's yt-dlp and
// the current one, which no longer gives a streamed format's estimated size in its record.
void TestViewModels::formatCells_data()
{
    QTest::addColumn<QByteArray>("json");
    QTest::addColumn<QString>("table");
    const QString folder = qEnvironmentVariable("QUILLBOX_TESTS_DIR") + u"/data/videoinfo/"_s;
    for (const QString &name : { u"page"_s, u"stream"_s, u"direct"_s, u"2026.08.19/page"_s, u"2026.08.19/stream"_s }) {
        QFile json(folder + name + u".json"_s);
        QFile table(folder + name + u".formats.txt"_s);
        QVERIFY(json.open(QIODevice::ReadOnly) && table.open(QIODevice::ReadOnly));
        QTest::newRow(qPrintable(name)) << json.readAll() << QString::fromUtf8(table.readAll());
    }
    QTest::newRow("exact size, fractional rate")
        << QByteArray(R"({"duration": 10, "formats": [{"format_id": "5", "ext": "mp4", "filesize": 1234567,)"
                      R"( "fps": 29.97, "tbr": 900}, {"format_id": "6", "ext": "mp4", "filesize": 512}]})")
        << u"ID EXT FPS | FILESIZE\n-----------\n5  mp4  30 |  1.18MiB\n6  mp4     | 512.00B\n"_s;
}

void TestViewModels::formatCells()
{
    QFETCH(QByteArray, json);
    QFETCH(QString, table);
    const auto info = VideoInfo::fromYtDlpJson(json, u"u"_s);
    QVERIFY(info);
    FormatPicker picker(nullptr, nullptr);
    picker.setFormats(info->formats, info->duration);
    QStringList lines = table.split(u'\n', Qt::SkipEmptyParts);
    while (!lines.isEmpty() && !lines.first().startsWith(u"ID "_s))
        lines.removeFirst();
    QVERIFY(lines.size() > 2);
    // Both columns are right-aligned under their heading; the size follows the first "|", "~" or
    // "≈" before it when it is an estimate (the two signs have changed meaning between releases).
    const qsizetype fpsEnd = lines.first().indexOf(u"FPS"_s) + 3;
    const qsizetype sizeEnd = lines.first().indexOf(u"FILESIZE"_s) + 8;
    const auto estimate = [](QString text) { return text.replace(u'≈', u'~').remove(u' '); };
    for (const QString &line : lines.mid(2)) {
        const QString id = line.section(u' ', 0, 0);
        int row = 0;
        while (row < picker.rowCount() && picker.index(row).data(FormatPicker::FormatIdRole) != id)
            ++row;
        QVERIFY2(row < picker.rowCount(), qPrintable(id));
        const QString fps = fpsEnd > 2 ? line.mid(fpsEnd - 3, 3).trimmed() : QString();
        const QString shownFps = picker.index(row).data(FormatPicker::FpsRole).toString();
        QCOMPARE(shownFps.isEmpty() ? QString() : QString::number(qRound(shownFps.toDouble())), fps);
        const QString size = sizeEnd > 7 ? line.left(sizeEnd).section(u'|', -1).trimmed() : QString();
        QCOMPARE(estimate(picker.index(row).data(FormatPicker::SizeRole).toString()), estimate(size));
    }
}

// A preset whose first write is still out cannot be changed (it would be stored twice).
void TestViewModels::presetInsertIsAwaited()
{
    auto engine = makeEngine();
    QueueMemory memory(engine->manager.get(), &engine->state, engine->fixture.path(u"data/quillbox.sqlite"_s));
    SavedPresetModel model(&memory, &engine->state);
    QAbstractItemModelTester tester(&model);
    QTRY_VERIFY(model.isLoaded());

    QCOMPARE(model.add(u"字幕"_s, u"--write-subs"_s), QString());
    const QModelIndex row = model.index(0);
    QVERIFY(row.data(SavedPresetModel::SavingRole).toBool());
    QCOMPARE(model.rename(0, u"新字幕"_s), u"“字幕”正在保存，请稍后再改"_s);
    QTRY_VERIFY(!row.data(SavedPresetModel::SavingRole).toBool());
    const qint64 id = row.data(SavedPresetModel::PresetIdRole).toLongLong();
    QVERIFY(id > 0);

    // Updates go by the id, in order, while earlier ones are still out.
    QCOMPARE(model.rename(0, u"新字幕"_s), QString());
    QCOMPARE(model.setArguments(0, u"--write-subs --embed-subs"_s), QString());
    SavedPresetModel reread(&memory, &engine->state);
    QTRY_COMPARE(reread.rowCount(), 1);
    QCOMPARE(reread.index(0).data(SavedPresetModel::PresetIdRole).toLongLong(), id);
    QCOMPARE(reread.index(0).data(SavedPresetModel::NameRole).toString(), u"新字幕"_s);
    QCOMPARE(reread.index(0).data(SavedPresetModel::ArgumentsRole).toString(), u"--write-subs --embed-subs"_s);
    memory.close();
}

// A preset the store cannot keep stays for the run, is named in storeError, and is tried again
// when it changes.
void TestViewModels::presetStoreThatCannotSave()
{
    auto engine = makeEngine();
    // The store's folder is a file: nothing can be opened there.
    const QString blocked = engine->fixture.path(u"blocked"_s);
    QFile file(blocked);
    QVERIFY(file.open(QIODevice::WriteOnly));
    file.close();
    QueueMemory memory(engine->manager.get(), &engine->state, blocked + u"/quillbox.sqlite"_s);
    SavedPresetModel model(&memory, &engine->state);
    QAbstractItemModelTester tester(&model);
    QTRY_VERIFY(model.isLoaded());

    QCOMPARE(model.add(u"音频"_s, u"-x"_s), QString());
    QCOMPARE(model.add(u"视频"_s, u"-f best"_s), QString());
    const QString both = u"未能保存到磁盘：“音频”、“视频”。本次运行中仍可使用，退出后不会保留。"_s;
    QTRY_COMPARE(model.storeError(), both);
    QCOMPARE(model.rowCount(), 2);
    QCOMPARE(model.index(0).data(SavedPresetModel::PresetIdRole).toLongLong(), 0);

    // A change is written again, and fails again; a removed one is no longer named.
    QCOMPARE(model.setArguments(0, u"-x --audio-format mp3"_s), QString());
    QVERIFY(model.index(0).data(SavedPresetModel::SavingRole).toBool());
    QTRY_VERIFY(!model.index(0).data(SavedPresetModel::SavingRole).toBool());
    QCOMPARE(model.storeError(), both);
    QCOMPARE(model.remove(1), QString());
    QCOMPARE(model.storeError(), u"未能保存到磁盘：“音频”。本次运行中仍可使用，退出后不会保留。"_s);
    QCOMPARE(model.remove(0), QString());
    QCOMPARE(model.storeError(), QString());
    memory.close();
}

// Pasted and dropped links are added on lines of their own; nothing to add is refused.
void TestViewModels::pasteAndDrop()
{
    auto engine = makeEngine();
    InputPresenter presenter(&engine->state, engine->manager.get());
    QVERIFY(!presenter.paste(QString()));
    QVERIFY(presenter.paste(u"https://one"_s));
    QVERIFY(presenter.dropLinks({ QUrl(u"https://a.example/1"_s), QUrl(u"https://a.example/2"_s) }, QString()));
    QVERIFY(presenter.dropLinks({}, u"  https://b.example/3\n"_s));
    QVERIFY(!presenter.dropLinks({}, u"  "_s));
    QCOMPARE(presenter.startNotice(), u"拖放的内容中没有链接"_s);
    // A dragged address keeps its escapes: "%20" is not a space parting it in two.
    QVERIFY(presenter.dropLinks({ QUrl(u"https://a.example/my%20video"_s) }, QString()));
    QCOMPARE(engine->state.urlInput(),
        u"https://one\nhttps://a.example/1\nhttps://a.example/2\nhttps://b.example/3\nhttps://a.example/my%20video"_s);

    // Links to start that cannot start yet (here the options have an error) wait in the box.
    engine->state.setUrlInput(QString());
    DownloadChoices broken = engine->state.downloadChoices();
    broken.rateLimit = u"fast"_s;
    engine->state.setDownloadChoices(broken);
    presenter.startLinks({ u"https://e.example/6"_s });
    QCOMPARE(engine->state.urlInput(), u"https://e.example/6"_s);
    QVERIFY(presenter.startNotice().startsWith(u"下载选项："_s));
    QCOMPARE(engine->manager->tasks().size(), 0);
    engine->state.setDownloadChoices({});
    // A line too long to be a link is said to be skipped, not dropped unseen.
    engine->state.setDownloadPlaylist(false);
    engine->state.setUrlInput(u"https://e.example/6\nhttps://f.example/"_s + QString(9000, u'x'));
    presenter.startDownload(true);
    QCOMPARE(engine->manager->tasks().size(), 1);
    QCOMPARE(presenter.startNotice(), u"1 行超过 8192 个字符，已跳过"_s);

    // A text file, dropped or imported, gives its links; a line of 10 MB is left out whole.
    const QString file = engine->fixture.path(u"links.txt"_s);
    engine->fixture.writeFile(u"links.txt"_s,
        "https://c.example/4\nnot a link\n" + QByteArray(10 * 1024 * 1024, 'x') + ".example\nd.example/5\n");
    engine->state.setUrlInput(QString());
    QVERIFY(presenter.dropLinks({ QUrl::fromLocalFile(file) }, QString()));
    QCOMPARE(engine->state.urlInput(), u"https://c.example/4\nd.example/5"_s);
    QCOMPARE(presenter.importFile(file), 2);
    QCOMPARE(presenter.importFile(engine->fixture.path(u"missing.txt"_s)), 0);
    QCOMPARE(presenter.startNotice(), u"无法读取文件："_s + engine->fixture.path(u"missing.txt"_s));
}

// Every link is queued with the form's preset, switches and folder, the custom arguments only
// under "自定义"; what is not a link is marked, and a start with nothing to queue says so.
void TestViewModels::startQueuesEveryLink()
{
    auto engine = makeEngine();
    InputPresenter presenter(&engine->state, engine->manager.get());
    QSignalSpy loading(&presenter, &InputPresenter::isLoadingChanged);
    presenter.startDownload();
    QCOMPARE(presenter.startNotice(), u"请先输入视频链接"_s);
    QCOMPARE(loading.count(), 0);

    const QString input = u"a.example/1\nhello world\nhttps://b.example/2"_s;
    engine->state.setUrlInput(input);
    engine->state.setSelectedPreset(DownloadPreset::AudioOnly);
    engine->state.setCustomArguments(u"--limit-rate 1M"_s);
    engine->state.setDownloadPlaylist(false);
    presenter.startDownload();
    QCOMPARE(loading.count(), 2);
    QVERIFY(!presenter.isLoading());
    const auto tasks = engine->manager->tasks();
    QCOMPARE(tasks.size(), 2);
    DownloadRequest expected;
    expected.preset = DownloadPreset::AudioOnly;
    expected.outputDir = engine->fixture.path(u"out"_s);
    expected.downloadPlaylist = false;
    expected.useCookies = false;
    expected.url = u"https://b.example/2"_s;
    QCOMPARE(engine->manager->requestFor(tasks.at(1).id).value_or(DownloadRequest()), expected);
    QCOMPARE(engine->state.urlInput(), input); // the editor keeps its text
    QCOMPARE(presenter.rejectedLines(), QStringList { u"hello world"_s });
    engine->state.setUrlInput(u"hello"_s); // an edit clears the marks
    QCOMPARE(presenter.rejectedLines(), QStringList());

    presenter.startDownload();
    QCOMPARE(presenter.startNotice(), u"没有可以下载的链接"_s);
    engine->state.setSelectedPreset(DownloadPreset::Custom);
    engine->state.setUrlInput(u"https://c.example/custom"_s);
    presenter.startDownload();
    QCOMPARE(engine->manager->tasks().size(), 3);
    QCOMPARE(engine->manager->requestFor(engine->manager->tasks().at(2).id).value_or(DownloadRequest()).customArgs,
        u"--limit-rate 1M"_s);
}

void TestViewModels::listFormats()
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

// Pictures are kept on disk, private to the user even under the widest umask, and come from
// there once the server is gone; what was never fetched fails rather than hangs.
void TestViewModels::thumbnailsKeptOnDisk()
{
    const UmaskScope scope(0);
    const QString media = m_env.root() + u"/media"_s;
    QDir().mkpath(media);
    const QByteArray picture = QByteArray("\xFF\xD8\xFF thumbnail bytes ").repeated(100);
    QFile file(media + u"/thumb.jpg"_s);
    QVERIFY(file.open(QIODevice::WriteOnly));
    file.write(picture);
    file.close();
    auto server = std::make_unique<MediaServer>(
        qEnvironmentVariable("QUILLBOX_TESTS_DIR"), media, QStringList { u"--duration"_s, u"1"_s });
    QVERIFY2(!server->base().isEmpty(), qPrintable(server->error()));
    const QUrl url(server->base() + u"thumb.jpg"_s);
    ThumbnailNetworkFactory factory(m_env.root() + u"/cache"_s);

    QCOMPARE(get(factory, url), std::pair(picture, false));
    QCOMPARE(modeOf(m_env.root() + u"/cache"_s), 0700);
    // Through the proxy chosen in "下载选项", while it is chosen.
    const QString record = m_env.root() + u"/proxy.txt"_s;
    const LocalServer proxy(u"proxy"_s,
        { qEnvironmentVariable("QUILLBOX_TESTS_DIR") + u"/support/proxyserver.py"_s, u"--record"_s, record }, 30000);
    QVERIFY2(!proxy.base().isEmpty(), qPrintable(proxy.error()));
    ImageProxy::set(proxy.base().chopped(1));
    QCOMPARE(get(factory, QUrl(url.toString() + u"?proxied"_s)).first, picture);
    ImageProxy::set({});
    QCOMPARE(get(factory, QUrl(url.toString() + u"?direct"_s)).first, picture);
    const QString carried = QString::fromUtf8(fileBytes(record));
    QVERIFY2(carried.contains(u"thumb.jpg?proxied"_s) && !carried.contains(u"direct"_s), qPrintable(carried));
    server.reset();
    QCOMPARE(get(factory, url), std::pair(picture, true));
    QCOMPARE(get(factory, QUrl(url.toString().replace(u"thumb"_s, u"other"_s))).first,
        "error " + QByteArray::number(QNetworkReply::ConnectionRefusedError));
}

QTEST_MAIN(TestViewModels)
#include "tst_viewmodels.moc"
