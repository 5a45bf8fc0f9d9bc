#include "views/presenters/inputpresenter.h"

#include "engine/downloadmanager.h"
#include "engine/shellwords.h"
#include "model/appstate.h"
#include "model/linkinput.h"
#include "model/taskmodel.h"
#include "views/presenters/formatpicker.h"

#include <QFile>
#include <QFileInfo>

#include <algorithm>

using namespace Qt::StringLiterals;

InputPresenter::InputPresenter(QObject *parent)
    : InputPresenter(AppState::instance(), DownloadManager::instance(), parent)
{
}

InputPresenter::InputPresenter(AppState *state, DownloadManager *downloads, QObject *parent)
    : QObject(parent)
    , m_state(state)
    , m_downloads(downloads)
    , m_formatPicker(new FormatPicker(state, downloads, this))
    , m_playlistPicker(new PlaylistPicker(downloads, this))
{
    connect(m_playlistPicker, &PlaylistPicker::queued, this, &InputPresenter::queued);
    if (!m_state)
        return;
    connect(m_state, &AppState::urlInputChanged, this, [this] { setNotices({}, {}); });
    connect(m_state, &AppState::customArgumentsChanged, this, &InputPresenter::checkCustomArguments);
    connect(m_state, &AppState::selectedPresetChanged, this, &InputPresenter::checkCustomArguments);
    checkCustomArguments();
}

void InputPresenter::checkCustomArguments()
{
    // The words are split as the download will split them, so what is refused here is exactly
    // what the download would refuse.
    const QString error = m_state->selectedPreset() == DownloadPreset::Custom
        ? splitShellWords(m_state->customArguments()).error
        : QString();
    if (error == m_customArgumentsError)
        return;
    // A refusal beside the button is about the text as it was; it goes once the text changes.
    if (!m_customArgumentsError.isEmpty() && m_startNotice == m_customArgumentsError)
        setNotices(m_rejectedLines, QString());
    m_customArgumentsError = error;
    Q_EMIT customArgumentsErrorChanged();
}

bool InputPresenter::alreadyQueued(const QStringList &links) const
{
    if (m_queuedIds.isEmpty() || links != m_queuedLinks)
        return false;
    const TaskModel *tasks = m_downloads->taskModel();
    return std::all_of(
        m_queuedIds.cbegin(), m_queuedIds.cend(), [tasks](const QUuid &id) { return tasks->find(id) != nullptr; });
}

void InputPresenter::startDownload(bool again)
{
    if (m_state)
        startText(m_state->urlInput(), again);
}

void InputPresenter::startLinks(const QStringList &links)
{
    // Into the box as well, where links stay after a start: a start that cannot go ahead (the
    // form has an error, the playlist question is dismissed) loses none of them.
    if (m_state)
        m_state->setUrlInput(withAddedText(m_state->urlInput(), links.join(u'\n')));
    startText(links.join(u'\n'), true);
}

void InputPresenter::startText(const QString &text, bool again)
{
    if (!m_state || !m_downloads)
        return;
    m_text = text;
    if (text.isEmpty()) {
        setNotices({}, tr("请先输入视频链接"));
        return;
    }
    if (!m_customArgumentsError.isEmpty()) {
        setNotices(m_rejectedLines, m_customArgumentsError);
        return;
    }
    if (const QString problem = m_state->downloadChoices().problem(); !problem.isEmpty()) {
        setNotices(m_rejectedLines, tr("下载选项：%1").arg(problem));
        return;
    }
    const LinkInput input = readLinkInput(text);
    if (!again && alreadyQueued(input.links)) {
        Q_EMIT repeatAsked(int(input.links.size()));
        return;
    }
    DownloadOptions options;
    options.preset = m_state->selectedPreset();
    options.customArgs = options.preset == DownloadPreset::Custom ? m_state->customArguments() : QString();
    options.outputDir = m_state->outputDirectory();
    options.downloadPlaylist = m_state->downloadPlaylist();
    options.useCookies = m_state->useCookies();
    options.choices = m_state->downloadChoices();

    // With the playlist switch off every link is one download, as it always was. With it on, a
    // link that may be a playlist is listed first, for its items to be picked.
    QStringList direct;
    QStringList videosAlone;
    QStringList listed;
    if (!options.downloadPlaylist) {
        direct = input.links;
    } else {
        const auto asking = std::count_if(input.links.cbegin(), input.links.cend(), isVideoInPlaylist);
        if (asking > 0 && !m_wholeLists) {
            Q_EMIT playlistQuestionAsked(int(asking));
            return;
        }
        for (const QString &link : input.links) {
            if (isVideoInPlaylist(link))
                (*m_wholeLists ? listed : videosAlone).append(*m_wholeLists ? link : withoutPlaylist(link));
            else if (isSingleVideoLink(link))
                direct.append(link);
            else
                listed.append(link);
        }
        m_wholeLists.reset();
    }

    m_isLoading = true;
    Q_EMIT isLoadingChanged();
    if (!direct.isEmpty())
        m_downloads->startDownloads(direct, options);
    if (!videosAlone.isEmpty()) {
        DownloadOptions alone = options;
        alone.downloadPlaylist = false;
        m_downloads->startDownloads(videosAlone, alone);
    }
    const qsizetype started = direct.size() + videosAlone.size();
    // The new tasks are the last ones of the queue. A start that lists links is not asked about
    // again: the playlist sheet marks what is already queued.
    const QList<DownloadTask> &tasks = m_downloads->taskModel()->tasks();
    m_queuedLinks = listed.isEmpty() ? input.links : QStringList();
    m_queuedIds.clear();
    for (qsizetype i = tasks.size() - started; started > 0 && i < tasks.size(); ++i)
        m_queuedIds.append(tasks.at(i).id);
    if (!listed.isEmpty())
        m_playlistPicker->list(listed, options);
    QStringList skipped;
    if (input.tooLong > 0)
        skipped << tr("%n 行超过 %1 个字符，已跳过", nullptr, input.tooLong).arg(MaxLineLength);
    if (input.overLimit > 0)
        skipped << tr("%n 个链接超过一次 %1 个的上限，已跳过", nullptr, input.overLimit).arg(MaxLinks);
    if (input.links.isEmpty())
        skipped.prepend(tr("没有可以下载的链接"));
    //: Between the notices of a list, as "；" is in Chinese
    const QString separator = tr("；");
    setNotices(input.rejected, skipped.join(separator));

    m_isLoading = false;
    Q_EMIT isLoadingChanged();
    if (started > 0)
        Q_EMIT queued(int(started));
}

