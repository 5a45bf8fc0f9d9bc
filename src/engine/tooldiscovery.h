#pragma once

#include "cookies/cookiewords.h"
#include "engine/toolchain.h"
#include "model/enginehost.h"
#include "model/logentry.h"

#include <QList>
#include <QObject>
#include <QString>
#include <QStringList>

#include <functional>

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
    QString keptYtDlp; // where Quillbox keeps a yt-dlp of its own

    static ToolLocations standard(const QString &home);
};

// Finds yt-dlp (the stored custom path or the usual places), its version, a JavaScript runtime
// and ffmpeg, each in the background with a time limit, and hands out the words a command needs
// to use them. It also asks that yt-dlp ("-v") how it was installed and which runtimes it
// accepts, and judges the whole toolchain for the settings sheet and the download page. Lives on
// the GUI thread.
class ToolDiscovery : public QObject
{
    Q_OBJECT
    Q_PROPERTY(QString ytDlpPath READ ytDlpPath NOTIFY ytDlpPathChanged)
    Q_PROPERTY(bool isYtDlpPathChosen READ isYtDlpPathChosen NOTIFY ytDlpPathChanged)
    Q_PROPERTY(QString ytDlpVersion READ ytDlpVersion NOTIFY ytDlpVersionChanged)
    Q_PROPERTY(QString detectedJSRuntime READ detectedJSRuntime NOTIFY detectedJSRuntimeChanged)
    Q_PROPERTY(QString detectedJSRuntimePath READ detectedJSRuntimePath NOTIFY detectedJSRuntimeChanged)
    Q_PROPERTY(QString detectedFfmpeg READ detectedFfmpeg NOTIFY detectedFfmpegChanged)
    Q_PROPERTY(QString detectedFfmpegVersion READ detectedFfmpegVersion NOTIFY detectedFfmpegChanged)
    Q_PROPERTY(bool isYtDlpKept READ isYtDlpKept NOTIFY verdictsChanged)
    Q_PROPERTY(QString latestYtDlpVersion READ latestYtDlpVersion NOTIFY verdictsChanged)
    Q_PROPERTY(QString detectedFfprobe READ detectedFfprobe NOTIFY detectedFfmpegChanged)
    Q_PROPERTY(bool isProbing READ isProbing NOTIFY isProbingChanged)
    Q_PROPERTY(ToolVerdict ytDlpVerdict READ ytDlpVerdict NOTIFY verdictsChanged)
    Q_PROPERTY(ToolVerdict runtimeVerdict READ runtimeVerdict NOTIFY verdictsChanged)
    Q_PROPERTY(ToolVerdict ffmpegVerdict READ ffmpegVerdict NOTIFY verdictsChanged)
    Q_PROPERTY(ToolVerdict notice READ notice NOTIFY verdictsChanged)
    Q_PROPERTY(QString ffmpegInstallCommand READ ffmpegInstallCommand CONSTANT)
    // The yt-dlp files the executable picker offers, as they were when it last looked.
    Q_PROPERTY(QStringList executableChoices READ executableChoices NOTIFY executableChoicesChanged)

public:
    static constexpr auto CustomYtDlpPathKey = "customYtDlpPath";
    static constexpr int ProbeTimeoutMs = 30000;

    ToolDiscovery(EngineHost host, ToolLocations locations, QObject *parent = nullptr);

    // Starts choosing the yt-dlp path and the runtime and ffmpeg detections, once.
    void start();
    const ToolLocations &locations() const { return m_locations; }

    QString ytDlpPath() const { return m_ytDlpPath; }
    bool isYtDlpPathKnown() const { return m_ytDlpPathKnown; }
    // The path in use was chosen by the user ("customYtDlpPath"), not found.
    bool isYtDlpPathChosen() const { return m_ytDlpPathChosen; }
    bool isYtDlpKept() const { return m_route == UpdateRoute::Kept; }
    UpdateRoute ytDlpUpdateRoute() const { return m_route; }
    QString ytDlpVariant() const { return m_ytDlpVariant; }
    QString latestYtDlpVersion() const { return m_latestYtDlp; }
    // Every runtime found, each judged for the yt-dlp in use, in the order they are preferred.
    QList<JsRuntimeInfo> jsRuntimes() const { return m_jsRuntimes; }
    QString detectedFfprobe() const { return m_detectedFfprobe; }
    // Some probe of the toolchain is still under way.
    bool isProbing() const { return m_probes > 0; }
    ToolVerdict ytDlpVerdict() const { return m_verdicts.ytDlp; }
    ToolVerdict runtimeVerdict() const { return m_verdicts.runtime; }
    ToolVerdict ffmpegVerdict() const { return m_verdicts.ffmpeg; }
    ToolVerdict notice() const { return m_verdicts.notice; }
    QString ffmpegInstallCommand() const;
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

