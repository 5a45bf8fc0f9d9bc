#pragma once

#include <QString>
#include <QStringList>

// Where Chrome keeps its cookie database, in the order they are tried, under `home`: the macOS
// profiles first, then on Linux Chrome's and Chromium's (old and new locations).
QStringList chromeCookieDatabaseCandidates(const QString &home);

// The first candidate that exists, or an empty text.
QString findChromeCookieDatabase(const QString &home);
