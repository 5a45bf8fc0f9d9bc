#pragma once

#include "engine/toolinstaller.h"
#include "model/logentry.h"

#include <QDateTime>
#include <QObject>
#include <QString>

#include <functional>

class LogSink;
class ToolDiscovery;

// Keeps the toolchain current: installs Quillbox's own yt-dlp or Deno when asked and puts them
// to use at once, looks for a new yt-dlp release at most once a day, and updates the copy
// Quillbox installed by itself when "autoUpdateYtDlp" is on. A file is swapped only while no
// download runs. Lives on the GUI thread.
class ToolKeeper : public QObject
{
    Q_OBJECT
    Q_PROPERTY(ToolInstaller *installer READ installer CONSTANT)
    Q_PROPERTY(bool autoUpdate READ autoUpdate WRITE setAutoUpdate NOTIFY autoUpdateChanged)
    // An installation is under way, by the installer or by Homebrew, and what it is doing (or
    // how the last one ended); progress is 0..1, or -1 while it cannot be told.
    Q_PROPERTY(bool busy READ isBusy NOTIFY stateChanged)
    Q_PROPERTY(bool canCancel READ canCancel NOTIFY stateChanged)
    Q_PROPERTY(double progress READ progress NOTIFY stateChanged)
    Q_PROPERTY(QString statusText READ statusText NOTIFY stateChanged)

public:
    static constexpr auto AutoUpdateKey = "autoUpdateYtDlp";
    static constexpr auto LatestReleaseKey = "latestYtDlpRelease";
    static constexpr auto CheckedAtKey = "latestYtDlpCheckedAt";

    // `isIdle` says whether no download runs; call downloadsIdle() when that becomes true.
    ToolKeeper(LogSink *log, ToolDiscovery *tools, ToolInstaller *installer, std::function<bool()> isIdle,
        QObject *parent = nullptr);

    ToolInstaller *installer() const { return m_installer; }
    bool isBusy() const { return m_brewing || m_installer->isBusy(); }
    bool canCancel() const { return m_installer->isBusy(); }
    double progress() const { return m_brewing ? -1 : m_installer->progress(); }
    QString statusText() const { return m_brewStatus.isEmpty() ? m_installer->statusText() : m_brewStatus; }
    // The Homebrew that installs yt-dlp and Deno instead of the official builds (on macOS, when
    // it is there); empty for none.
    void setHomebrew(const QString &brew) { m_brew = brew; }
    bool autoUpdate() const { return m_autoUpdate; }
    void setAutoUpdate(bool value);

    Q_INVOKABLE void installYtDlp();
    Q_INVOKABLE void installDeno();
    Q_INVOKABLE void cancel() { m_installer->cancel(); }

    // Looks for the latest release unless that was done in the last day (then the release
    // found then is used), and updates Quillbox's own copy when it is behind.
    void checkForUpdates(const QDateTime &now = QDateTime::currentDateTimeUtc());
    // The queue has no running download: a waiting swap or automatic update goes ahead.
    void downloadsIdle();

Q_SIGNALS:
    void autoUpdateChanged();
    void stateChanged();

private:
    void addLog(const QString &message, LogEntry::LogType type) const;
    void onFinished(
        ToolInstaller::Tool tool, bool ok, const QString &path, const QString &version, const QString &message);
    void updateKeptCopyIfBehind();
    void rememberLatestRelease(const QString &tag);
    void brewInstall(const QString &formula, std::function<void()> then);

    LogSink *m_log;
    ToolDiscovery *m_tools;
    ToolInstaller *m_installer;
    std::function<bool()> m_isIdle;
    QString m_brew;
    bool m_brewing = false;
    QString m_brewStatus;
    bool m_autoUpdate = true;
    bool m_updateWhenIdle = false;
    bool m_automatic = false; // the running install was started by the daily check
    QList<std::function<void()>> m_waitingSwaps;
};