    // Stores `path` under "customYtDlpPath". When a file is there it is used at once: the path
    // in use follows, and its version and the runtimes' verdicts are probed again. Downloads
    // already running keep the yt-dlp they started with.
    void setCustomYtDlpPath(const QString &path);
    // Forgets the stored path and looks for yt-dlp again, using what it finds at once.
    void resetYtDlpPath();
    // The newest yt-dlp release known (from the release check), for the verdict.
    void setLatestYtDlpVersion(const QString &version);
    // Probes everything again: the yt-dlp in use, the runtimes and ffmpeg.
    void recheck();
    // Asks the yt-dlp in use for its version; `completion(success, output or error)` on this
    // thread. Waits for the path to be chosen first.
    void checkYtDlpInstallation(std::function<void(bool, const QString &)> completion);
    void setYtDlpVersion(const QString &version);
    void detectJSRuntime();
    void detectFfmpeg();

    // The executable picker's entries: the first two places looked in (the usual Homebrew ones),
    // each where a file is there, then the path in use, then the other places that hold a file;
    // each path once, only files that can be run.
    static QStringList executableChoicesIn(const ToolLocations &locations, const QString &inUse);
    QStringList executableChoices() const { return m_executableChoices; }
    // Looks at the disk again for executableChoices (files come and go while Quillbox runs).
    Q_INVOKABLE void findExecutableChoices();

    // Raw words (ShellCommand quotes them): "--js-runtimes NAME:PATH" when a runtime was found and
    // yt-dlp is recent enough to know the option; "--ffmpeg-location PATH" when ffmpeg was found.
    QStringList jsRuntimeArgs() const;
    QStringList ffmpegArgs() const;
    // True for versions from the first yt-dlp release that has --js-runtimes on.
    static bool supportsJsRuntimes(const QString &ytDlpVersion);

    // The cookie words of the cookie settings' source; a source that cannot be used gives none,
    // and the in-app log says so once.
    CookieWords cookieArgs() const;

Q_SIGNALS:
    void ytDlpPathChanged();
    void ytDlpVersionChanged();
    void detectedJSRuntimeChanged();
    void detectedFfmpegChanged();
    void verdictsChanged();
    void isProbingChanged();
    void ready();
    void executableChoicesChanged();

private:
    void addLog(const QString &message, LogEntry::LogType type) const;
    void chooseYtDlpPath();
    void findYtDlp(int candidate, std::function<void(const QString &)> found);
    void setYtDlpPath(const QString &path, bool chosen);
    void detectRuntime(int generation, int runtime, int candidate);
    void probeRuntimeVersions(int generation, int index);
    void askYtDlpAboutItself();
    void runReport();
    void applyReport(const YtDlpReport &report);
    void setJSRuntime(const QString &name, const QString &path);
    void updateVerdicts();
    void probeStarted();
    void probeEnded();
    void getFfmpegVersion(int generation, const QString &path);
    void setFfmpeg(const QString &path, const QString &version);
    void warnIfYtDlpTooOld();
    void announceIfReady();

    LogSink *m_log;
    const CookieSettings *m_cookies;
    ToolLocations m_locations;
    bool m_homebrew; // looked for once: the verdicts are judged again on every change
    bool m_started = false;
    QString m_ytDlpPath;
    bool m_ytDlpPathKnown = false;
    bool m_ytDlpPathChosen = false;
    int m_pathGeneration = 0;
    int m_reportGeneration = 0;
    bool m_runtimesFound = false; // every runtime has been looked for and asked its version
    bool m_runtimesFresh = false; // found anew: the verdict is said in the log again
    bool m_reportScheduled = false;
    bool m_detectingRuntimes = false;
    int m_probes = 0;
    QString m_ytDlpVariant;
    UpdateRoute m_route = UpdateRoute::Unknown;
    QString m_latestYtDlp;
    QList<JsRuntimeInfo> m_jsRuntimes;
    QString m_detectedFfprobe;
    ToolchainVerdicts m_verdicts;
    QStringList m_rejectedRuntimesSaid;
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
    QStringList m_executableChoices;
};
