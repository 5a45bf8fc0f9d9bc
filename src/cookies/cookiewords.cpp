#include "cookies/cookiewords.h"

#include "cookies/chromecookies.h"
#include "engine/tooltext.h"

#include <QFileInfo>

using namespace Qt::StringLiterals;

bool isKnownCookieSource(const QString &source)
{
    if (source == QLatin1String(CookieSourceNames::None) || source == QLatin1String(CookieSourceNames::File))
        return true;
    const QList<CookieBrowser> browsers = supportedCookieBrowsers();
    return std::any_of(
        browsers.begin(), browsers.end(), [&source](const CookieBrowser &browser) { return browser.name == source; });
}

CookieWords cookieWords(const QString &source, const QString &cookieFile, const QString &home)
{
    CookieWords result;
    if (source == QLatin1String(CookieSourceNames::None))
        return result;
    if (source == QLatin1String(CookieSourceNames::File)) {
        const QString path = expandHome(cookieFile.trimmed(), home);
        if (path.isEmpty()) {
            result.warning
                = u"⚠️ 未选择 Cookie 文件，本次不使用 Cookie（可在“Cookie 管理”中选择）"_s;
        } else if (!QFileInfo(path).isFile()) {
            result.warning = u"⚠️ Cookie 文件不存在: "_s + path + u"，本次不使用 Cookie"_s;
        } else {
            result.words = QStringList { u"--cookies"_s, path };
            result.notice = u"使用 Cookie 文件: "_s + path;
        }
        return result;
    }
    const QString label = cookieBrowserLabel(source);
    if (browserCookiesPresent(source, home)) {
        result.words = QStringList { u"--cookies-from-browser"_s, source };
        result.notice = u"使用 "_s + label + u" 浏览器 Cookie"_s;
    } else {
        result.warning = u"⚠️ 未找到 "_s + label + u" 浏览器的 Cookie 数据库，本次不使用浏览器 Cookie"_s;
    }
    return result;
}
