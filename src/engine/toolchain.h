#pragma once

#include "model/enums.h"

#include <QDate>
#include <QList>
#include <QMetaType>
#include <QString>

#include <optional>

// What a real download needs of the tools, and what to tell the user about them: the facts read
// from `yt-dlp -v`, each JavaScript runtime's version and whether that yt-dlp accepts it, and the
// one-line verdicts with the action that fixes each. Pure functions; discovery gathers the facts.

// A JavaScript runtime found on this machine.
struct JsRuntimeInfo
{
    QString name; // "deno", "node", "bun"
    QString path;
    QString version; // as the runtime printed it, without a leading "v"; empty when it did not say
    bool supported = false; // good enough for the yt-dlp in use
    bool judgedByYtDlp = false; // yt-dlp's own "-v" said so, rather than the minimums below
};

// How the yt-dlp in use can be brought up to date.
enum class UpdateRoute {
    Unknown, // no variant printed: a manual build or a package manager we cannot name
    SelfUpdate, // an official build: its own "-U"
    Kept, // the copy Quillbox installed and keeps current
    Homebrew,
    Pip,
    PackageManager, // a distribution's package, which refuses "-U"
    Source, // a git checkout
};

// What `yt-dlp -v` says about itself and the runtimes it was offered.
struct YtDlpReport
{
    QString variant; // "zip", "linux_exe", "debian*", …; empty when it printed none
    bool printedRuntimes = false; // a "JS runtimes:" line was there
    QList<std::pair<QString, bool>> runtimes; // name → accepted, as that line said
};

YtDlpReport parseVerboseReport(const QString &output);

// The version a runtime printed for "--version" ("v20.20.2", "deno 2.9.6 (stable, …)", "1.2.11").
QString parseRuntimeVersion(const QString &name, const QString &output);

// The oldest version of each runtime that current yt-dlp releases accept, for a yt-dlp that
// cannot tell us itself. Unknown names and unreadable versions are not accepted.
bool meetsRuntimeMinimum(const QString &name, const QString &version);
QString runtimeMinimum(const QString &name);

// The release date in a yt-dlp version ("2026.08.19", nightlies "2026.08.19.233512").
std::optional<QDate> ytDlpReleaseDate(const QString &version);
// True when `candidate` is a later release than `current` (both yt-dlp versions).
bool isNewerYtDlp(const QString &candidate, const QString &current);

UpdateRoute updateRouteFor(const QString &variant, const QString &path, const QString &keptPath);

// The plain-Chinese reason an update failed, from what the update command printed; empty when
// the output says nothing known.
QString explainUpdateFailure(const QString &output, UpdateRoute route);

// One line of the settings sheet or the download page: what is there, whether it is good enough,
// and the one action that fixes it.
struct ToolVerdict
{
    Q_GADGET
    Q_PROPERTY(QString text MEMBER text CONSTANT)
    // As numbers: QML compares them with the Download.* enumerations.
    Q_PROPERTY(int tint READ tintValue CONSTANT)
    Q_PROPERTY(int action READ actionValue CONSTANT)
    Q_PROPERTY(QString actionLabel READ actionLabel CONSTANT)

public:
    // The button that carries out `action`; empty when there is none.
    QString actionLabel() const;
    int tintValue() const { return int(tint); }
    int actionValue() const { return int(action); }

    QString text;
    Tint tint = Tint::Gray;
    quillbox::ToolAction action = quillbox::ToolAction::None;

    bool operator==(const ToolVerdict &) const = default;
};

struct ToolchainFacts
{
    bool probed = false; // the first round of discovery has ended
    QString ytDlpVersion; // empty: missing or it did not answer
    UpdateRoute route = UpdateRoute::Unknown;
    QString latestYtDlp; // the newest release known, or empty
    QDate today;
    QList<JsRuntimeInfo> runtimes;
    QString ffmpeg;
    QString ffprobe;
    bool homebrew = false; // brew is there to install with (macOS)
};

struct ToolchainVerdicts
{
    ToolVerdict ytDlp;
    ToolVerdict runtime;
    ToolVerdict ffmpeg;
    // What the download page says when sites that need a JavaScript runtime would fail; empty
    // text when nothing would.
    ToolVerdict notice;

    bool operator==(const ToolchainVerdicts &) const = default;
};

ToolchainVerdicts judgeToolchain(const ToolchainFacts &facts);

// The package manager's command that installs ffmpeg (with ffprobe) here.
QString ffmpegInstallCommand(bool homebrew);

// Homebrew's `brew` where it is installed, or an empty text.
QString homebrewExecutable();

Q_DECLARE_METATYPE(ToolVerdict)
