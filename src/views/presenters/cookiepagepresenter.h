#pragma once

#include "cookies/cookiecheck.h"

#include <QObject>
#include <QString>
#include <QVariantList>
#include <QtQml/qqmlregistration.h>

#include <optional>

class AppState;
class CookieService;

// What the "Cookie 管理" page shows: the browsers whose cookies downloads can use, the hosts of
// the cookie file with their expiry, the outcome of the last Chrome export in words, and what
// yt-dlp read when asked to check the chosen source.
class CookiePagePresenter : public QObject
{
    Q_OBJECT
    QML_ELEMENT
    // [{name, label, usable}]: the browsers yt-dlp reads that have cookies here (usable), those
    // installed without cookies yet, and the chosen one even when missing.
    Q_PROPERTY(QVariantList browsers READ browsers NOTIFY browsersChanged)
    // Why an installed browser cannot be chosen yet; empty when every one can.
    Q_PROPERTY(QString browserNote READ browserNote NOTIFY browsersChanged)
    // [{domain, detail, expired}] of AppState's cookie file, sorted by host.
    Q_PROPERTY(QVariantList domains READ domains NOTIFY domainsChanged)
    Q_PROPERTY(QString fileProblem READ fileProblem NOTIFY domainsChanged)
    Q_PROPERTY(int expiredCount READ expiredCount NOTIFY domainsChanged)
    Q_PROPERTY(QString exportSummary READ exportSummary NOTIFY exportSummaryChanged)
    // [{key, label}] of the sites whose sign-in a check looks for; checkSite is one of the keys.
    Q_PROPERTY(QVariantList checkSites READ checkSites NOTIFY checkSitesChanged)
    Q_PROPERTY(QString checkSite READ checkSite WRITE setCheckSite NOTIFY checkSiteChanged)
    Q_PROPERTY(bool checking READ isChecking NOTIFY checkChanged)
    // The last check in words, empty before one or after the source changed; checkFailed when
    // it could not read the cookies.
    Q_PROPERTY(QString checkSummary READ checkSummary NOTIFY checkChanged)
    Q_PROPERTY(bool checkFailed READ checkFailed NOTIFY checkChanged)

public:
    explicit CookiePagePresenter(QObject *parent = nullptr);

    QVariantList browsers() const { return m_browsers; }
    QString browserNote() const { return m_browserNote; }
    QVariantList domains() const { return m_domains; }
    QString fileProblem() const { return m_fileProblem; }
    int expiredCount() const { return m_expiredCount; }
    QString exportSummary() const { return m_exportSummary; }
    QVariantList checkSites() const;
    QString checkSite() const { return m_checkSite; }
    void setCheckSite(const QString &key);
    bool isChecking() const { return m_checking; }
    QString checkSummary() const { return m_checkSummary; }
    bool checkFailed() const { return m_lastCheck && m_lastCheck->problem != CookieCheckProblem::None; }

    // Looks for the browsers and reads the cookie file again.
    Q_INVOKABLE void refresh();
    // Makes the last exported file the cookie file of downloads, and turns cookies on.
    Q_INVOKABLE void useExportedFile();
    // Has yt-dlp load the chosen cookie source and reports what it read.
    Q_INVOKABLE void checkCookies();

Q_SIGNALS:
    void browsersChanged();
    void domainsChanged();
    void exportSummaryChanged();
    void checkSitesChanged();
    void checkSiteChanged();
    void checkChanged();

private:
    void readBrowsers();
    void readCookieFile();
    void describeExport(bool ok);
    void forgetCheck();
    void describeCheck();

    AppState *m_state;
    CookieService *m_service;
    QString m_home;
    QVariantList m_browsers;
    QString m_browserNote;
    QVariantList m_domains;
    QString m_fileProblem;
    int m_expiredCount = 0;
    QString m_exportSummary;
    CookieCheck *m_check;
    QString m_checkSite;
    bool m_checking = false;
    std::optional<CookieCheckResult> m_lastCheck;
    QString m_checkSummary;
};
