#pragma once

#include <QObject>
#include <QPointer>
#include <QStringList>
#include <QtQml/qqmlregistration.h>

class AppState;
class TaskModel;

// "监视剪贴板": while AppState's switch is on, a copied text's web links (http, https) that are
// neither in the links box nor in the queue are offered, to be added or ignored; nothing is added
// or started by itself.
class ClipboardWatcher : public QObject
{
    Q_OBJECT
    QML_ELEMENT
    Q_PROPERTY(QStringList offered READ offered NOTIFY offeredChanged)

public:
    explicit ClipboardWatcher(QObject *parent = nullptr);
    ClipboardWatcher(AppState *state, TaskModel *tasks, QObject *parent = nullptr);

    QStringList offered() const { return m_offered; }

    // The offered links join the box; the log says they came from the clipboard.
    Q_INVOKABLE void add();
    // The offer goes; the same copy is not offered again.
    Q_INVOKABLE void ignore();

Q_SIGNALS:
    void offeredChanged();

private:
    void look();
    void setOffered(const QStringList &links);

    QPointer<AppState> m_state;
    QPointer<TaskModel> m_tasks;
    QString m_lastText;
    QStringList m_offered;
};
