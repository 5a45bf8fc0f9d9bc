#include "cookies/chromecookies.h"

#include <QFileInfo>

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
