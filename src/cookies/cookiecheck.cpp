#include "cookies/cookiecheck.h"

#include "cookies/chromecookies.h"
#include "cookies/cookiewords.h"
#include "engine/shellrunner.h"
#include "engine/tooldiscovery.h"
#include "engine/tooltext.h"
#include "model/logcategories.h"

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QRegularExpression>
#include <QTemporaryDir>

using namespace Qt::StringLiterals;

QList<SignInSite> signInSites()
{
    return {
        { u"youtube"_s, u"YouTube"_s, u"youtube.com"_s,
            { u"SID"_s, u"__Secure-1PSID"_s, u"__Secure-3PSID"_s, u"LOGIN_INFO"_s } },
        { u"bilibili"_s, QCoreApplication::translate("CookieCheck", "哔哩哔哩"), u"bilibili.com"_s,
            { u"SESSDATA"_s, u"bili_jct"_s } },
    };
}

SignInSite signInSite(const QString &key)
{
    const QList<SignInSite> sites = signInSites();
    for (const SignInSite &site : sites) {
        if (site.key == key)
            return site;
    }
    return sites.constFirst();
}

namespace {

struct ProblemRule
{
    QRegularExpression pattern;
    CookieCheckProblem problem;
};

// Earlier rules win: a locked database also fails to be read.
const QList<ProblemRule> &problemRules()
{
    const auto rule = [](const char16_t *pattern, CookieCheckProblem problem) {
        return ProblemRule { QRegularExpression(QString::fromUtf16(pattern), QRegularExpression::CaseInsensitiveOption),
            problem };
    };
    static const QList<ProblemRule> rules {
        rule(u"database is locked|could not copy \\S+ cookie database", CookieCheckProblem::DatabaseLocked),
        rule(u"could not find \\S+ cookies database|could not find safari cookies|unsupported browser",
            CookieCheckProblem::BrowserNotFound),
        rule(u"does not look like a Netscape format|invalid Netscape format|Netscape formatted|"
             u"^ERROR: invalid (length|expires)",
            CookieCheckProblem::NotNetscape),
        rule(u"No such file or directory", CookieCheckProblem::FileMissing),
    };
    return rules;
}

const QRegularExpression &keyringPattern()
{
    static const QRegularExpression pattern(u"keyring|secretstorage|kwallet|keychain|find-generic-password|"
                                            u"failed to decrypt|cannot decrypt|could not find local state|"
                                            u"encrypted key"_s,
        QRegularExpression::CaseInsensitiveOption);
    return pattern;
}

bool isErrorLine(const QString &line)
{
    // "yt-dlp: error: You must provide at least one URL." is how a run without a link ends.
    return line.startsWith(u"ERROR:") || line.contains(u"Traceback") || line.contains(u"Error: ");
}

QString dateText(const QDateTime &when)
{
    return when.toLocalTime().toString(u"yyyy-MM-dd HH:mm"_s);
}

bool onDomain(const QString &cookieDomain, const QString &domain)
{
    const QString host = cookieDomain.startsWith(u'.') ? cookieDomain.mid(1) : cookieDomain;
    return host.compare(domain, Qt::CaseInsensitive) == 0 || host.endsWith(u'.' + domain, Qt::CaseInsensitive);
}

QString signInLine(const SignInFinding &found, const SignInSite &site)
{
    if (found.names.isEmpty())
        return QCoreApplication::translate(
            "CookieCheck", "其中没有 %1 的登录 Cookie：请先在浏览器中登录 %1，再检查一次。")
            .arg(site.label);
    const QString names = found.names.join(QCoreApplication::translate("CookieCheck", "、"));
    if (found.expired)
        return QCoreApplication::translate(
            "CookieCheck", "%1 的登录 Cookie（%2）已于 %3 过期：请在浏览器中重新登录 %1。")
            .arg(site.label, names, dateText(found.expires));
    if (!found.expires.isValid())
        return QCoreApplication::translate(
            "CookieCheck", "找到 %1 的登录 Cookie（%2），是会话 Cookie，关闭浏览器后失效。")
            .arg(site.label, names);
    return QCoreApplication::translate("CookieCheck", "找到 %1 的登录 Cookie（%2），有效期至 %3。")
        .arg(site.label, names, dateText(found.expires));
}

} // namespace

