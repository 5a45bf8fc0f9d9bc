#pragma once

#include "cookies/cookiefile.h"

#include <QDateTime>
#include <QList>
#include <QObject>
#include <QPointer>
#include <QString>
#include <QStringList>

#include <functional>

class ToolDiscovery;

// A site whose sign-in shows in its cookies: the names its login sets on `domain` and below.
struct SignInSite
{
    QString key; // stable, as a setting would store it ("youtube")
    QString label; // for display ("YouTube")
    QString domain; // "youtube.com"
    QStringList cookieNames;
};

// The sites a cookie check looks for sign-in cookies of; the first is the default. Their labels
// are in the interface's language of the moment.
QList<SignInSite> signInSites();
// The site of `key`, or the default one for an unknown key.
SignInSite signInSite(const QString &key);

enum class CookieCheckProblem {
    None,
    NoSource, // "none" is chosen, or the file field is empty
    YtDlpMissing,
    NotRun, // the shell could not start, or the run took too long
    BrowserNotFound,
    DatabaseLocked,
    KeyringRefused, // nothing could be decrypted without the system's keyring
    NotNetscape,
    FileMissing,
    Unreadable, // any other failure yt-dlp reported
};

// What yt-dlp's lines say about loading the cookies.
struct CookieLoadReport
{
    CookieCheckProblem problem = CookieCheckProblem::None;
    QString problemLine; // the tool's line that says so
    int extracted = -1; // from "Extracted N cookies from …"; -1 when it did not say
    int undecryptable = 0; // from "(N could not be decrypted)"
    bool keyringTrouble = false; // a warning or error about the keyring or decryption
};

// Reads the lines of a `--cookies-from-browser`/`--cookies` run without a link. A keyring
// complaint is a problem only when nothing was read; otherwise it qualifies what was.
CookieLoadReport parseCookieLoadOutput(const QStringList &lines);

// The sign-in cookies of `site` among `cookies`.
struct SignInFinding
{
    QStringList names; // distinct, in the table's order
    QDateTime expires; // the earliest expiry of a dated one; invalid when all are session cookies
    bool expired = false; // every dated one has run out
};
SignInFinding findSignIn(const QList<CookieFileEntry> &cookies, const SignInSite &site, const QDateTime &now);

struct CookieCheckResult
{
    CookieCheckProblem problem = CookieCheckProblem::None;
    QString detail; // the tool's line, or why the run failed
    QString sourceLabel; // "Chrome", "Cookie 文件"
    QList<CookieFileEntry> cookies; // as yt-dlp wrote them out
    int undecryptable = 0;
    bool keyringTrouble = false;
};

// What the cookie page says about a check: a first line with the count or the reason, and for
// a successful read a line on the sign-in cookies of `site`.
QString describeCookieCheck(const CookieCheckResult &result, const SignInSite &site, const QDateTime &now);

// Has yt-dlp load the chosen cookie source with no link, so that it goes to no site: it loads
// the browser's cookies (or a private copy of the cookie file, which it rewrites) and writes them
// to a private temporary file, which is read and then removed. Lives on the GUI thread.
class CookieCheck : public QObject
{
    Q_OBJECT

public:
    static constexpr int TimeoutMs = 60000;

    explicit CookieCheck(ToolDiscovery *tools, QObject *parent = nullptr);

    // Checks `source` (a browser name or "file", see CookieSourceNames) with `cookieFile` for
    // "file" (a leading "~/" means `home`); `done` is called once on this thread. A check asked
    // for while one runs is refused (returns false).
    bool start(const QString &source, const QString &cookieFile, const QString &home,
        std::function<void(const CookieCheckResult &)> done);
    bool isRunning() const { return m_running; }

private:
    QPointer<ToolDiscovery> m_tools;
    bool m_running = false;
};
