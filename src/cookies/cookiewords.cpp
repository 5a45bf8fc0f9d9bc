#include "cookies/cookiewords.h"

#include "cookies/chromecookies.h"
#include "engine/tooltext.h"

#include <QCoreApplication>
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
            result.warning = QCoreApplication::translate("CookieWords",
                "⚠️ 未选择 Cookie 文件，本次不使用 Cookie（可在“Cookie 管理”中选择）");
        } else if (!QFileInfo(path).isFile()) {
            result.warning = QCoreApplication::translate(
                "CookieWords", "⚠️ Cookie 文件不存在: %1，本次不使用 Cookie")
                                 .arg(path);
        } else {
            result.words = QStringList { u"--cookies"_s, path };
            result.notice = QCoreApplication::translate("CookieWords", "使用 Cookie 文件: %1").arg(path);
        }
        return result;
    }
    const QString label = cookieBrowserLabel(source);
    if (browserCookiesPresent(source, home)) {
        result.words = QStringList { u"--cookies-from-browser"_s, source };
        result.notice = QCoreApplication::translate("CookieWords", "使用 %1 浏览器 Cookie").arg(label);
    } else {
        result.warning = QCoreApplication::translate(
            "CookieWords", "⚠️ 未找到 %1 浏览器的 Cookie 数据库，本次不使用浏览器 Cookie")
                             .arg(label);
    }
    return result;
}
