#pragma once

#include "engine/releaselocations.h"

#include <QObject>
#include <QString>

#include <functional>
#include <memory>

class QNetworkAccessManager;
class QNetworkReply;

// Installs and updates the tools Quillbox keeps itself — its own yt-dlp in the per-user data
// folder, Deno in ~/.deno/bin — from their official releases. A file is replaced only by a
// complete download whose SHA-256 matches the published one, in one rename; anything else leaves
// the old file as it was. Lives on the GUI thread; one install at a time.
class ToolInstaller : public QObject
{
    Q_OBJECT
    Q_PROPERTY(bool busy READ isBusy NOTIFY busyChanged)
    // 0..1 while the build downloads; -1 while the size is unknown or between downloads.
    Q_PROPERTY(double progress READ progress NOTIFY progressChanged)
    // What the install is doing, then how the last one ended.
    Q_PROPERTY(QString statusText READ statusText NOTIFY statusTextChanged)

public:
    enum class Tool { YtDlp, Deno };
    Q_ENUM(Tool)

    struct LatestRelease
    {
        bool ok = false;
        QString tag;
        QString error; // for the user, when !ok
    };

    // Called with a continuation once the new file is downloaded and verified; the file replaces
    // the old one when the continuation runs (on this thread). Until then the install waits.
    using ReplaceGate = std::function<void(std::function<void()> proceed)>;

    explicit ToolInstaller(ReleaseLocations locations, QObject *parent = nullptr);
    ToolInstaller(ReleaseLocations locations, QString ytDlpFolder, QString denoFolder, QObject *parent = nullptr);
    ~ToolInstaller() override;

    // <per-user data folder>/bin and ~/.deno/bin.
    static QString defaultYtDlpFolder();
    static QString defaultDenoFolder();
    // Where `tool` is installed: its folder and "yt-dlp" or "deno".
    QString toolPath(Tool tool) const;

    // Asks the release page for the latest tag; `completion` runs later on this thread.
    void checkLatest(Tool tool, std::function<void(const LatestRelease &)> completion);

    // Installs the latest release of `tool`; finished() says how it ended. Refused (finished()
    // with ok false) while another install runs.
    Q_INVOKABLE void install(ToolInstaller::Tool tool);
    // Stops the running install, discarding what it downloaded; the old file stays.
    Q_INVOKABLE void cancel();

    void setReplaceGate(ReplaceGate gate);

    bool isBusy() const { return m_job != nullptr; }
    double progress() const { return m_progress; }
    QString statusText() const { return m_statusText; }

Q_SIGNALS:
    void busyChanged();
    void progressChanged();
    void statusTextChanged();
    // `path` is where the tool is installed, `version` the release tag (empty if not known).
    void finished(
        ToolInstaller::Tool tool, bool ok, const QString &path, const QString &version, const QString &message);

private:
    struct Job;
    using DataSink = std::function<QString(const QByteArray &)>;
    using FetchEnd = std::function<void(const QString &error)>;

    // The reply, or null when the address is refused: `end` then runs later, unless `context`
    // is gone by then.
    QNetworkReply *fetch(const QUrl &url, QObject *context, DataSink sink, FetchEnd end);
    QNetworkReply *fetchSmall(
        const QUrl &url, QObject *context, std::function<void(const QString &error, const QByteArray &body)> end);
    QNetworkReply *requestLatest(Tool tool, QObject *context, std::function<void(const LatestRelease &)> completion);
    const ReleaseLocations::Release &release(Tool tool) const;

    void fetchChecksum(const LatestRelease &latest);
    void downloadAsset();
    void verify();
    void unpack();
    void waitForGate();
    void replace(quint64 jobId);
    void finish(bool ok, const QString &message);
    void failLater(const QString &message);

    void setProgress(double progress);
    void setStatusText(const QString &text);

    ReleaseLocations m_locations;
    QString m_ytDlpFolder;
    QString m_denoFolder;
    QNetworkAccessManager *m_network = nullptr;
    ReplaceGate m_gate;
    std::unique_ptr<Job> m_job;
    quint64 m_lastJobId = 0;
    double m_progress = 0;
    QString m_statusText;
};
