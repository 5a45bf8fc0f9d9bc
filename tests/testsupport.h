#pragma once

#include <QCoreApplication>
#include <QDir>
#include <QFileInfo>
#include <QSettings>
#include <QTemporaryDir>
#include <QtTest>

#ifdef Q_OS_UNIX
#include <sys/stat.h>
#endif

// Points the settings store and the home directory at a fresh temporary directory, so a test
// never reads or writes the user's own. Create it before anything touches QSettings.
class IsolatedEnvironment
{
public:
    IsolatedEnvironment()
    {
        if (!m_dir.isValid())
            qFatal("cannot create a temporary directory");
        QCoreApplication::setOrganizationName(QStringLiteral("QuillboxTests"));
        QCoreApplication::setApplicationName(QStringLiteral("QuillboxTests"));
        const QString settingsDir = m_dir.filePath(QStringLiteral("settings"));
        QSettings::setPath(QSettings::NativeFormat, QSettings::UserScope, settingsDir);
        QSettings::setPath(QSettings::IniFormat, QSettings::UserScope, settingsDir);
        QDir(m_dir.path()).mkpath(QStringLiteral("home"));
        qputenv("HOME", home().toUtf8());
        // The per-user data folder, where the queue is stored.
        qputenv("XDG_DATA_HOME", m_dir.filePath(QStringLiteral("data")).toUtf8());
    }

    QString root() const { return m_dir.path(); }
    QString home() const { return m_dir.filePath(QStringLiteral("home")); }

    static void clearSettings() { QSettings().clear(); }

private:
    QTemporaryDir m_dir;
};

// The current yt-dlp kept beside the project (../shared/tools/yt-dlp/yt-dlp, with its
// SHA2-256SUMS), or an empty text when this clone has no such folder beside it.
inline QString sharedYtDlp()
{
    const QString path = QDir(qEnvironmentVariable("QUILLBOX_TESTS_DIR"))
                             .absoluteFilePath(QStringLiteral("../../shared/tools/yt-dlp/yt-dlp"));
    return QFileInfo(path).isExecutable() ? QDir::cleanPath(path) : QString();
}

// The real Deno that the test set-up installs from the npm registry's "deno" package, or an
// empty text when it was not installed.
inline QString npmDeno()
{
    const QDir platforms(qEnvironmentVariable("QUILLBOX_NPM_DIR") + QStringLiteral("/node_modules/@deno"));
    for (const QString &platform : platforms.entryList(QDir::Dirs | QDir::NoDotAndDotDot)) {
        const QString path = platforms.filePath(platform + QStringLiteral("/deno"));
        if (QFileInfo(path).isExecutable())
            return path;
    }
    return {};
}

#ifdef Q_OS_UNIX
// The permission bits of `path` (as 0600 is written), or -1 when it is not there.
inline int modeOf(const QString &path)
{
    struct stat info;
    return ::stat(QFile::encodeName(path).constData(), &info) == 0 ? int(info.st_mode & 07777) : -1;
}

// The process's umask for as long as it lives; files made meanwhile start from it.
class UmaskScope
{
public:
    explicit UmaskScope(mode_t mask)
        : m_previous(::umask(mask))
    {
    }
    ~UmaskScope() { ::umask(m_previous); }
    UmaskScope(const UmaskScope &) = delete;
    UmaskScope &operator=(const UmaskScope &) = delete;

private:
    mode_t m_previous;
};
#endif
