#include "cookies/chromecookies.h"

#include <QDir>
#include <QFileInfo>
#include <QStandardPaths>

using namespace Qt::StringLiterals;

QStringList chromeCookieDatabaseCandidates(const QString &home)
{
    QStringList candidates {
        home + u"/Library/Application Support/Google/Chrome/Default/Cookies"_s,
        home + u"/Library/Application Support/Google/Chrome/Profile 1/Cookies"_s,
    };
#if defined(Q_OS_LINUX) || defined(Q_OS_FREEBSD)
    for (const QString &browser : { u"google-chrome"_s, u"chromium"_s }) {
        for (const QString &profile : { u"Default"_s, u"Profile 1"_s }) {
            const QString dir = home + u"/.config/"_s + browser + u'/' + profile;
            candidates << dir + u"/Cookies"_s << dir + u"/Network/Cookies"_s;
        }
    }
#endif
    return candidates;
}

QString findChromeCookieDatabase(const QString &home)
{
    for (const QString &candidate : chromeCookieDatabaseCandidates(home)) {
        if (QFileInfo(candidate).isFile())
            return candidate;
    }
    return QString();
}

QList<CookieBrowser> supportedCookieBrowsers()
{
    // The programs are the names distributions and the vendors' own packages put on the PATH.
    QList<CookieBrowser> browsers {
        { u"chrome"_s, u"Chrome"_s, { u"google-chrome"_s, u"google-chrome-stable"_s }, u"Google Chrome"_s },
        { u"chromium"_s, u"Chromium"_s, { u"chromium"_s, u"chromium-browser"_s }, u"Chromium"_s },
        { u"brave"_s, u"Brave"_s, { u"brave-browser"_s, u"brave"_s }, u"Brave Browser"_s },
        { u"edge"_s, u"Edge"_s, { u"microsoft-edge"_s, u"microsoft-edge-stable"_s }, u"Microsoft Edge"_s },
        { u"firefox"_s, u"Firefox"_s, { u"firefox"_s, u"firefox-esr"_s }, u"Firefox"_s },
        { u"opera"_s, u"Opera"_s, { u"opera"_s }, u"Opera"_s },
        { u"vivaldi"_s, u"Vivaldi"_s, { u"vivaldi"_s, u"vivaldi-stable"_s }, u"Vivaldi"_s },
    };
#ifdef Q_OS_MACOS
    browsers.append({ u"safari"_s, u"Safari"_s, {}, u"Safari"_s });
#endif
    return browsers;
}

QString cookieBrowserLabel(const QString &name)
{
    for (const CookieBrowser &browser : supportedCookieBrowsers()) {
        if (browser.name == name)
            return browser.label;
    }
    return name;
}

namespace {

// The folders a browser keeps its profiles in, as yt-dlp looks for them.
QStringList profileRoots(const QString &browser, const QString &home)
{
    const QString mac = home + u"/Library/Application Support/"_s;
    const QString config = home + u"/.config/"_s;
    if (browser == u"chrome")
        return { mac + u"Google/Chrome"_s, config + u"google-chrome"_s };
    if (browser == u"chromium")
        return { mac + u"Chromium"_s, config + u"chromium"_s, home + u"/snap/chromium/common/chromium"_s };
    if (browser == u"brave")
        return { mac + u"BraveSoftware/Brave-Browser"_s, config + u"BraveSoftware/Brave-Browser"_s };
    if (browser == u"edge")
        return { mac + u"Microsoft Edge"_s, config + u"microsoft-edge"_s };
    if (browser == u"opera")
        return { mac + u"com.operasoftware.Opera"_s, config + u"opera"_s };
    if (browser == u"vivaldi")
        return { mac + u"Vivaldi"_s, config + u"vivaldi"_s };
    if (browser == u"firefox")
        return { mac + u"Firefox/Profiles"_s, home + u"/.mozilla/firefox"_s,
            home + u"/snap/firefox/common/.mozilla/firefox"_s,
            home + u"/.var/app/org.mozilla.firefox/.mozilla/firefox"_s };
    return {};
}

// A profile folder directly under `root` (or `root` itself) that holds one of `files`.
bool anyProfileHolds(const QString &root, const QStringList &files)
{
    QStringList dirs { root };
    const QDir dir(root);
    for (const QString &name : dir.entryList(QDir::Dirs | QDir::NoDotAndDotDot))
        dirs << dir.filePath(name);
    for (const QString &profile : std::as_const(dirs)) {
        for (const QString &file : files) {
            if (QFileInfo(profile + u'/' + file).isFile())
                return true;
        }
    }
    return false;
}

} // namespace

bool browserCookiesPresent(const QString &browser, const QString &home)
{
    if (browser == u"chrome") {
        const QStringList candidates = chromeCookieDatabaseCandidates(home);
        return std::any_of(candidates.begin(), candidates.end(),
            [](const QString &path) { return !path.contains(u"/chromium/"_s) && QFileInfo(path).isFile(); });
    }
    if (browser == u"safari") {
        return QFileInfo(home + u"/Library/Containers/com.apple.Safari/Data/Library/Cookies/Cookies.binarycookies"_s)
                   .isFile()
            || QFileInfo(home + u"/Library/Cookies/Cookies.binarycookies"_s).isFile();
    }
    const QStringList files = browser == u"firefox" ? QStringList { u"cookies.sqlite"_s }
                                                    : QStringList { u"Cookies"_s, u"Network/Cookies"_s };
    const QStringList roots = profileRoots(browser, home);
    return std::any_of(
        roots.begin(), roots.end(), [&files](const QString &root) { return anyProfileHolds(root, files); });
}

bool browserInstalled(const QString &browser, const QString &home)
{
    const QStringList roots = profileRoots(browser, home);
    if (std::any_of(roots.begin(), roots.end(), [](const QString &root) { return QFileInfo(root).isDir(); }))
        return true;
    const QList<CookieBrowser> browsers = supportedCookieBrowsers();
    const auto known = std::find_if(
        browsers.begin(), browsers.end(), [&browser](const CookieBrowser &entry) { return entry.name == browser; });
    if (known == browsers.end())
        return false;
#ifdef Q_OS_MACOS
    const QString bundle = known->application + u".app"_s;
    return QFileInfo(u"/Applications/"_s + bundle).isDir() || QFileInfo(home + u"/Applications/"_s + bundle).isDir();
#else
    return std::any_of(known->programs.begin(), known->programs.end(),
        [](const QString &name) { return !QStandardPaths::findExecutable(name).isEmpty(); });
#endif
}

QList<CookieBrowser> cookielessBrowsers(const QString &home)
{
    QList<CookieBrowser> browsers;
    for (const CookieBrowser &browser : supportedCookieBrowsers()) {
        if (!browserCookiesPresent(browser.name, home) && browserInstalled(browser.name, home))
            browsers.append(browser);
    }
    return browsers;
}

QList<CookieBrowser> installedCookieBrowsers(const QString &home)
{
    QList<CookieBrowser> installed;
    for (const CookieBrowser &browser : supportedCookieBrowsers()) {
        if (browserCookiesPresent(browser.name, home))
            installed.append(browser);
    }
    return installed;
}