CookieLoadReport parseCookieLoadOutput(const QStringList &lines)
{
    static const QRegularExpression extracted(
        u"Extracted (\\d+) cookies from \\S+(?: \\((\\d+) could not be decrypted\\))?"_s);
    CookieLoadReport report;
    QString lastError;
    QString keyringLine;
    for (const QString &line : lines) {
        if (const QRegularExpressionMatch match = extracted.match(line); match.hasMatch()) {
            report.extracted = match.captured(1).toInt();
            report.undecryptable = match.captured(2).toInt();
        }
        if (keyringPattern().match(line).hasMatch()) {
            if (keyringLine.isEmpty())
                keyringLine = line.trimmed();
        } else if (isErrorLine(line)) {
            lastError = line.trimmed();
        }
    }
    report.keyringTrouble = !keyringLine.isEmpty();
    // The last line that says it: an old yt-dlp's traceback quotes its source before the message.
    for (const ProblemRule &rule : problemRules()) {
        for (auto line = lines.crbegin(); line != lines.crend(); ++line) {
            if (rule.pattern.match(*line).hasMatch()) {
                report.problem = rule.problem;
                report.problemLine = line->trimmed();
                return report;
            }
        }
    }
    if (report.keyringTrouble && report.extracted == 0 && report.undecryptable > 0) {
        report.problem = CookieCheckProblem::KeyringRefused;
        report.problemLine = keyringLine;
    } else if (!lastError.isEmpty()) {
        report.problem = CookieCheckProblem::Unreadable;
        report.problemLine = lastError;
    }
    return report;
}

SignInFinding findSignIn(const QList<CookieFileEntry> &cookies, const SignInSite &site, const QDateTime &now)
{
    SignInFinding found;
    bool session = false;
    QDateTime earliestLive;
    QDateTime latestGone;
    for (const QString &name : site.cookieNames) {
        for (const CookieFileEntry &cookie : cookies) {
            if (cookie.name != name || !onDomain(cookie.domain, site.domain))
                continue;
            if (!found.names.contains(name))
                found.names.append(name);
            const QDateTime when = QDateTime::fromSecsSinceEpoch(cookie.expiry);
            if (cookie.expiry == 0)
                session = true;
            else if (when > now && (!earliestLive.isValid() || when < earliestLive))
                earliestLive = when; // the sign-in lasts until its first cookie runs out
            else if (when <= now && (!latestGone.isValid() || when > latestGone))
                latestGone = when;
        }
    }
    found.expired = !session && !earliestLive.isValid() && latestGone.isValid();
    found.expires = found.expired ? latestGone : earliestLive;
    return found;
}

QString describeCookieCheck(const CookieCheckResult &result, const SignInSite &site, const QDateTime &now)
{
    const QString detail = result.detail.isEmpty() ? QString() : u"\n"_s + result.detail;
    switch (result.problem) {
    case CookieCheckProblem::NoSource:
        return QCoreApplication::translate("CookieCheck", "请先选择浏览器或 Cookie 文件。");
    case CookieCheckProblem::YtDlpMissing:
        return QCoreApplication::translate(
                   "CookieCheck", "找不到 yt-dlp，无法检查 Cookie：请安装 yt-dlp，或在“设置”中指定它的路径。")
            + detail;
    case CookieCheckProblem::NotRun:
        return QCoreApplication::translate("CookieCheck", "检查没有完成：%1").arg(result.detail);
    case CookieCheckProblem::BrowserNotFound:
        return QCoreApplication::translate("CookieCheck",
                   "找不到 %1 的 Cookie 数据库：这台电脑上可能没有安装它，或从未用它登录过网站。请换一个浏览器，或使用 Cookie 文件。")
                   .arg(result.sourceLabel)
            + detail;
    case CookieCheckProblem::DatabaseLocked:
        return QCoreApplication::translate(
                   "CookieCheck", "%1 的 Cookie 数据库被锁定：浏览器正在使用它。请关闭 %1 后再检查。")
                   .arg(result.sourceLabel)
            + detail;
    case CookieCheckProblem::KeyringRefused:
        return QCoreApplication::translate("CookieCheck",
                   "%1 的 Cookie 无法解密：系统钥匙串没有提供密钥（钥匙串被拒绝、已锁定或不可用）。请解锁钥匙串并允许访问，或改用 Cookie 文件。")
                   .arg(result.sourceLabel)
            + detail;
    case CookieCheckProblem::NotNetscape:
        return QCoreApplication::translate("CookieCheck",
                   "Cookie 文件不是 Netscape 格式（cookies.txt），yt-dlp 无法使用：请重新导出，或选择另一个文件。")
            + detail;
    case CookieCheckProblem::FileMissing:
        return QCoreApplication::translate("CookieCheck", "找不到这个 Cookie 文件：请重新选择。") + detail;
    case CookieCheckProblem::Unreadable:
        return QCoreApplication::translate("CookieCheck", "yt-dlp 读不出 %1 的 Cookie。").arg(result.sourceLabel)
            + detail;
    case CookieCheckProblem::None:
        break;
    }
    QString text = QCoreApplication::translate(
        "CookieCheck", "yt-dlp 从 %1 读到 %n 个 Cookie。", nullptr, int(result.cookies.size()))
                       .arg(result.sourceLabel);
    if (result.undecryptable > 0)
        text += QCoreApplication::translate("CookieCheck", "另有 %n 个无法解密，已跳过（系统钥匙串没有提供密钥）。",
            nullptr, int(result.undecryptable));
    else if (result.keyringTrouble)
        text += QCoreApplication::translate("CookieCheck", "读取时系统钥匙串不可用，部分 Cookie 可能没有读到。");
    return text + u'\n' + signInLine(findSignIn(result.cookies, site, now), site);
}

