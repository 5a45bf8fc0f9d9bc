#pragma once

#include <QString>
#include <QStringList>

// Where downloads take their cookies from, as the "cookieSource" setting stores it: "none", "file"
// (the cookie file of the cookie settings' path) or the name of a browser yt-dlp reads ("chrome", …).
namespace CookieSourceNames {
inline constexpr auto None = "none";
inline constexpr auto File = "file";
inline constexpr auto DefaultBrowser = "chrome";
} // namespace CookieSourceNames

// True for "none", "file" and the browsers of supportedCookieBrowsers().
bool isKnownCookieSource(const QString &source);

// What a download's command gets from the chosen cookie source.
struct CookieWords
{
    QStringList words; // raw: {"--cookies-from-browser", "chrome"}, {"--cookies", "FILE"}, {}
    QString notice; // for the in-app log when words are given ("使用 Chrome 浏览器 Cookie")
    QString warning; // for the in-app log when the source cannot be used, so no words are given
};

// The cookie words for `source` (see CookieSourceNames) and `cookieFile` (used by "file"; a
// leading "~/" means `home`). A browser gives words only when its cookie store is under `home`,
// a file only when it exists; otherwise the words are empty and `warning` says why.
CookieWords cookieWords(const QString &source, const QString &cookieFile, const QString &home);
