#include "views/presenters/clipboardwatcher.h"

#include "engine/downloadmanager.h"
#include "model/appstate.h"
#include "model/linkinput.h"
#include "model/taskmodel.h"

#include <QClipboard>
#include <QGuiApplication>
#include <QSet>

using namespace Qt::StringLiterals;

ClipboardWatcher::ClipboardWatcher(QObject *parent)
    : ClipboardWatcher(AppState::instance(), DownloadManager::instance()->taskModel(), parent)
{
}

ClipboardWatcher::ClipboardWatcher(AppState *state, TaskModel *tasks, QObject *parent)
    : QObject(parent)
    , m_state(state)
    , m_tasks(tasks)
{
    connect(QGuiApplication::clipboard(), &QClipboard::dataChanged, this, &ClipboardWatcher::look);
    if (m_state) {
        connect(m_state, &AppState::watchClipboardChanged, this, [this] {
            if (!m_state->watchClipboard())
                setOffered({});
        });
    }
}

void ClipboardWatcher::look()
{
    if (!m_state || !m_state->watchClipboard())
        return;
    const QString text = QGuiApplication::clipboard()->text();
    if (text == m_lastText)
        return;
    m_lastText = text;
    // What is already in the box or the queue is not offered again.
    QSet<QString> known;
    for (const QString &link : readLinkInput(m_state->urlInput()).links)
        known.insert(link);
    if (m_tasks) {
        for (const DownloadTask &task : m_tasks->tasks())
            known.insert(task.url);
    }
    QStringList fresh;
    // Only web addresses: a copied file name, e-mail address or "note:" passes the links box's
    // rule (which leaves the judging to yt-dlp) but was not copied as a link.
    for (const QString &link : readLinkInput(text).links) {
        const bool web
            = link.startsWith(u"https://", Qt::CaseInsensitive) || link.startsWith(u"http://", Qt::CaseInsensitive);
        if (web && !known.contains(link) && !fresh.contains(link))
            fresh << link;
    }
    setOffered(fresh);
}

void ClipboardWatcher::add()
{
    if (m_state && !m_offered.isEmpty())
        //: Where links came from, in "从%1收到 %n 个链接"
        m_state->receiveLinks(m_offered, tr("剪贴板"));
    setOffered({});
}

void ClipboardWatcher::ignore()
{
    setOffered({});
}

void ClipboardWatcher::setOffered(const QStringList &links)
{
    if (links == m_offered)
        return;
    m_offered = links;
    Q_EMIT offeredChanged();
}
