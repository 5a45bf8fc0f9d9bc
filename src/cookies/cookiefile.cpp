#include "cookies/cookiefile.h"

#include <QCoreApplication>
#include <QFile>
#include <QMap>

using namespace Qt::StringLiterals;

namespace {
// Seconds from 1601-01-01 to 1970-01-01.
constexpr qint64 ChromeEpochOffset = 11644473600;
// Larger than any Unix time in seconds for the next hundred thousand years: Chrome's microseconds.
constexpr qint64 ChromeTimeThreshold = 100000000000000;
constexpr qint64 MaxCookieFileBytes = 64 * 1024 * 1024;
} // namespace

qint64 cookieExpirySeconds(const QByteArray &field)
{
    bool ok = false;
    const qint64 value = field.trimmed().toLongLong(&ok);
    if (!ok || value <= 0)
        return 0;
    if (value >= ChromeTimeThreshold)
        return value / 1000000 - ChromeEpochOffset;
    return value;
}

QList<CookieFileEntry> parseCookieFile(const QByteArray &content)
{
    QList<CookieFileEntry> cookies;
    const QList<QByteArray> lines = content.split('\n');
    for (QByteArray line : lines) {
        if (line.endsWith('\r'))
            line.chop(1);
        if (line.startsWith("#HttpOnly_"))
            line.remove(0, 10);
        else if (line.isEmpty() || line.startsWith('#'))
            continue;
        const QList<QByteArray> fields = line.split('\t');
        if (fields.size() < 7 || fields.at(0).isEmpty())
            continue;
        cookies.append(CookieFileEntry {
            QString::fromUtf8(fields.at(0)), QString::fromUtf8(fields.at(5)), cookieExpirySeconds(fields.at(4)) });
    }
    return cookies;
}

QList<CookieDomainSummary> summarizeCookieFile(const QString &path, const QDateTime &now, QString *error)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly)) {
        if (error)
            *error = file.errorString();
        return {};
    }
    if (file.size() > MaxCookieFileBytes) {
        if (error)
            *error = QCoreApplication::translate("CookieFile", "文件过大，不像 Cookie 文件");
        return {};
    }
    const qint64 nowSeconds = now.toSecsSinceEpoch();
    QMap<QString, CookieDomainSummary> hosts;
    for (const CookieFileEntry &cookie : parseCookieFile(file.readAll())) {
        CookieDomainSummary &summary = hosts[cookie.domain];
        summary.domain = cookie.domain;
        ++summary.count;
        if (cookie.expiry == 0)
            continue;
        if (cookie.expiry <= nowSeconds)
            ++summary.expiredCount;
        const QDateTime when = QDateTime::fromSecsSinceEpoch(cookie.expiry);
        if (!summary.latestExpiry.isValid() || when > summary.latestExpiry)
            summary.latestExpiry = when;
    }
    if (hosts.isEmpty() && error)
        *error = QCoreApplication::translate("CookieFile", "文件中没有 Cookie");
    return hosts.values();
}
