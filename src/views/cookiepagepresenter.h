#pragma once

#include <QObject>
#include <QString>
#include <QVariantList>
#include <QtQml/qqmlregistration.h>

class AppState;
class CookieService;

// What the "Cookie 管理" page shows: the browsers whose cookies downloads can use, the hosts of
// the cookie file with their expiry, and the outcome of the last Chrome export in words.
class CookiePagePresenter : public QObject
{
    Q_OBJECT
    QML_ELEMENT
    // [{name, label}]: the installed browsers yt-dlp reads, and the chosen one even when missing.
    Q_PROPERTY(QVariantList browsers READ browsers NOTIFY browsersChanged)
    // [{domain, detail, expired}] of AppState's cookie file, sorted by host.
    Q_PROPERTY(QVariantList domains READ domains NOTIFY domainsChanged)
    Q_PROPERTY(QString fileProblem READ fileProblem NOTIFY domainsChanged)
    Q_PROPERTY(int expiredCount READ expiredCount NOTIFY domainsChanged)
    Q_PROPERTY(QString exportSummary READ exportSummary NOTIFY exportSummaryChanged)

public:
    explicit CookiePagePresenter(QObject *parent = nullptr);

    QVariantList browsers() const { return m_browsers; }
    QVariantList domains() const { return m_domains; }
    QString fileProblem() const { return m_fileProblem; }
    int expiredCount() const { return m_expiredCount; }
    QString exportSummary() const { return m_exportSummary; }

    // Looks for the browsers and reads the cookie file again.
    Q_INVOKABLE void refresh();
    // Makes the last exported file the cookie file of downloads, and turns cookies on.
    Q_INVOKABLE void useExportedFile();

Q_SIGNALS:
    void browsersChanged();
    void domainsChanged();
    void exportSummaryChanged();

private:
    void readBrowsers();
    void readCookieFile();
    void describeExport(bool ok);

    AppState *m_state;
    CookieService *m_service;
    QString m_home;
    QVariantList m_browsers;
    QVariantList m_domains;
    QString m_fileProblem;
    int m_expiredCount = 0;
    QString m_exportSummary;
};
