#pragma once

#include <QList>
#include <QString>
#include <QStringList>

// Where Chrome keeps its cookie database, in the order they are tried, under `home`: the macOS
// profiles first, then on Linux Chrome's and Chromium's (old and new locations).
QStringList chromeCookieDatabaseCandidates(const QString &home);

// The first candidate that exists, or an empty text.
QString findChromeCookieDatabase(const QString &home);

// A browser whose cookies yt-dlp can read (--cookies-from-browser NAME).
struct CookieBrowser
{
    QString name; // yt-dlp's name: "chrome", "firefox", …
    QString label; // as the interface shows it: "Chrome", "Firefox", …
    QStringList programs; // the programs that start it, on the PATH
    QString application; // its application on macOS, without ".app"
};

// The browsers yt-dlp reads cookies from, on this system (Safari only on macOS).
QList<CookieBrowser> supportedCookieBrowsers();
// "Chrome" for "chrome"; the name itself for one yt-dlp does not know.
QString cookieBrowserLabel(const QString &name);
// True when `browser` keeps a cookie store under `home` where yt-dlp looks for it. For Chrome
// that is one of Chrome's own database locations (never Chromium's, which yt-dlp reads only as
// "chromium").
bool browserCookiesPresent(const QString &browser, const QString &home);
// The supported browsers that have a cookie store under `home`, in the order of the list.
QList<CookieBrowser> installedCookieBrowsers(const QString &home);
// True when `browser` is on this system: its program on the PATH (its application on macOS), or
// a profile folder of it under `home`. Installed and never started, it has no cookie store yet.
bool browserInstalled(const QString &browser, const QString &home);
// The supported browsers that are installed but have no cookie store under `home` yet.
QList<CookieBrowser> cookielessBrowsers(const QString &home);
