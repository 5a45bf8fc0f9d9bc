#pragma once

#include "model/downloadrequest.h"
#include "model/playlist.h"

#include <QAbstractListModel>
#include <QHash>
#include <QList>
#include <QPointer>
#include <QSet>
#include <QStringList>
#include <QtQml/qqmlregistration.h>

#include <deque>

class DownloadManager;
class PlaylistListing;

// What "播放列表" shows and does. Links given to list() are listed one at a time: a link that is
// one video is queued as it is, one that cannot be listed is queued as one task (and the log says
// why), and a playlist opens the sheet while its items are still being read. The sheet's rows are
// the items that pass the filter; the user picks some and queues them, each its own task, or
// cancels and nothing of that link is queued. Then the next link is listed.
class PlaylistPicker : public QAbstractListModel
{
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("made by the input presenter")
    // A playlist is being shown: the sheet is open.
    Q_PROPERTY(bool active READ isActive NOTIFY activeChanged)
    // Its items are still being read.
    Q_PROPERTY(bool listing READ isListing NOTIFY progressChanged)
    Q_PROPERTY(QString title READ title NOTIFY progressChanged)
    Q_PROPERTY(QString url READ url NOTIFY progressChanged)
    // "已读取 120 / 1000 项", "共 1000 项", or why the listing stopped short.
    Q_PROPERTY(QString progressText READ progressText NOTIFY progressChanged)
    Q_PROPERTY(int listedCount READ listedCount NOTIFY progressChanged)
    Q_PROPERTY(int selectedCount READ selectedCount NOTIFY selectionChanged)
    Q_PROPERTY(QString filterText READ filterText WRITE setFilterText NOTIFY filterTextChanged)
    // Links waiting to be listed after this one.
    Q_PROPERTY(int waitingLinks READ waitingLinks NOTIFY progressChanged)

public:
    enum Role {
        NumberRole = Qt::UserRole + 1,
        TitleRole,
        DurationRole,
        SelectedRole,
        // "已在队列中" or "已下载过", or empty.
        MarkRole,
    };
    Q_ENUM(Role)

    explicit PlaylistPicker(DownloadManager *downloads, QObject *parent = nullptr);
    ~PlaylistPicker() override;

    int rowCount(const QModelIndex &parent = QModelIndex()) const override;
    QVariant data(const QModelIndex &index, int role = Qt::DisplayRole) const override;
    QHash<int, QByteArray> roleNames() const override;

    // Lists `links` in turn, after any still waiting, each queued with `options` in the end.
    void list(const QStringList &links, const DownloadOptions &options);

    bool isActive() const { return m_active; }
    bool isListing() const;
    QString title() const;
    QString url() const { return m_current.url; }
    QString progressText() const;
    int listedCount() const { return int(m_entries.size()); }
    int selectedCount() const { return m_selectedCount; }
    QString filterText() const { return m_filter; }
    void setFilterText(const QString &text);
    int waitingLinks() const { return int(m_links.size()); }

    // Selection: one row; every row shown, none of them, or each the other way.
    Q_INVOKABLE void setSelected(int row, bool selected);
    Q_INVOKABLE void selectAll()
    {
        selectShown([](bool) { return true; });
    }
    Q_INVOKABLE void selectNone()
    {
        selectShown([](bool) { return false; });
    }
    Q_INVOKABLE void invertSelection()
    {
        selectShown([](bool was) { return !was; });
    }
    // Selects exactly the items whose numbers `ranges` names ("1-20, 25"); returns why it cannot
    // be read, or empty.
    Q_INVOKABLE QString selectRange(const QString &ranges);
    // Queues the selected items (a listing still running stops with what it has) and closes.
    Q_INVOKABLE void confirm();
    // Stops the listing and closes; nothing of this link is queued.
    Q_INVOKABLE void cancel();

Q_SIGNALS:
    void activeChanged();
    void progressChanged();
    void selectionChanged();
    void filterTextChanged();
    // `count` tasks were queued from a link (a playlist's picked items, or the link itself).
    void queued(int count);

private:
    struct Link
    {
        QString url;
        DownloadOptions options;
    };

    void next();
    void finished();
    void addEntries(int first, int count);
    void close();
    void setActive(bool active);
    bool passesFilter(const PlaylistEntry &entry) const;
    void refilter();
    void selectShown(const std::function<bool(bool)> &choice);
    QString markOf(const PlaylistEntry &entry) const;
    // What the queue and the download archive already have, read when a listing starts.
    void readWhatIsThere();

    QPointer<DownloadManager> m_downloads;
    std::deque<Link> m_links;
    Link m_current;
    QPointer<PlaylistListing> m_listing;
    bool m_active = false;
    QList<PlaylistEntry> m_entries;
    QList<bool> m_selected;
    int m_selectedCount = 0;
    // The positions in m_entries of the rows shown.
    QList<int> m_shown;
    QString m_filter;
    // Whether items still to arrive start picked: yes until the user picks otherwise ("全不选",
    // "反选", a range), and again after "全选".
    bool m_pickArrivals = true;
    QSet<QString> m_queuedUrls;
    QSet<QString> m_doneUrls;
    QSet<QString> m_archived;
};
