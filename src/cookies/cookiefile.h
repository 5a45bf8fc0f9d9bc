#pragma once

#include <QDateTime>
#include <QList>
#include <QString>

// One host of a Netscape cookie file, as the cookie page lists it.
struct CookieDomainSummary
{
    QString domain;
    int count = 0; // cookies for this host
    int expiredCount = 0; // of those, the ones whose expiry has passed
    QDateTime latestExpiry; // the latest expiry of a dated cookie; invalid when all are session cookies

    // Every dated cookie has expired (session cookies alone never count as expired).
    bool expired() const { return expiredCount > 0 && expiredCount == count; }
};

// One cookie of a Netscape cookie file.
struct CookieFileEntry
{
    QString domain;
    QString name;
    qint64 expiry = 0; // Unix seconds; 0 for a session cookie
};

// The cookies of a Netscape cookie file's `content`, in file order. Lines that are not cookies
// (comments, blank or short lines) are skipped.
QList<CookieFileEntry> parseCookieFile(const QByteArray &content);

// Reads the hosts of the Netscape cookie file at `path`, sorted by name. An expiry is Unix
// seconds, or Chrome's microseconds since 1601 as the sqlite3 export writes them; 0 is a session
// cookie. Lines marked "#HttpOnly_" are cookies too. `error` says why nothing could be read.
QList<CookieDomainSummary> summarizeCookieFile(const QString &path, const QDateTime &now, QString *error = nullptr);

// Unix seconds from a cookie file's expiry field; 0 for a session cookie or a field that is not a number.
qint64 cookieExpirySeconds(const QByteArray &field);
