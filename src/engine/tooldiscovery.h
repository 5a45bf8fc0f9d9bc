#pragma once

#include "cookies/cookiewords.h"
#include "model/logentry.h"

#include <QList>
#include <QObject>
#include <QString>
#include <QStringList>

#include <functional>

class AppState;

// Where tool discovery looks. standard() is the real machine; a test points it elsewhere.
struct ToolLocations
{
    struct Runtime
    {
        QString name;
        QStringList candidates;
    };

    QString home;
    QStringList ytDlp;
    QList<Runtime> runtimes; // tried in order: deno, node, bun
    QStringList ffmpeg;

    static ToolLocations standard(const QString &home);
};

// Finds yt-dlp (the stored custom path or the usual places), its version, a JavaScript runtime
// and ffmpeg, each in the background with a time limit, and hands out the words a command needs
// to use them. Lives on the GUI thread.
class ToolDiscovery : public QObject
{
    Q_OBJECT

public:
    static constexpr auto CustomYtDlpPathKey = "customYtDlpPath";
    static constexpr int ProbeTimeoutMs = 30000;

    ToolDiscovery(AppState *appState, ToolLocations locations, QObject *parent = nullptr);

    // Starts choosing the yt-dlp path and the runtime and ffmpeg detections, once.
    void start();
    const ToolLocations &locations() const { return m_locations; }

    QString ytDlpPath() const { return m_ytDlpPath; }
    bool isYtDlpPathKnown() const { return m_ytDlpPathKnown; }
    QString ytDlpVersion() const { return m_ytDlpVersion; }
    QString detectedJSRuntime() const { return m_detectedJSRuntime; }
    QString detectedJSRuntimePath() const { return m_detectedJSRuntimePath; }
    QString detectedFfmpeg() const { return m_detectedFfmpeg; }
    QString detectedFfmpegVersion() const { return m_detectedFfmpegVersion; }

    // The first round has ended: the path is chosen and its version asked, and the runtime and
    // ffmpeg have been looked for (found or not). Downloads wait for this, since it decides
    // their words; every probe has a time limit, so the wait ends. ready() says when.
    bool isReady() const { return m_versionProbed && m_runtimeDetected && m_ffmpegDetected; }

    // Runs `action` once the yt-dlp path is chosen (at once if it is).
    void whenYtDlpPathKnown(std::function<void()> action);

    // Stores `path` under "customYtDlpPath"; it takes effect at the next start. When a file is
    // there, the version is probed again (of the path in use).
    void setCustomYtDlpPath(const QString &path);
    // Asks the yt-dlp in use for its version; `completion(success, output or error)` on this
    // thread. Waits for the path to be chosen first.
    void checkYtDlpInstallation(std::function<void(bool, const QString &)> completion);
    void setYtDlpVersion(const QString &version);
    void detectJSRuntime();
    void detectFfmpeg();

    // "--js-runtimes NAME:PATH" when a runtime was found and yt-dlp is recent enough to know the
    // option; "--ffmpeg-location PATH" when ffmpeg was found.
    QStringList jsRuntimeArgs() const;
    QStringList ffmpegArgs() const;
    // True for versions from the first yt-dlp release that has --js-runtimes on.
    static bool supportsJsRuntimes(const QString &ytDlpVersion);

    // The cookie words of AppState's cookie source; a source that cannot be used gives none,
    // and the in-app log says so once.
    CookieWords cookieArgs() const;

Q_SIGNALS:
    void ytDlpPathChanged();
    void ytDlpVersionChanged();
    void detectedJSRuntimeChanged();
    void detectedFfmpegChanged();
    void ready();

private:
    void addLog(const QString &message, LogEntry::LogType type) const;
    void chooseYtDlpPath();
    void findYtDlp(int candidate, std::function<void(const QString &)> found);
    void setYtDlpPath(const QString &path);
    void detectRuntime(int generation, int runtime, int candidate);
    void setJSRuntime(const QString &name, const QString &path);
    void getFfmpegVersion(int generation, const QString &path);
    void setFfmpeg(const QString &path, const QString &version);
    void warnIfYtDlpTooOld();
    void announceIfReady();

    AppState *m_appState;
    ToolLocations m_locations;
    bool m_started = false;
    QString m_ytDlpPath;
    bool m_ytDlpPathKnown = false;
    bool m_versionProbed = false;
    bool m_runtimeDetected = false;
    bool m_ffmpegDetected = false;
    bool m_announced = false;
    QList<std::function<void()>> m_afterPathKnown;
    QString m_ytDlpVersion;
    QString m_detectedJSRuntime;
    QString m_detectedJSRuntimePath;
    QString m_detectedFfmpeg;
    QString m_detectedFfmpegVersion;
    int m_runtimeGeneration = 0;
    int m_ffmpegGeneration = 0;
    bool m_warnedOldYtDlp = false;
    mutable QString m_lastCookieWarning;
};
