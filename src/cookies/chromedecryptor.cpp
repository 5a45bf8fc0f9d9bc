#include "cookies/chromedecryptor.h"

#include "model/logcategories.h"

#include <QCryptographicHash>
#include <QProcess>
#include <QStandardPaths>

#include <openssl/evp.h>

#include <memory>

using namespace Qt::StringLiterals;

namespace {

constexpr int KeyLength = 16;
constexpr int HostHashLength = 32;
const QByteArray Iv(16, ' ');

struct CipherContextFree
{
    void operator()(EVP_CIPHER_CTX *context) const { EVP_CIPHER_CTX_free(context); }
};
using CipherContext = std::unique_ptr<EVP_CIPHER_CTX, CipherContextFree>;

std::optional<QByteArray> runCipher(const QByteArray &key, const QByteArray &input, bool encrypt)
{
    if (key.size() != KeyLength)
        return std::nullopt;
    CipherContext context(EVP_CIPHER_CTX_new());
    if (!context
        || EVP_CipherInit_ex(context.get(), EVP_aes_128_cbc(), nullptr,
               reinterpret_cast<const unsigned char *>(key.constData()),
               reinterpret_cast<const unsigned char *>(Iv.constData()), encrypt ? 1 : 0)
            != 1)
        return std::nullopt;
    QByteArray output(input.size() + 16, Qt::Uninitialized);
    int written = 0;
    if (EVP_CipherUpdate(context.get(), reinterpret_cast<unsigned char *>(output.data()), &written,
            reinterpret_cast<const unsigned char *>(input.constData()), int(input.size()))
        != 1)
        return std::nullopt;
    int last = 0;
    if (EVP_CipherFinal_ex(context.get(), reinterpret_cast<unsigned char *>(output.data()) + written, &last) != 1)
        return std::nullopt;
    output.truncate(written + last);
    return output;
}

} // namespace

ChromeDecryptor::ChromeDecryptor(int databaseVersion, PasswordLookup lookup)
    : m_version(databaseVersion)
    , m_lookup(std::move(lookup))
{
}

QByteArray ChromeDecryptor::deriveKey(const QByteArray &password, int iterations)
{
    static const QByteArray salt("saltysalt");
    QByteArray key(KeyLength, Qt::Uninitialized);
    if (PKCS5_PBKDF2_HMAC_SHA1(password.constData(), int(password.size()),
            reinterpret_cast<const unsigned char *>(salt.constData()), int(salt.size()), iterations, KeyLength,
            reinterpret_cast<unsigned char *>(key.data()))
        != 1)
        return QByteArray();
    return key;
}

std::optional<QByteArray> ChromeDecryptor::aesDecrypt(const QByteArray &key, const QByteArray &data)
{
    return runCipher(key, data, false);
}

QByteArray ChromeDecryptor::aesEncrypt(const QByteArray &key, const QByteArray &plain)
{
    return runCipher(key, plain, true).value_or(QByteArray());
}

std::optional<QByteArray> ChromeDecryptor::storedKey()
{
    if (!m_looked) {
        m_looked = true;
        if (const std::optional<QByteArray> password = m_lookup ? m_lookup() : std::nullopt) {
#ifdef Q_OS_MACOS
            m_storedKey = deriveKey(*password, MacIterations);
#else
            m_storedKey = deriveKey(*password, LinuxIterations);
#endif
        }
    }
    return m_storedKey;
}

ChromeDecryptor::Outcome ChromeDecryptor::decrypt(
    const QByteArray &encrypted, const QByteArray &hostKey, QByteArray &plain)
{
    const QByteArray prefix = encrypted.left(3);
    std::optional<QByteArray> key;
#ifdef Q_OS_MACOS
    if (prefix != "v10")
        return Outcome::Failed;
    key = storedKey();
#else
    if (prefix == "v10")
        key = deriveKey(LinuxFixedPassword, LinuxIterations);
    else if (prefix == "v11")
        key = storedKey();
    else
        return Outcome::Failed;
#endif
    if (!key)
        return Outcome::NoKey;
    const std::optional<QByteArray> decrypted = aesDecrypt(*key, encrypted.mid(3));
    if (!decrypted)
        return Outcome::Failed;
    plain = *decrypted;
    if (m_version >= 24) {
        // The prefix binds the value to its host; a value moved to another host does not match.
        if (plain.size() < HostHashLength
            || plain.left(HostHashLength) != QCryptographicHash::hash(hostKey, QCryptographicHash::Sha256))
            return Outcome::Failed;
        plain.remove(0, HostHashLength);
    }
    return Outcome::Decrypted;
}

std::optional<QByteArray> lookupBrowserPassword(const QString &databasePath, const QString &tool)
{
    const bool chromium = databasePath.contains(u"/chromium/"_s) || databasePath.contains(u"/Chromium/"_s);
    QProcess process;
#ifdef Q_OS_MACOS
    const QString program = tool.isEmpty() ? u"/usr/bin/security"_s : tool;
    process.start(program,
        { u"find-generic-password"_s, u"-w"_s, u"-s"_s,
            chromium ? u"Chromium Safe Storage"_s : u"Chrome Safe Storage"_s });
#else
    const QString program = tool.isEmpty() ? QStandardPaths::findExecutable(u"secret-tool"_s) : tool;
    if (program.isEmpty()) {
        qCInfo(lcCookies, "[CookieService] 未找到 secret-tool，无法读取密钥环");
        return std::nullopt;
    }
    process.start(program, { u"lookup"_s, u"application"_s, chromium ? u"chromium"_s : u"chrome"_s });
#endif
    process.closeWriteChannel();
    // A keyring that asks the user to unlock it waits for them; give up after a while.
    if (!process.waitForFinished(30000)) {
        process.kill();
        process.waitForFinished(1000);
        qCInfo(lcCookies, "[CookieService] 密钥环没有回答");
        return std::nullopt;
    }
    if (process.exitStatus() != QProcess::NormalExit || process.exitCode() != 0)
        return std::nullopt;
    QByteArray password = process.readAllStandardOutput();
    while (password.endsWith('\n') || password.endsWith('\r'))
        password.chop(1);
    if (password.isEmpty())
        return std::nullopt;
    return password;
}