void InputPresenter::answerPlaylistQuestion(bool wholeList)
{
    m_wholeLists = wholeList;
    startText(m_text, true);
}

void InputPresenter::listFormats()
{
    if (!m_state || !m_downloads || m_state->urlInput().isEmpty() || m_isListingFormats)
        return;
    setListingFormats(true);
    const QString url = firstLineOf(m_state->urlInput());
    m_formatPicker->fetch(url);
    QPointer<InputPresenter> self(this);
    m_downloads->listFormats(
        url, m_state->useCookies(),
        [self](const FormatListResult &result) {
            if (!self)
                return;
            self->setListingFormats(false);
            if (result.ok)
                Q_EMIT self->formatsListed(result.text);
            else
                Q_EMIT self->formatsFailed(result.error.localizedDescription);
        },
        m_state->downloadChoices().networkWords());
}

bool InputPresenter::paste(const QString &text)
{
    if (!m_state || text.isEmpty())
        return false;
    m_state->setUrlInput(withAddedText(m_state->urlInput(), text));
    return true;
}

bool InputPresenter::dropLinks(const QList<QUrl> &urls, const QString &text)
{
    if (!m_state)
        return false;
    // A dropped text file is read for its links; any other file or address is a link itself.
    QStringList texts;
    for (const QUrl &url : urls) {
        if (!url.isLocalFile()) {
            // Encoded as it was given: a decoded "%20" would part one link into two words.
            texts << url.toString(QUrl::FullyEncoded);
        } else if (const QString file = url.toLocalFile(); isTextFile(file)) {
            texts << readTextFile(file);
        } else {
            texts << file;
        }
    }
    if (urls.isEmpty())
        texts << text;
    //: Where links came from, in "从%1收到 %n 个链接"
    if (m_state->receiveLinks(texts, tr("拖放")) > 0)
        return true;
    setNotices(m_rejectedLines, tr("拖放的内容中没有链接"));
    return false;
}

bool InputPresenter::isTextFile(const QString &path)
{
    static const QStringList suffixes { u"txt"_s, u"list"_s, u"csv"_s, u"md"_s };
    return QFileInfo(path).isFile() && suffixes.contains(QFileInfo(path).suffix().toLower());
}

QString InputPresenter::readTextFile(const QString &path)
{
    // Links are short: the first 16 MiB of a file are all that is read.
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return {};
    return QString::fromUtf8(file.read(16 * 1024 * 1024));
}

int InputPresenter::importFile(const QString &path)
{
    if (!m_state)
        return 0;
    if (!QFileInfo(path).isReadable()) {
        setNotices(m_rejectedLines, tr("无法读取文件：%1").arg(path));
        return 0;
    }
    //: Where links came from, in "从%1收到 %n 个链接": a file and its name
    const QString from = tr("文件 %1 ").arg(QFileInfo(path).fileName());
    const int taken = m_state->receiveLinks({ readTextFile(path) }, from);
    if (taken == 0)
        setNotices(m_rejectedLines, tr("文件中没有链接：%1").arg(QFileInfo(path).fileName()));
    return taken;
}

QString InputPresenter::rejectedNotice() const
{
    return m_rejectedLines.isEmpty() ? QString() : tr("不是有效的链接：%1").arg(m_rejectedLines.join(u'\n'));
}

void InputPresenter::setNotices(const QStringList &rejectedLines, const QString &startNotice)
{
    if (m_rejectedLines == rejectedLines && m_startNotice == startNotice)
        return;
    m_rejectedLines = rejectedLines;
    m_startNotice = startNotice;
    Q_EMIT noticesChanged();
}

void InputPresenter::setListingFormats(bool value)
{
    if (m_isListingFormats == value)
        return;
    m_isListingFormats = value;
    Q_EMIT isListingFormatsChanged();
}
