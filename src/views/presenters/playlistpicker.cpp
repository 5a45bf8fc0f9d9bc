#include "views/presenters/playlistpicker.h"

#include "model/languagechange.h"

#include "engine/downloadmanager.h"
#include "engine/playlistlisting.h"
#include "model/taskmodel.h"

#include <QFile>

using namespace Qt::StringLiterals;

PlaylistPicker::PlaylistPicker(DownloadManager *downloads, QObject *parent)
    : QAbstractListModel(parent)
    , m_downloads(downloads)
{
    // The progress line and the rows' marks are made when read.
    onLanguageChange(this, [this] {
        Q_EMIT progressChanged();
        if (rowCount() > 0)
            Q_EMIT dataChanged(index(0), index(rowCount() - 1));
    });
}

PlaylistPicker::~PlaylistPicker()
{
    if (m_listing)
        m_listing->disconnect(this);
}

int PlaylistPicker::rowCount(const QModelIndex &parent) const
{
    return parent.isValid() ? 0 : int(m_shown.size());
}

QVariant PlaylistPicker::data(const QModelIndex &index, int role) const
{
    if (!checkIndex(index, CheckIndexOption::IndexIsValid | CheckIndexOption::ParentIsInvalid))
        return {};
    const int at = m_shown.at(index.row());
    const PlaylistEntry &entry = m_entries.at(at);
    switch (role) {
    case NumberRole:
        return entry.index;
    case Qt::DisplayRole:
    case TitleRole:
        return entry.title.isEmpty() ? entry.url : entry.title;
    case DurationRole:
        return entry.durationText();
    case SelectedRole:
        return m_selected.at(at);
    case MarkRole:
        return markOf(entry);
    default:
        return {};
    }
}

QHash<int, QByteArray> PlaylistPicker::roleNames() const
{
    return { { NumberRole, "number" }, { TitleRole, "title" }, { DurationRole, "duration" },
        { SelectedRole, "selected" }, { MarkRole, "mark" } };
}

void PlaylistPicker::list(const QStringList &links, const DownloadOptions &options)
{
    for (const QString &link : links) {
        // A link pressed for again while it is still looked at or waiting is not listed twice.
        const bool waiting
            = std::any_of(m_links.cbegin(), m_links.cend(), [&link](const Link &l) { return l.url == link; });
        if (!waiting && !(m_listing && m_current.url == link))
            m_links.push_back(Link { link, options });
    }
    Q_EMIT progressChanged();
    next();
}

bool PlaylistPicker::isListing() const
{
    return m_listing && m_listing->isRunning();
}

QString PlaylistPicker::title() const
{
    const QString title = m_listing ? m_listing->title() : QString();
    return title.isEmpty() ? tr("播放列表") : title;
}

QString PlaylistPicker::progressText() const
{
    if (!m_listing)
        return {};
    if (!m_active)
        return tr("正在检查链接：%1").arg(m_current.url);
    const int expected = m_listing->expectedCount();
    if (m_listing->isRunning())
        return expected > 0 ? tr("已读取 %1 / %n 项", nullptr, expected).arg(m_entries.size())
                            : tr("已读取 %n 项", nullptr, int(m_entries.size()));
    if (!m_listing->failure().isEmpty())
        return tr("共 %n 项，列表未读完：%1", nullptr, int(m_entries.size())).arg(m_listing->failure());
    return tr("共 %n 项", nullptr, int(m_entries.size()));
}

void PlaylistPicker::next()
{
    if (m_listing || m_links.empty() || !m_downloads)
        return;
    m_current = m_links.front();
    m_links.pop_front();
    readWhatIsThere();
    PlaylistListing *listing = m_downloads->listPlaylist(
        m_current.url, m_current.options.useCookies, m_current.options.choices.networkWords(), this);
    m_listing = listing;
    connect(listing, &PlaylistListing::playlistFound, this, [this] { setActive(true); });
    connect(listing, &PlaylistListing::entriesAdded, this, &PlaylistPicker::addEntries);
    connect(listing, &PlaylistListing::finished, this, &PlaylistPicker::finished);
    Q_EMIT progressChanged();
}

void PlaylistPicker::readWhatIsThere()
{
    m_queuedUrls.clear();
    m_doneUrls.clear();
    for (const DownloadTask &task : m_downloads->taskModel()->tasks())
        (task.status == DownloadStatus::Completed ? m_doneUrls : m_queuedUrls).insert(task.url);
    m_archived.clear();
    if (QFile archive(DownloadManager::archiveFile()); archive.open(QIODevice::ReadOnly)) {
        while (!archive.atEnd())
            m_archived.insert(QString::fromUtf8(archive.readLine()).trimmed().toLower());
    }
}

QString PlaylistPicker::markOf(const PlaylistEntry &entry) const
{
    if (m_queuedUrls.contains(entry.url))
        return tr("已在队列中");
    if (m_doneUrls.contains(entry.url) || (!entry.archiveKey.isEmpty() && m_archived.contains(entry.archiveKey)))
        return tr("已下载过");
    return {};
}

void PlaylistPicker::addEntries(int first, int count)
{
    const QList<PlaylistEntry> &listed = m_listing->entries();
    QList<int> shown;
    for (int i = first; i < first + count; ++i) {
        m_entries.append(listed.at(i));
        // What is already there is not picked again unless the user picks it.
        const bool selected = m_pickArrivals && markOf(listed.at(i)).isEmpty();
        m_selected.append(selected);
        m_selectedCount += selected ? 1 : 0;
        if (passesFilter(listed.at(i)))
            shown.append(i);
    }
    if (!shown.isEmpty()) {
        beginInsertRows({}, int(m_shown.size()), int(m_shown.size() + shown.size() - 1));
        m_shown += shown;
        endInsertRows();
    }
    Q_EMIT progressChanged();
    Q_EMIT selectionChanged();
}

