#include "views/presenters/cookiepagepresenter.h"

#include "cookies/chromecookies.h"
#include "cookies/cookiefile.h"
#include "cookies/cookieservice.h"
#include "cookies/cookiewords.h"
#include "engine/downloadmanager.h"
#include "engine/tooltext.h"
#include "model/appstate.h"
#include "model/languagechange.h"

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
    const int count = int(host.count);
    if (host.expired())
        return CookiePagePresenter::tr("%n 个 Cookie，已于 %1 过期", nullptr, count).arg(dateText(host.latestExpiry));
    QString text = host.latestExpiry.isValid()
        ? CookiePagePresenter::tr("%n 个 Cookie，有效期至 %1", nullptr, count).arg(dateText(host.latestExpiry))
        : CookiePagePresenter::tr("%n 个 Cookie，会话 Cookie", nullptr, count);
    if (host.expiredCount > 0)
        text += CookiePagePresenter::tr("（其中 %n 个已过期）", nullptr, int(host.expiredCount));
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
    // Every text of the page is made here: made again in the new language.
    onLanguageChange(this, [this] {
        refresh();
        Q_EMIT checkSitesChanged();
        describeCheck();
        if (!m_exportSummary.isEmpty())
            describeExport(true);
    });
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
        browsers.append(entry(browser.name, tr("%1（没有 Cookie）").arg(browser.label), false));
        cookieless << browser.label;
        chosenListed = chosenListed || browser.name == chosen;
    }
    // A browser chosen before stays visible, said to be missing, so the choice is not silently lost.
    if (!chosenListed)
        browsers.prepend(entry(chosen, tr("%1（未找到）").arg(cookieBrowserLabel(chosen)), false));
    if (browsers.isEmpty()) {
        const QString fallback = QString::fromLatin1(CookieSourceNames::DefaultBrowser);
        browsers.append(entry(fallback, tr("%1（未找到）").arg(cookieBrowserLabel(fallback)), false));
    }
    //: Between the items of a list, as "、" is in Chinese: "Chrome、Firefox"
    const QString separator = tr("、");
    const QString note = cookieless.isEmpty()
        ? QString()
        : tr("%1 已安装，但还没有 Cookie：先在浏览器中登录要下载的网站，再回来选择。").arg(cookieless.join(separator));
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
            m_fileProblem = tr("找不到这个文件");
        else if (hosts.isEmpty())
            m_fileProblem = tr("读不出 Cookie：%1").arg(error);
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
        //: %1 is "%n 个 Cookie", %2 is "%n 个网站"
        summary = tr("已导出 %1，来自 %2")
                      .arg(tr("%n 个 Cookie", nullptr, int(m_service->lastCookieCount())),
                          tr("%n 个网站", nullptr, int(domains.size())));
        if (m_service->lastUndecryptable() > 0)
            summary += tr("；%n 个加密的 Cookie 无法解密，已跳过", nullptr, int(m_service->lastUndecryptable()));
        constexpr int Shown = 12;
        //: Between the items of a list, as "、" is in Chinese: "youtube.com、bilibili.com"
        const QString separator = tr("、");
        const QString shown = domains.mid(0, Shown).join(separator);
        //: After a list that goes on: "a、b、c 等"
        summary += u"\n"_s + (domains.size() > Shown ? tr("%1 等").arg(shown) : shown);
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
