#pragma once

#include <QByteArray>
#include <QString>

#include <functional>
#include <optional>

// Decrypts the values Chrome and Chromium keep in a cookie database's encrypted_value column
// ("v10" or "v11" followed by AES-128-CBC data). On Linux "v10" uses Chromium's fixed password
// and "v11" the password the desktop keyring holds; on macOS "v10" uses the password from the
// Keychain. From database version 24 on, each plain text starts with the SHA-256 of the cookie's
// host, which is removed.
class ChromeDecryptor
{
public:
    // Asks the keyring (Linux) or the Keychain (macOS) for the browser's password; called at
    // most once, and only when a value needs it.
    using PasswordLookup = std::function<std::optional<QByteArray>()>;

    ChromeDecryptor(int databaseVersion, PasswordLookup lookup);

    enum class Outcome { Decrypted, NoKey, Failed };
    Outcome decrypt(const QByteArray &encrypted, const QByteArray &hostKey, QByteArray &plain);

    // The AES key Chrome derives from `password` (PBKDF2-HMAC-SHA1, salt "saltysalt", 16 bytes).
    static QByteArray deriveKey(const QByteArray &password, int iterations);
    // AES-128-CBC with Chrome's IV of 16 spaces and PKCS#7 padding; both directions, for tests.
    static std::optional<QByteArray> aesDecrypt(const QByteArray &key, const QByteArray &data);
    static QByteArray aesEncrypt(const QByteArray &key, const QByteArray &plain);

    // The password Chrome uses for "v10" on Linux, and the iteration counts of each system.
    static constexpr auto LinuxFixedPassword = "peanuts";
    static constexpr int LinuxIterations = 1;
    static constexpr int MacIterations = 1003;

private:
    std::optional<QByteArray> storedKey();

    int m_version;
    PasswordLookup m_lookup;
    bool m_looked = false;
    std::optional<QByteArray> m_storedKey;
};

// The lookups this system offers for the browser whose database is at `databasePath`:
// `secret-tool lookup application chrome|chromium` on Linux, `security find-generic-password -w
// -s "Chrome Safe Storage"` (or Chromium's) on macOS. `tool` overrides the program (tests).
std::optional<QByteArray> lookupBrowserPassword(const QString &databasePath, const QString &tool = QString());
