#pragma once

#include "cookies/chromedecryptor.h"

#include <QByteArray>
#include <QCryptographicHash>
#include <QDir>
#include <QFileInfo>
#include <QList>
#include <QProcess>
#include <QString>

// Builds a cookie database with the schema Chrome and Chromium use, through the real sqlite3.
struct ChromeCookieRow
{
    QString host;
    QString name;
    QString value; // stored as text
    QByteArray encrypted; // encrypted_value
    qint64 expiresUtc = 0;
    bool secure = false;
    QByteArray valueBlob; // when set, `value` is stored as this blob instead of text
};

inline QString sqlText(const QString &text)
{
    QString quoted = text;
    quoted.replace(u'\'', QStringLiteral("''"));
    return u'\'' + quoted + u'\'';
}

// Writes the database at `path` (its folders created); `version` goes into the meta table.
inline bool writeChromeCookieDatabase(const QString &path, const QList<ChromeCookieRow> &rows, int version = 24)
{
    QDir().mkpath(QFileInfo(path).absolutePath());
    QString sql = QStringLiteral(
        "CREATE TABLE meta(key LONGVARCHAR NOT NULL UNIQUE PRIMARY KEY, value LONGVARCHAR);\n"
        "CREATE TABLE cookies(creation_utc INTEGER NOT NULL, host_key TEXT NOT NULL, top_frame_site_key TEXT NOT "
        "NULL, name TEXT NOT NULL, value TEXT NOT NULL, encrypted_value BLOB NOT NULL, path TEXT NOT NULL, "
        "expires_utc INTEGER NOT NULL, is_secure INTEGER NOT NULL, is_httponly INTEGER NOT NULL, last_access_utc "
        "INTEGER NOT NULL, has_expires INTEGER NOT NULL, is_persistent INTEGER NOT NULL, priority INTEGER NOT NULL, "
        "samesite INTEGER NOT NULL, source_scheme INTEGER NOT NULL, source_port INTEGER NOT NULL, last_update_utc "
        "INTEGER NOT NULL, source_type INTEGER NOT NULL, has_cross_site_ancestor INTEGER NOT NULL);\n");
    sql += QStringLiteral("INSERT INTO meta VALUES('version', '%1');\n").arg(version);
    qint64 creation = 13300000000;
    for (const ChromeCookieRow &row : rows) {
        const QString value = row.valueBlob.isEmpty()
            ? sqlText(row.value)
            : QStringLiteral("X'") + QString::fromLatin1(row.valueBlob.toHex()) + u'\'';
        sql += QStringLiteral("INSERT INTO cookies VALUES(%1, %2, '', %3, %4, X'%5', '/', %6, %7, 0, 0, 1, 1, 1, 0, 2, "
                              "443, 0, 0, 0);\n")
                   .arg(++creation)
                   .arg(sqlText(row.host), sqlText(row.name), value, QString::fromLatin1(row.encrypted.toHex()))
                   .arg(row.expiresUtc)
                   .arg(row.secure ? 1 : 0);
    }
    QProcess sqlite;
    sqlite.start(QStringLiteral("sqlite3"), { path });
    sqlite.write(sql.toUtf8());
    sqlite.closeWriteChannel();
    return sqlite.waitForFinished() && sqlite.exitCode() == 0 && sqlite.readAllStandardError().isEmpty();
}

// What Chrome stores for `value`: "v10" or "v11", then the AES data of the SHA-256 of the host
// (from version 24 on) and the value.
inline QByteArray chromeEncrypt(const QByteArray &value, const QByteArray &host, const QByteArray &password,
    const QByteArray &prefix = "v10", int version = 24)
{
    QByteArray plain = value;
    if (version >= 24)
        plain.prepend(QCryptographicHash::hash(host, QCryptographicHash::Sha256));
#ifdef Q_OS_MACOS
    const int iterations = ChromeDecryptor::MacIterations;
#else
    const int iterations = ChromeDecryptor::LinuxIterations;
#endif
    return prefix + ChromeDecryptor::aesEncrypt(ChromeDecryptor::deriveKey(password, iterations), plain);
}
