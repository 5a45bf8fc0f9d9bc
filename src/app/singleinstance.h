#pragma once

#include "app/commandline.h"

#include <QHash>
#include <QObject>
#include <QString>

class QLocalServer;
class QLockFile;
class QLocalSocket;

// One Quillbox per user: the first start listens on a local socket in the user's runtime folder
// (its folder 0700, the socket the user's only, and a peer of another user is turned away even so),
// and a later start hands it its links there and exits.
namespace SingleInstance {
// The socket's path for this user.
QString socketPath();
enum class Answer {
    Taken, // the running Quillbox said it took the links
    NotRunning, // nobody listens at the socket
    Silent, // the message went out but no answer came in time: it may still be taken later
};
// Hands `message` to the Quillbox listening at `path`. Plain POSIX calls, so that it needs no
// application object and costs a start nothing when none runs.
Answer handOver(const QByteArray &message, const QString &path = socketPath(), int timeoutMs = 1000);

// What a start does: run as this user's one Quillbox (holding `lock` for the whole run), or stop
// because the running one took the message (HandedOver), did not answer it (Silent), or held the
// lock without ever listening within `patienceMs` (Busy).
// The lock, a file beside the socket, decides which of two starts at the same moment runs; the
// other hands its links over once the first listens (its window may still be loading), and takes
// the lock itself should the first quit meanwhile.
enum class Start { Run, HandedOver, Silent, Busy };
Start startOrHandOver(const QByteArray &message, QLockFile &lock, int patienceMs = 20000);
// The lock's path for this user.
QString lockPath();
} // namespace SingleInstance

// On macOS a quillbox:// link opened elsewhere arrives as an event of the application, not as an
// argument: installed on the application, this hands its links on as `received`.
class LinkOpenFilter : public QObject
{
    Q_OBJECT

public:
    using QObject::QObject;

Q_SIGNALS:
    void received(const Handover &handover);

protected:
    bool eventFilter(QObject *watched, QEvent *event) override;
};

// The first start's end of the socket: each connection brings one Handover, answered with one byte
// once taken; anything else is dropped.
class InstanceServer : public QObject
{
    Q_OBJECT

public:
    explicit InstanceServer(QObject *parent = nullptr);

    // Listens at `path`, taking over a socket file that nobody answers at; false (and why in
    // errorString()) when it cannot.
    bool listen(const QString &path = SingleInstance::socketPath());
    QString errorString() const { return m_error; }

Q_SIGNALS:
    void received(const Handover &handover);
    // A connection that was turned away (another user, garbage, too slow), and why: for the log.
    void refused(const QString &why);

private:
    void take(QLocalSocket *socket);
    void read(QLocalSocket *socket);

    QLocalServer *m_server = nullptr;
    QHash<QLocalSocket *, QByteArray> m_pending;
    QString m_error;
};
