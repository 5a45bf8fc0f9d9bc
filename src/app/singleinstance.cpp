#include "app/singleinstance.h"

#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QFileInfo>
#include <QFileOpenEvent>
#include <QLocalServer>
#include <QLocalSocket>
#include <QLockFile>
#include <QStandardPaths>
#include <QTimer>

#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <poll.h>
#include <sys/socket.h>
#include <sys/types.h>
#include <sys/un.h>
#include <unistd.h>

using namespace Qt::StringLiterals;

namespace {
constexpr int ReadPatienceMs = 2000;

// Waits up to `timeoutMs` for `events` on `fd`.
bool waitFor(int fd, short events, int timeoutMs)
{
    pollfd entry { fd, events, 0 };
    int result;
    do
        result = ::poll(&entry, 1, timeoutMs);
    while (result < 0 && errno == EINTR);
    return result > 0 && (entry.revents & events);
}

// The user id of the process at the other end of `fd`, or -1 where it cannot be told.
qint64 peerUser(int fd)
{
#if defined(SO_PEERCRED)
    ucred credentials {};
    socklen_t size = sizeof credentials;
    if (::getsockopt(fd, SOL_SOCKET, SO_PEERCRED, &credentials, &size) == 0)
        return credentials.uid;
#else
    uid_t user;
    gid_t group;
    if (::getpeereid(fd, &user, &group) == 0)
        return user;
#endif
    return -1;
}
} // namespace

QString SingleInstance::socketPath()
{
    // $XDG_RUNTIME_DIR, which Qt takes only when it is the user's own and 0700 (else it makes one
    // that is); on macOS a folder in the user's Library.
    const QString folder = QStandardPaths::writableLocation(QStandardPaths::RuntimeLocation);
    return folder + u"/quillbox-instance"_s;
}

QString SingleInstance::lockPath()
{
    return socketPath() + u".lock"_s;
}

SingleInstance::Answer SingleInstance::handOver(const QByteArray &message, const QString &path, int timeoutMs)
{
    const QByteArray name = QFile::encodeName(path);
    sockaddr_un address {};
    if (name.size() >= qsizetype(sizeof address.sun_path))
        return Answer::NotRunning;
    address.sun_family = AF_UNIX;
    std::memcpy(address.sun_path, name.constData(), size_t(name.size()));
    const int fd = ::socket(AF_UNIX, SOCK_STREAM, 0);
    if (fd < 0)
        return Answer::NotRunning;
    ::fcntl(fd, F_SETFD, FD_CLOEXEC);
    Answer answered = Answer::NotRunning;
    if (::connect(fd, reinterpret_cast<sockaddr *>(&address), sizeof address) == 0) {
        qsizetype sent = 0;
        while (sent < message.size() && waitFor(fd, POLLOUT, timeoutMs)) {
            const ssize_t written = ::write(fd, message.constData() + sent, size_t(message.size() - sent));
            if (written < 0 && errno != EINTR)
                break;
            sent += std::max<ssize_t>(written, 0);
        }
        char answer = 0;
        answered
            = sent == message.size() && waitFor(fd, POLLIN, timeoutMs) && ::read(fd, &answer, 1) == 1 && answer == 'K'
            ? Answer::Taken
            : Answer::Silent;
    }
    ::close(fd);
    return answered;
}

SingleInstance::Start SingleInstance::startOrHandOver(const QByteArray &message, QLockFile &lock, int patienceMs)
{
    QDir().mkpath(QFileInfo(lock.fileName()).path());
    // Never stale by age: only a holder that no longer runs gives the lock up.
    lock.setStaleLockTime(0);
    QElapsedTimer waited;
    waited.start();
    for (;;) {
        switch (handOver(message)) {
        case Answer::Taken:
            return Start::HandedOver;
        case Answer::Silent:
            // Sent again, the links could arrive twice once the first wakes up.
            return Start::Silent;
        case Answer::NotRunning:
            break;
        }
        if (lock.tryLock(0))
            return Start::Run;
        if (waited.elapsed() > patienceMs)
            return Start::Busy;
        ::usleep(50 * 1000);
    }
}

bool LinkOpenFilter::eventFilter(QObject *watched, QEvent *event)
{
    if (event->type() != QEvent::FileOpen)
        return QObject::eventFilter(watched, event);
    const QUrl url = static_cast<QFileOpenEvent *>(event)->url();
    if (url.scheme() != u"quillbox")
        return QObject::eventFilter(watched, event);
    Q_EMIT received(Handover { false, linksOfQuillboxUrl(url.toString(QUrl::FullyEncoded)),
        QString::fromUtf8(QT_TRANSLATE_NOOP("Handover", "链接")) });
    return true;
}

InstanceServer::InstanceServer(QObject *parent)
    : QObject(parent)
    , m_server(new QLocalServer(this))
{
    // The socket file is the user's only.
    m_server->setSocketOptions(QLocalServer::UserAccessOption);
    connect(m_server, &QLocalServer::newConnection, this, [this] {
        while (QLocalSocket *socket = m_server->nextPendingConnection())
            take(socket);
    });
}

bool InstanceServer::listen(const QString &path)
{
    QDir().mkpath(QFileInfo(path).path());
    if (!m_server->listen(path)) {
        // A file left by a run that died: the one who listens holds the lock, so it is ours.
        QLocalServer::removeServer(path);
        if (!m_server->listen(path)) {
            m_error = m_server->errorString();
            return false;
        }
    }
    return true;
}

void InstanceServer::take(QLocalSocket *socket)
{
    connect(socket, &QLocalSocket::disconnected, socket, &QObject::deleteLater);
    connect(socket, &QObject::destroyed, this, [this, socket] { m_pending.remove(socket); });
    const qint64 user = peerUser(int(socket->socketDescriptor()));
    if (user != qint64(::getuid())) {
        Q_EMIT refused(tr("另一个用户（%1）").arg(user));
        socket->abort();
        return;
    }
    m_pending.insert(socket, {});
    connect(socket, &QLocalSocket::readyRead, this, [this, socket] { read(socket); });
    // A peer that says too little for too long is not waited for.
    QTimer::singleShot(ReadPatienceMs, socket, [this, socket] {
        if (!m_pending.contains(socket))
            return;
        Q_EMIT refused(tr("消息不完整"));
        socket->abort();
    });
    read(socket);
}

void InstanceServer::read(QLocalSocket *socket)
{
    auto pending = m_pending.find(socket);
    if (pending == m_pending.end())
        return;
    pending->append(socket->read(Handover::MaxBytes + 8 - pending->size()));
    const qsizetype needed = Handover::expectedSize(*pending);
    if (needed < 0 || (needed > 0 && pending->size() < needed))
        return;
    const std::optional<Handover> handover = needed > 0 ? Handover::decode(pending->left(needed)) : std::nullopt;
    m_pending.erase(pending);
    if (!handover) {
        Q_EMIT refused(tr("无法读取的消息"));
        socket->abort();
        return;
    }
    socket->write("K", 1);
    socket->flush();
    socket->disconnectFromServer();
    Q_EMIT received(*handover);
}
