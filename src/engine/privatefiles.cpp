#include "engine/privatefiles.h"

#include "model/logcategories.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QSettings>

#ifdef Q_OS_UNIX
#include <cerrno>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>
#endif

namespace PrivateFiles {

#ifdef Q_OS_UNIX
namespace {
// A mode that cannot be narrowed (a folder or file of another owner, a read-only mount) is worth a
// line in the log but not a reason to go without the store or the settings.
bool setMode(const QString &path, mode_t mode)
{
    if (::chmod(QFile::encodeName(path).constData(), mode) == 0)
        return true;
    const int error = errno;
    qCWarning(lcEngine, "[Quillbox] 无法把 %ls 设为仅本人可读写: %ls", qUtf16Printable(path),
        qUtf16Printable(qt_error_string(error)));
    return false;
}
} // namespace

bool makeFolder(const QString &path)
{
    const QString folder = QDir::cleanPath(QDir(path).absolutePath());
    // mkdir() with 0700 never opens a folder wider than that, whatever the umask; the umask can
    // only take bits away, which the chmod below gives back.
    QStringList missing;
    for (QString at = folder; !QFileInfo::exists(at);) {
        missing.prepend(at);
        const QString parent = QFileInfo(at).absolutePath();
        if (parent == at)
            break;
        at = parent;
    }
    for (const QString &step : std::as_const(missing)) {
        if (::mkdir(QFile::encodeName(step).constData(), 0700) != 0 && errno != EEXIST)
            return false;
    }
    if (!QFileInfo(folder).isDir())
        return false;
    setMode(folder, 0700);
    return true;
}

bool makeFile(const QString &path)
{
    const int fd = ::open(QFile::encodeName(path).constData(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0600);
    if (fd >= 0) {
        ::close(fd);
        setMode(path, 0600);
        return true;
    }
    if (errno != EEXIST)
        return false;
    restrictFile(path);
    return true;
}

bool restrictFile(const QString &path)
{
    return !QFileInfo::exists(path) || setMode(path, 0600);
}
#else
bool makeFolder(const QString &path)
{
    return QDir().mkpath(path);
}

bool makeFile(const QString &path)
{
    QFile file(path);
    return file.exists() || file.open(QIODevice::WriteOnly);
}

bool restrictFile(const QString &)
{
    return true;
}
#endif

void protectSettings()
{
#if defined(Q_OS_UNIX) && !defined(Q_OS_DARWIN)
    // QSettings writes a whole new file (QSaveFile) and renames it over the old one, and QSaveFile
    // gives the new file the permissions of the one it replaces: a file that exists 0600 before
    // the first write stays 0600 through every later one, without a chmod after each write (they
    // happen when any QSettings object goes, all over the application). Narrowing the umask for the
    // writes instead would reach the downloads, which inherit it. Should the file go while the
    // application runs, the one written next is still inside a folder only its owner can enter.
    // (On macOS the settings are a property list in ~/Library, which is owner-only already.)
    const QString file = QSettings().fileName();
    if (makeFolder(QFileInfo(file).absolutePath()))
        makeFile(file);
#endif
}

} // namespace PrivateFiles