void PlaylistPicker::finished()
{
    PlaylistListing *listing = m_listing;
    if (!listing)
        return;
    const DownloadOptions options = m_current.options;
    switch (listing->outcome()) {
    case PlaylistListing::Outcome::Playlist:
        // The sheet stays until the user picks or cancels.
        Q_EMIT progressChanged();
        return;
    case PlaylistListing::Outcome::SingleVideo:
        m_downloads->startListedVideo(m_current.url, *listing->video(), options);
        Q_EMIT queued(1);
        break;
    case PlaylistListing::Outcome::Empty:
    case PlaylistListing::Outcome::Failed:
        m_downloads->startUnlisted(m_current.url, options, listing->failure());
        Q_EMIT queued(1);
        break;
    case PlaylistListing::Outcome::Cancelled:
    case PlaylistListing::Outcome::Running:
        return;
    }
    close();
}

void PlaylistPicker::confirm()
{
    if (!m_listing || !m_active)
        return;
    QList<PlaylistEntry> picked;
    for (qsizetype i = 0; i < m_entries.size(); ++i) {
        if (m_selected.at(i))
            picked.append(m_entries.at(i));
    }
    const PlaylistPlace playlist { QUuid::createUuid(), title(), 0,
        std::max(m_listing->expectedCount(), int(m_entries.size())), {} };
    // Disconnected first: the sheet is done with, whatever the listing says as it stops.
    m_listing->disconnect(this);
    m_listing->stopHere();
    m_downloads->startPlaylistItems(playlist, picked, m_current.options);
    if (!picked.isEmpty())
        Q_EMIT queued(int(picked.size()));
    close();
}

void PlaylistPicker::cancel()
{
    if (m_listing)
        m_listing->cancel();
    close();
}

void PlaylistPicker::close()
{
    if (m_listing) {
        m_listing->disconnect(this);
        m_listing->deleteLater();
        m_listing = nullptr;
    }
    beginResetModel();
    m_entries.clear();
    m_selected.clear();
    m_shown.clear();
    m_selectedCount = 0;
    m_pickArrivals = true;
    m_filter.clear();
    endResetModel();
    Q_EMIT filterTextChanged();
    m_current = {};
    setActive(false);
    Q_EMIT progressChanged();
    Q_EMIT selectionChanged();
    // The next link is listed once this turn is over, so that the sheet closes first.
    QMetaObject::invokeMethod(this, &PlaylistPicker::next, Qt::QueuedConnection);
}

void PlaylistPicker::setActive(bool active)
{
    if (m_active == active)
        return;
    m_active = active;
    Q_EMIT activeChanged();
    Q_EMIT progressChanged();
}

bool PlaylistPicker::passesFilter(const PlaylistEntry &entry) const
{
    if (m_filter.isEmpty())
        return true;
    return entry.title.contains(m_filter, Qt::CaseInsensitive) || QString::number(entry.index) == m_filter;
}

void PlaylistPicker::setFilterText(const QString &text)
{
    const QString filter = text.trimmed();
    if (filter == m_filter)
        return;
    m_filter = filter;
    refilter();
    Q_EMIT filterTextChanged();
}

void PlaylistPicker::refilter()
{
    beginResetModel();
    m_shown.clear();
    for (qsizetype i = 0; i < m_entries.size(); ++i) {
        if (passesFilter(m_entries.at(i)))
            m_shown.append(int(i));
    }
    endResetModel();
}

void PlaylistPicker::setSelected(int row, bool selected)
{
    if (row < 0 || row >= m_shown.size())
        return;
    const int at = m_shown.at(row);
    if (m_selected.at(at) == selected)
        return;
    m_selected[at] = selected;
    m_selectedCount += selected ? 1 : -1;
    const QModelIndex changed = index(row);
    Q_EMIT dataChanged(changed, changed, { SelectedRole });
    Q_EMIT selectionChanged();
}

void PlaylistPicker::selectShown(const std::function<bool(bool)> &choice)
{
    // "全选" without a filter picks what is still to come too; anything else leaves it unpicked.
    m_pickArrivals = m_filter.isEmpty() && choice(false) && choice(true);
    for (const int at : std::as_const(m_shown)) {
        const bool selected = choice(m_selected.at(at));
        m_selectedCount += int(selected) - int(m_selected.at(at));
        m_selected[at] = selected;
    }
    if (!m_shown.isEmpty())
        Q_EMIT dataChanged(index(0), index(int(m_shown.size()) - 1), { SelectedRole });
    Q_EMIT selectionChanged();
}

QString PlaylistPicker::selectRange(const QString &ranges)
{
    QString error;
    int last = m_listing ? m_listing->expectedCount() : 0;
    for (const PlaylistEntry &entry : std::as_const(m_entries))
        last = std::max(last, entry.index);
    const std::optional<QList<int>> numbers = parseItemRanges(ranges, last, &error);
    if (!numbers)
        return error;
    const QSet<int> wanted(numbers->cbegin(), numbers->cend());
    m_pickArrivals = false;
    m_selectedCount = 0;
    for (qsizetype i = 0; i < m_entries.size(); ++i) {
        m_selected[i] = wanted.contains(m_entries.at(i).index);
        m_selectedCount += m_selected.at(i) ? 1 : 0;
    }
    if (!m_shown.isEmpty())
        Q_EMIT dataChanged(index(0), index(int(m_shown.size()) - 1), { SelectedRole });
    Q_EMIT selectionChanged();
    return {};
}
