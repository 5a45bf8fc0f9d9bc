#pragma once

#include "model/enums.h"

#include <QHash>
#include <QObject>
#include <QUuid>

#include <functional>

class AppState;
class TaskModel;

// Tells the desktop when a download has completed or failed while the user is looking at
// another window: one notification per finished task, with the task's title. Only a status that
// changes to completed or failed counts; a task that arrives already finished says nothing.
//
// On Linux the notification goes to the desktop's notification service over the session bus
// (org.freedesktop.Notifications), connected to at the first notification and called without
// waiting for the answer; on macOS it is shown by osascript. Without a bus or a service there is
// simply no notification (one line in the system log says why).
class Notifier : public QObject
{
    Q_OBJECT

public:
    // Whether the application's window is the active one at this moment.
    using WindowActive = std::function<bool()>;

    // Watches `tasks`; `settings` says whether to notify at all (its notifyOnFinish).
    Notifier(const TaskModel *tasks, const AppState *settings, WindowActive windowActive, QObject *parent = nullptr);
    ~Notifier() override;

private:
    void remember(int first, int last);
    void forget(int first, int last);
    void statusesMayHaveChanged(int first, int last);
    void send(const QString &summary, const QString &body);
    void unavailable(const QString &why);
#ifndef Q_OS_MACOS
    void deliver(const QString &summary, const QString &body);
#endif

    const TaskModel *m_tasks;
    const AppState *m_settings;
    WindowActive m_windowActive;
    // The last status seen of every task in the model.
    QHash<QUuid, DownloadStatus> m_seen;
    bool m_saidUnavailable = false;
#ifndef Q_OS_MACOS
    // A service that reads markup in the body is sent the title escaped ("Q&amp;A"); which kind
    // it is, is asked once, and what is to be shown meanwhile waits for the answer.
    enum class Markup { Unknown, Asking, Plain, Escaped };
    Markup m_markup = Markup::Unknown;
    QList<std::pair<QString, QString>> m_waiting;
#endif
};
