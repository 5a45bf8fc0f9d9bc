#include "views/presenters/cookiepagepresenter.h"

#include "cookies/chromecookies.h"
#include "cookies/cookiefile.h"
#include "cookies/cookieservice.h"
#include "cookies/cookiewords.h"
#include "engine/downloadmanager.h"
#include "engine/tooltext.h"
#include "model/appstate.h"

#include <QDir>
#include <QFileInfo>

using namespace Qt::StringLiterals;

namespace {

QString dateText(const QDateTime &when)
{
    return when.toLocalTime().toString(u"yyyy-MM-dd HH:mm"_s);
}

QString describeHost(const CookieDomainSummary &host)
{
    const QString count = u"%1 个 Cookie"_s.arg(host.count);
    if (host.expired())
        return count + u"，已于 "_s + dateText(host.latestExpiry) + u" 过期"_s;
    QString text = count;
    if (host.latestExpiry.isValid())
        text += u"，有效期至 "_s + dateText(host.latestExpiry);
    else
        text += u"，会话 Cookie"_s;
    if (host.expiredCount > 0)
        text += u"（其中 %1 个已过期）"_s.arg(host.expiredCount);
    return text;
}

} // namespace

CookiePagePresenter::CookiePagePresenter(QObject *parent)
    : QObject(parent)
    , m_state(AppState::instance())
    , m_service(CookieService::instance())
    , m_home(QDir::homePath())
    , m_check(new CookieCheck(DownloadManager::instance()->tools(), this))
    , m_checkSite(signInSites().constFirst().key)
{
    connect(m_state, &AppState::cookiePathChanged, this, &CookiePagePresenter::readCookieFile);
    connect(m_state, &AppState::cookieSourceChanged, this, &CookiePagePresenter::readBrowsers);
    // A check speaks of the source it read; another source makes it stale.
    connect(m_state, &AppState::cookiePathChanged, this, &CookiePagePresenter::forgetCheck);
    connect(m_state, &AppState::cookieSourceChanged, this, &CookiePagePresenter::forgetCheck);
    connect(m_service, &CookieService::exportFinished, this, &CookiePagePresenter::describeExport);
    refresh();
}

void CookiePagePresenter::refresh()
{
    readBrowsers();
    readCookieFile();
}

void CookiePagePresenter::useExportedFile()
{
    const QString path = m_service->extractedCookiesPath();
    if (path.isEmpty())
        return;
    m_state->setCookiePath(path);
    m_state->setCookieSource(QLatin1String(CookieSourceNames::File));
    m_state->setUseCookies(true);
    // The same path again still means a new export: read it afresh.
    readCookieFile();
}

void CookiePagePresenter::readBrowsers()
{
    QVariantList browsers;
    const QString chosen = m_state->cookieSource();
    bool chosenListed
        = chosen == QLatin1String(CookieSourceNames::None) || chosen == QLatin1String(CookieSourceNames::File);
    const auto entry = [](const QString &name, const QString &label, bool usable) {
        return QVariantMap { { u"name"_s, name }, { u"label"_s, label }, { u"usable"_s, usable } };
    };
    for (const CookieBrowser &browser : installedCookieBrowsers(m_home)) {
        browsers.append(entry(browser.name, browser.label, true));
        chosenListed = chosenListed || browser.name == chosen;
    }
    // Installed but never used: there is nothing to read yet, and the list says why it cannot be
    // chosen rather than leaving the browser out.
    QStringList cookieless;
    for (const CookieBrowser &browser : cookielessBrowsers(m_home)) {
        browsers.append(entry(browser.name, browser.label + u"（没有 Cookie）"_s, false));
        cookieless << browser.label;
        chosenListed = chosenListed || browser.name == chosen;
    }
    // A browser chosen before stays visible, said to be missing, so the choice is not silently lost.
    if (!chosenListed)
        browsers.prepend(entry(chosen, cookieBrowserLabel(chosen) + u"（未找到）"_s, false));
    if (browsers.isEmpty()) {
        const QString fallback = QString::fromLatin1(CookieSourceNames::DefaultBrowser);
        browsers.append(entry(fallback, cookieBrowserLabel(fallback) + u"（未找到）"_s, false));
    }
    const QString note = cookieless.isEmpty()
        ? QString()
        : u"%1 已安装，但还没有 Cookie：先在浏览器中登录要下载的网站，再回来选择。"_s.arg(cookieless.join(u"、"_s));
    if (browsers != m_browsers || note != m_browserNote) {
        m_browsers = browsers;
        m_browserNote = note;
        Q_EMIT browsersChanged();
    }
}

