#pragma once

#include <QObject>
#include <QString>
#include <QStringList>

#include <functional>

// Why an export failed. ExtractionFailed, ChromeNotFound and NoCookiesFound are the service's
// own; Platform carries the text of a failure of the system (a file that cannot be written, a
// program that cannot start).
class CookieError
{
public:
    enum class Kind { ExtractionFailed, ChromeNotFound, NoCookiesFound, Platform };

    static CookieError extractionFailed(const QString &message = QString());
    static CookieError chromeNotFound();
    static CookieError noCookiesFound();
    static CookieError platform(const QString &message);

    Kind kind() const { return m_kind; }
    QString localizedDescription() const;

private:
    CookieError(Kind kind, const QString &message);

    Kind m_kind;
    QString m_message;
};

// What one export gave: the file, or the error.
struct CookieExportResult
{
    bool ok = false;
    QString path;
    CookieError error = CookieError::extractionFailed();
    int cookieCount = 0; // cookie lines in the file
    QStringList domains; // their hosts, each once, sorted
    int undecryptable = 0; // encrypted values left out because no key was at hand or they did not decrypt
};

// Where an export reads and writes and which programs it runs. standard() is the real machine.
struct CookieServiceSetup
{
    QString home;
    QString tempDir;
    QString python = QStringLiteral("/usr/bin/python3");
    QString bash = QStringLiteral("/bin/bash");
    QString keyringTool; // empty: secret-tool (Linux) or security (macOS)

    static CookieServiceSetup standard();
};

// Exports Chrome's cookies into a Netscape cookie file in the temporary folder, for yt-dlp's
// --cookies. The database is read by a generated Python script, or failing that by sqlite3 from
// a generated bash script; values Chrome keeps encrypted are decrypted here. The work runs on a
// pool thread; the published state changes on this object's thread only.
class CookieService : public QObject
{
    Q_OBJECT
    Q_PROPERTY(bool isExtracting READ isExtracting NOTIFY isExtractingChanged)
    Q_PROPERTY(QString lastError READ lastError NOTIFY lastErrorChanged)
    Q_PROPERTY(QString extractedCookiesPath READ extractedCookiesPath NOTIFY extractedCookiesPathChanged)
    Q_PROPERTY(int lastCookieCount READ lastCookieCount NOTIFY exportFinished)
    Q_PROPERTY(QStringList lastDomains READ lastDomains NOTIFY exportFinished)
    Q_PROPERTY(int lastUndecryptable READ lastUndecryptable NOTIFY exportFinished)
    Q_PROPERTY(QString chromeCookiesHelpUrl READ chromeCookiesHelpUrl CONSTANT)

public:
    explicit CookieService(CookieServiceSetup setup, QObject *parent = nullptr);
    ~CookieService() override;

    static CookieService *instance();

    bool isExtracting() const { return m_isExtracting; }
    QString lastError() const { return m_lastError; }
    QString extractedCookiesPath() const { return m_extractedCookiesPath; }
    int lastCookieCount() const { return m_last.cookieCount; }
    QStringList lastDomains() const { return m_last.domains; }
    int lastUndecryptable() const { return m_last.undecryptable; }
    QString chromeCookiesHelpUrl() const;

    // Starts an export; `completion` runs on this object's thread once it has ended.
    void extractCookiesFromChrome(std::function<void(const CookieExportResult &)> completion);
    // The same for views: the outcome comes as exportFinished().
    Q_INVOKABLE void exportChromeCookies();

    // The whole export, blocking; what extractCookiesFromChrome runs on a pool thread.
    static CookieExportResult runExport(const CookieServiceSetup &setup);
    // The database an export reads: the first candidate that exists, else the first candidate.
    static QString getChromeCookiesPath(const QString &home);
    // The fallback route on its own, blocking.
    static CookieExportResult extractCookiesUsingSQLite(
        const CookieServiceSetup &setup, const QString &chromePath, const QString &outputPath);

    // The file names an export uses in the temporary folder.
    static constexpr auto PythonScriptName = "extract_cookies.py";

Q_SIGNALS:
    void isExtractingChanged();
    void lastErrorChanged();
    void extractedCookiesPathChanged();
    void exportFinished(bool ok, const QString &pathOrError);

private:
    void finish(const CookieExportResult &result);

    CookieServiceSetup m_setup;
    bool m_isExtracting = false;
    QString m_lastError;
    QString m_extractedCookiesPath;
    CookieExportResult m_last;
};