CookieCheck::CookieCheck(ToolDiscovery *tools, QObject *parent)
    : QObject(parent)
    , m_tools(tools)
{
}

bool CookieCheck::start(const QString &source, const QString &cookieFile, const QString &home,
    std::function<void(const CookieCheckResult &)> done)
{
    if (m_running || !m_tools)
        return false;
    CookieCheckResult early;
    const bool fromFile = source == QLatin1String(CookieSourceNames::File);
    early.sourceLabel
        = fromFile ? QCoreApplication::translate("CookieCheck", "Cookie 文件") : cookieBrowserLabel(source);
    const QString path = expandHome(cookieFile.trimmed(), home);
    if (source == QLatin1String(CookieSourceNames::None) || source.isEmpty() || (fromFile && path.isEmpty())) {
        early.problem = CookieCheckProblem::NoSource;
    } else if (fromFile && !QFileInfo(path).isFile()) {
        early.problem = CookieCheckProblem::FileMissing;
        early.detail = path;
    }
    // A private folder (0700) holds the file yt-dlp writes, so no one else reads the cookies.
    auto folder = std::make_shared<QTemporaryDir>(QDir::tempPath() + u"/quillbox-cookiecheck-XXXXXX"_s);
    if (early.problem == CookieCheckProblem::None && !folder->isValid()) {
        early.problem = CookieCheckProblem::NotRun;
        early.detail = QCoreApplication::translate("CookieCheck", "无法创建临时文件夹：%1").arg(folder->errorString());
    }
    const QString out = folder->filePath(u"cookies.txt"_s);
    // yt-dlp rewrites the file it loads with --cookies, so it gets a copy of the user's.
    if (early.problem == CookieCheckProblem::None && fromFile) {
        QFile original(path);
        QFile copy(out);
        if (!original.open(QIODevice::ReadOnly)
            || !copy.open(QIODevice::WriteOnly | QIODevice::NewOnly, QFile::ReadOwner | QFile::WriteOwner)
            || copy.write(original.readAll()) < 0) {
            early.problem = CookieCheckProblem::Unreadable;
            early.detail = original.isOpen() ? copy.errorString() : original.errorString();
        }
    }
    if (early.problem != CookieCheckProblem::None) {
        done(early);
        return true;
    }

    m_running = true;
    m_tools->whenYtDlpPathKnown(
        [self = QPointer<CookieCheck>(this), this, source, fromFile, folder, out, early, done = std::move(done)] {
            if (!self || !m_tools)
                return;
            const QString ytDlp = m_tools->ytDlpPath();
            // No link: yt-dlp stops with "You must provide at least one URL" before any request, and
            // on the way out loads the cookies and saves them to the --cookies file.
            ShellCommand command(ytDlp, { u"--ignore-config"_s, u"--no-update"_s });
            if (!fromFile)
                command << u"--cookies-from-browser"_s << source;
            command << u"--cookies"_s << out;
            qCInfo(lcCookies, "[CookieCheck] %ls", qUtf16Printable(command.text()));
            runShellCommand(
                command, PipeMode::Split, this,
                [this, folder, out, ytDlp, early, done](const ShellResult &run) {
                    m_running = false;
                    CookieCheckResult result = early;
                    if (!run.launched) {
                        result.problem = CookieCheckProblem::NotRun;
                        result.detail = run.errorString;
                    } else if (run.exitCode == 127 && !run.crashed) {
                        result.problem = CookieCheckProblem::YtDlpMissing;
                        result.detail = ytDlp;
                    } else if (run.crashed) {
                        result.problem = CookieCheckProblem::NotRun;
                        result.detail = QCoreApplication::translate("CookieCheck", "yt-dlp 异常退出");
                    } else {
                        const QStringList lines = QString(run.standardOutput + u'\n' + run.standardError).split(u'\n');
                        const CookieLoadReport report = parseCookieLoadOutput(lines);
                        result.problem = report.problem;
                        result.detail = report.problemLine;
                        result.undecryptable = report.undecryptable;
                        result.keyringTrouble = report.keyringTrouble;
                        QFile written(out);
                        if (result.problem == CookieCheckProblem::None) {
                            if (written.open(QIODevice::ReadOnly)) {
                                result.cookies = parseCookieFile(written.readAll());
                            } else {
                                result.problem = CookieCheckProblem::Unreadable;
                                result.detail = lines.filter(QRegularExpression(u"\\S"_s)).value(0, run.errorString);
                            }
                        }
                        if (result.problem != CookieCheckProblem::None)
                            qCInfo(lcCookies, "[CookieCheck] %ls", qUtf16Printable(run.standardError.trimmed()));
                    }
                    folder->remove();
                    done(result);
                },
                TimeoutMs);
        });
    return true;
}