void CookiePagePresenter::readCookieFile()
{
    m_domains.clear();
    m_fileProblem.clear();
    m_expiredCount = 0;
    const QString path = expandHome(m_state->cookiePath().trimmed(), m_home);
    if (!path.isEmpty()) {
        QString error;
        const QList<CookieDomainSummary> hosts = summarizeCookieFile(path, QDateTime::currentDateTime(), &error);
        if (!QFileInfo(path).isFile())
            m_fileProblem = u"找不到这个文件"_s;
        else if (hosts.isEmpty())
            m_fileProblem = u"读不出 Cookie："_s + error;
        for (const CookieDomainSummary &host : hosts) {
            m_domains.append(QVariantMap {
                { u"domain"_s, host.domain }, { u"detail"_s, describeHost(host) }, { u"expired"_s, host.expired() } });
            if (host.expired())
                ++m_expiredCount;
        }
    }
    Q_EMIT domainsChanged();
}

void CookiePagePresenter::describeExport(bool ok)
{
    QString summary;
    if (ok) {
        const QStringList domains = m_service->lastDomains();
        summary = u"已导出 %1 个 Cookie，来自 %2 个网站"_s.arg(m_service->lastCookieCount()).arg(domains.size());
        if (m_service->lastUndecryptable() > 0)
            summary += u"；%1 个加密的 Cookie 无法解密，已跳过"_s.arg(m_service->lastUndecryptable());
        constexpr int Shown = 12;
        summary += u"\n"_s + domains.mid(0, Shown).join(u"、"_s);
        if (domains.size() > Shown)
            summary += u" 等"_s;
    }
    if (summary != m_exportSummary) {
        m_exportSummary = summary;
        Q_EMIT exportSummaryChanged();
    }
}

QVariantList CookiePagePresenter::checkSites() const
{
    QVariantList sites;
    for (const SignInSite &site : signInSites())
        sites.append(QVariantMap { { u"key"_s, site.key }, { u"label"_s, site.label } });
    return sites;
}

void CookiePagePresenter::setCheckSite(const QString &key)
{
    const QString known = signInSite(key).key;
    if (known == m_checkSite)
        return;
    m_checkSite = known;
    Q_EMIT checkSiteChanged();
    describeCheck();
}

void CookiePagePresenter::checkCookies()
{
    if (m_checking)
        return;
    m_checking = true;
    m_lastCheck.reset();
    describeCheck();
    // The answer may come at once, before start() returns (nothing chosen, no such file).
    const bool started = m_check->start(
        m_state->cookieSource(), m_state->cookiePath(), m_home, [this](const CookieCheckResult &result) {
            m_checking = false;
            m_lastCheck = result;
            describeCheck();
        });
    if (!started) {
        m_checking = false;
        describeCheck();
    }
}

void CookiePagePresenter::forgetCheck()
{
    if (m_checking || !m_lastCheck)
        return;
    m_lastCheck.reset();
    describeCheck();
}

void CookiePagePresenter::describeCheck()
{
    m_checkSummary = m_lastCheck
        ? describeCookieCheck(*m_lastCheck, signInSite(m_checkSite), QDateTime::currentDateTime())
        : QString();
    Q_EMIT checkChanged();
}
