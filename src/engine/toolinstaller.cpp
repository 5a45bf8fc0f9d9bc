#include "engine/toolinstaller.h"

#include "engine/privatefiles.h"
#include "engine/zipextract.h"
#include "model/logcategories.h"

#include <QCoreApplication>
#include <QCryptographicHash>
#include <QDir>
#include <QFile>
#include <QFutureWatcher>
#include <QJsonDocument>
#include <QJsonObject>
#include <QNetworkAccessManager>
#include <QNetworkReply>
#include <QPointer>
#include <QRegularExpression>
#include <QSaveFile>
#include <QStandardPaths>
#include <QTemporaryFile>
#include <QtConcurrent/QtConcurrentRun>

#include <atomic>

using namespace Qt::StringLiterals;

namespace {
// No byte for this long ends a request (a stalled connection, a server that never answers).
constexpr int TransferTimeoutMs = 30000;
constexpr int MaxRedirects = 10;
// The release JSON and checksum files are small; anything bigger is not what was asked for.
constexpr qint64 MaxSmallBody = 8 * 1024 * 1024;

constexpr QFileDevice::Permissions Executable = QFileDevice::ReadOwner | QFileDevice::WriteOwner | QFileDevice::ExeOwner
    | QFileDevice::ReadUser | QFileDevice::WriteUser | QFileDevice::ExeUser | QFileDevice::ReadGroup
    | QFileDevice::ExeGroup | QFileDevice::ReadOther | QFileDevice::ExeOther;

QString toolName(ToolInstaller::Tool tool)
{
    return tool == ToolInstaller::Tool::YtDlp ? u"yt-dlp"_s : u"Deno"_s;
}

QString megabytes(qint64 bytes)
{
    return QString::number(static_cast<double>(bytes) / (1024.0 * 1024.0), 'f', 1) + u" MB"_s;
}

QString cannotConnect()
{
    return QCoreApplication::translate("ToolInstaller", "无法连接到下载服务器，请检查网络后重试。");
}

QString rateLimited()
{
    return QCoreApplication::translate("ToolInstaller", "GitHub 暂时限制了请求次数，请过一会儿再试。");
}

QString cutOff()
{
    return QCoreApplication::translate("ToolInstaller", "下载中断，文件不完整，已丢弃。");
}

QString cancelledText()
{
    return QCoreApplication::translate("ToolInstaller", "已取消安装，原有文件未改动。");
}

QString cannotWrite(const QString &folder)
{
    return QCoreApplication::translate("ToolInstaller", "无法写入文件夹 %1，请检查权限，原有文件未改动。")
        .arg(QDir::toNativeSeparators(folder));
}

QString writeFailed(const QFileDevice &file, const QString &folder)
{
    if (file.error() == QFileDevice::ResourceError)
        return QCoreApplication::translate("ToolInstaller", "磁盘空间不足，无法保存下载的文件，原有文件未改动。");
    return cannotWrite(folder);
}

QString refused(const QUrl &url)
{
    return QCoreApplication::translate("ToolInstaller", "已拒绝不安全的下载地址（只允许 HTTPS）：%1")
        .arg(url.toDisplayString(QUrl::RemoveUserInfo));
}

// The state of one request, shared by its signal handlers.
struct Transfer
{
    QUrl current;
    QUrl refusedUrl;
    QString sinkError;
    qint64 received = 0;
};

bool isSuccess(const QNetworkReply *reply)
{
    const int status = reply->attribute(QNetworkRequest::HttpStatusCodeAttribute).toInt();
    return status >= 200 && status < 300;
}

// The user's message for how `reply` ended, or an empty text when it brought the whole body.
QString failureMessage(QNetworkReply *reply, const Transfer &transfer)
{
    if (transfer.refusedUrl.isValid())
        return refused(transfer.refusedUrl);
    if (!transfer.sinkError.isEmpty())
        return transfer.sinkError;

    const int status = reply->attribute(QNetworkRequest::HttpStatusCodeAttribute).toInt();
    if (status == 429 || (status == 403 && reply->rawHeader("X-RateLimit-Remaining").trimmed() == "0"))
        return rateLimited();
    if (status == 404)
        return QCoreApplication::translate("ToolInstaller", "下载服务器上找不到这个文件（HTTP 404）。");
    if (status >= 300)
        return QCoreApplication::translate("ToolInstaller", "下载服务器返回了错误（HTTP %1）。").arg(status);

    switch (reply->error()) {
    case QNetworkReply::NoError:
        break;
    case QNetworkReply::OperationCanceledError: // the transfer timeout; a cancel never gets here
        return QCoreApplication::translate("ToolInstaller", "下载服务器长时间没有响应，请稍后重试。");
    case QNetworkReply::SslHandshakeFailedError:
    case QNetworkReply::InsecureRedirectError:
        return QCoreApplication::translate("ToolInstaller", "无法与下载服务器建立安全连接。");
    case QNetworkReply::TooManyRedirectsError:
        return QCoreApplication::translate("ToolInstaller", "下载服务器的重定向次数过多。");
    default:
        return transfer.received > 0 ? cutOff() : cannotConnect();
    }

    // A compressed body's length counts the compressed bytes; Qt reports those cut short itself.
    const QVariant length = reply->header(QNetworkRequest::ContentLengthHeader);
    const bool compressed = !reply->rawHeader("Content-Encoding").isEmpty();
    if (length.isValid() && !compressed && transfer.received < length.toLongLong())
        return cutOff();
    return {};
}
} // namespace

struct ToolInstaller::Job
{
    Tool tool;
    quint64 id = 0;
    QString folder;
    QString tag;
    QByteArray expectedDigest;
    QCryptographicHash hash { QCryptographicHash::Sha256 };
    QPointer<QNetworkReply> reply;
    std::unique_ptr<QSaveFile> output; // the tool's new file, until it replaces the old one
    std::unique_ptr<QTemporaryFile> archive; // the downloaded zip (Deno)
    std::unique_ptr<QFutureWatcher<ZipExtractResult>> unpacking;
    std::atomic_bool stop { false };
    bool waitingForGate = false;
    QObject context; // the job's own callbacks end with it
};

ToolInstaller::ToolInstaller(ReleaseLocations locations, QObject *parent)
    : ToolInstaller(std::move(locations), defaultYtDlpFolder(), defaultDenoFolder(), parent)
{
}

ToolInstaller::ToolInstaller(ReleaseLocations locations, QString ytDlpFolder, QString denoFolder, QObject *parent)
    : QObject(parent)
    , m_locations(std::move(locations))
    , m_ytDlpFolder(std::move(ytDlpFolder))
    , m_denoFolder(std::move(denoFolder))
{
}

ToolInstaller::~ToolInstaller()
{
    if (!m_job)
        return;
    if (m_job->reply) {
        m_job->reply->disconnect();
        m_job->reply->abort();
    }
    // The unpacking thread writes into the job's file: it stops at its next block.
    if (m_job->unpacking) {
        m_job->stop = true;
        m_job->unpacking->disconnect();
        m_job->unpacking->waitForFinished();
    }
}

QString ToolInstaller::defaultYtDlpFolder()
{
    return QStandardPaths::writableLocation(QStandardPaths::AppDataLocation) + u"/bin"_s;
}

QString ToolInstaller::defaultDenoFolder()
{
    return QDir::homePath() + u"/.deno/bin"_s;
}

QString ToolInstaller::toolPath(Tool tool) const
{
    return tool == Tool::YtDlp ? m_ytDlpFolder + u"/yt-dlp"_s : m_denoFolder + u"/deno"_s;
}

const ReleaseLocations::Release &ToolInstaller::release(Tool tool) const
{
    return tool == Tool::YtDlp ? m_locations.ytDlp : m_locations.deno;
}

void ToolInstaller::setReplaceGate(ReplaceGate gate)
{
    m_gate = std::move(gate);
}

QNetworkReply *ToolInstaller::fetch(const QUrl &url, QObject *context, DataSink sink, FetchEnd end)
{
    if (!ReleaseLocations::isAllowed(url)) {
        qCWarning(lcEngine, "[Quillbox] [install] refused %ls", qUtf16Printable(url.toString()));
        QMetaObject::invokeMethod(
            context, [end, url] { end(refused(url)); }, Qt::QueuedConnection);
        return nullptr;
    }
    qCInfo(lcEngine, "[Quillbox] [install] GET %ls", qUtf16Printable(url.toString()));

    QNetworkRequest request(url);
    // Qt follows a redirect only once it is allowed here, so a refused target is never
    // contacted; with NoLessSafeRedirectPolicy the request to it is already on its way by the
    // time redirected() arrives. The "no less safe" rule itself is kept below.
    request.setAttribute(QNetworkRequest::RedirectPolicyAttribute, QNetworkRequest::UserVerifiedRedirectPolicy);
    request.setMaximumRedirectsAllowed(MaxRedirects);
    request.setTransferTimeout(TransferTimeoutMs);
    request.setHeader(QNetworkRequest::UserAgentHeader, u"Quillbox"_s);
    // Made at the first request: most runs never fetch anything, and start-up should not pay for it.
    if (!m_network)
        m_network = new QNetworkAccessManager(this);
    QNetworkReply *reply = m_network->get(request);

    auto transfer = std::make_shared<Transfer>();
    transfer->current = url;
    connect(reply, &QNetworkReply::redirected, reply, [reply, transfer](const QUrl &target) {
        const QUrl next = transfer->current.resolved(target);
        const bool lessSafe = transfer->current.scheme() == u"https"_s && next.scheme() != u"https"_s;
        if (lessSafe || !ReleaseLocations::isAllowed(next)) {
            qCWarning(lcEngine, "[Quillbox] [install] refused redirect to %ls", qUtf16Printable(next.toString()));
            transfer->refusedUrl = next;
            reply->abort();
            return;
        }
        qCInfo(lcEngine, "[Quillbox] [install] redirected to %ls", qUtf16Printable(next.toString()));
        transfer->current = next;
        Q_EMIT reply->redirectAllowed();
    });
    const auto take = [reply, transfer, sink] {
        const QByteArray data = reply->readAll();
        // An error page's body is not the file.
        if (data.isEmpty() || !isSuccess(reply) || !transfer->sinkError.isEmpty())
            return;
        transfer->received += data.size();
        transfer->sinkError = sink(data);
        if (!transfer->sinkError.isEmpty())
            reply->abort();
    };
    connect(reply, &QNetworkReply::readyRead, reply, take);
    connect(reply, &QNetworkReply::finished, reply, [reply, transfer, take, end] {
        if (reply->error() == QNetworkReply::NoError)
            take();
        reply->deleteLater();
        const QString message = failureMessage(reply, *transfer);
        if (!message.isEmpty())
            qCWarning(lcEngine, "[Quillbox] [install] %ls: %ls (%ls)", qUtf16Printable(transfer->current.toString()),
                qUtf16Printable(message), qUtf16Printable(reply->errorString()));
        end(message);
    });
    return reply;
}

QNetworkReply *ToolInstaller::fetchSmall(
    const QUrl &url, QObject *context, std::function<void(const QString &error, const QByteArray &body)> end)
{
    auto body = std::make_shared<QByteArray>();
    return fetch(
        url, context,
        [body](const QByteArray &data) {
            if (body->size() + data.size() > MaxSmallBody)
                return tr("下载服务器返回的内容异常。");
            body->append(data);
            return QString();
        },
        [body, end](const QString &error) { end(error, *body); });
}

QNetworkReply *ToolInstaller::requestLatest(
    Tool tool, QObject *context, std::function<void(const LatestRelease &)> completion)
{
    return fetchSmall(release(tool).latestApi, context, [completion](const QString &error, const QByteArray &body) {
        if (!error.isEmpty()) {
            completion({ false, {}, error });
            return;
        }
        // The tag goes into download paths: nothing but a version's characters.
        static const QRegularExpression tagPattern(u"^[0-9A-Za-z][0-9A-Za-z._+-]{0,99}$"_s);
        const QString tag = QJsonDocument::fromJson(body).object().value(u"tag_name"_s).toString();
        if (!tagPattern.match(tag).hasMatch()) {
            completion({ false, {}, tr("无法从发布页读出最新版本号。") });
            return;
        }
        completion({ true, tag, {} });
    });
}

void ToolInstaller::checkLatest(Tool tool, std::function<void(const LatestRelease &)> completion)
{
    requestLatest(tool, this, std::move(completion));
}

void ToolInstaller::install(Tool tool)
{
    if (m_job) {
        const QString message = tr("正在安装 %1，请等它结束后再试。").arg(toolName(m_job->tool));
        const QString path = toolPath(tool);
        QMetaObject::invokeMethod(
            this, [this, tool, path, message] { Q_EMIT finished(tool, false, path, {}, message); },
            Qt::QueuedConnection);
        return;
    }
    m_job = std::make_unique<Job>();
    m_job->tool = tool;
    m_job->id = ++m_lastJobId;
    m_job->folder = tool == Tool::YtDlp ? m_ytDlpFolder : m_denoFolder;
    Q_EMIT busyChanged();
    setProgress(-1);
    setStatusText(tr("正在查询 %1 的最新版本…").arg(toolName(tool)));
    qCInfo(
        lcEngine, "[Quillbox] [install] %ls into %ls", qUtf16Printable(toolName(tool)), qUtf16Printable(m_job->folder));

    if (release(tool).assetName.isEmpty()) {
        failLater(tr("%1 没有适用于这个系统的版本。").arg(toolName(tool)));
        return;
    }
    m_job->reply = requestLatest(tool, &m_job->context, [this](const LatestRelease &latest) { fetchChecksum(latest); });
}

void ToolInstaller::fetchChecksum(const LatestRelease &latest)
{
    if (!latest.ok) {
        finish(false, latest.error);
        return;
    }
    m_job->tag = latest.tag;
    setStatusText(tr("正在获取 %1 %2 的校验值…").arg(toolName(m_job->tool), latest.tag));
    const ReleaseLocations::Release &source = release(m_job->tool);
    m_job->reply = fetchSmall(
        source.checksumUrl(latest.tag), &m_job->context, [this](const QString &error, const QByteArray &body) {
            if (!error.isEmpty()) {
                finish(false, error);
                return;
            }
            const ReleaseLocations::Release &source = release(m_job->tool);
            m_job->expectedDigest = ReleaseLocations::expectedDigest(source.checksumFormat, body, source.assetName);
            if (m_job->expectedDigest.isEmpty()) {
                finish(false, tr("校验文件里没有 %1 的 SHA-256，已停止安装，原有文件未改动。").arg(source.assetName));
                return;
            }
            downloadAsset();
        });
}

void ToolInstaller::downloadAsset()
{
    Job &job = *m_job;
    // Quillbox's own yt-dlp lives in the per-user data folder, which is owner-only like the queue
    // stored there, whichever of the two makes it first.
    if (const QString data = QStandardPaths::writableLocation(QStandardPaths::AppDataLocation);
        job.folder.startsWith(data + u'/'))
        PrivateFiles::makeFolder(data);
    if (!QDir().mkpath(job.folder)) {
        finish(false, cannotWrite(job.folder));
        return;
    }
    // The zip is kept beside the tool until it is unpacked; yt-dlp goes straight into its new file.
    QFileDevice *target = nullptr;
    if (job.tool == Tool::Deno) {
        job.archive = std::make_unique<QTemporaryFile>(job.folder + u"/.deno-download-XXXXXX.zip"_s);
        if (job.archive->open())
            target = job.archive.get();
    } else {
        job.output = std::make_unique<QSaveFile>(toolPath(job.tool));
        if (job.output->open(QIODevice::WriteOnly))
            target = job.output.get();
    }
    if (!target) {
        finish(false, cannotWrite(job.folder));
        return;
    }

    const QString name = toolName(job.tool);
    const QString tag = job.tag;
    setStatusText(tr("正在下载 %1 %2…").arg(name, tag));
    const QString folder = job.folder;
    job.reply = fetch(
        release(job.tool).assetUrl(job.tag), &job.context,
        [this, target, folder](const QByteArray &data) {
            m_job->hash.addData(data);
            if (target->write(data) != data.size())
                return writeFailed(*target, folder);
            return QString();
        },
        [this, target, folder](const QString &error) {
            if (error.isEmpty() && !target->flush()) {
                finish(false, writeFailed(*target, folder));
                return;
            }
            if (!error.isEmpty())
                finish(false, error);
            else
                verify();
        });
    if (job.reply) {
        connect(job.reply, &QNetworkReply::downloadProgress, this, [this, name, tag](qint64 received, qint64 total) {
            setProgress(total > 0 ? static_cast<double>(received) / static_cast<double>(total) : -1);
            setStatusText(tr("正在下载 %1 %2… %3")
                              .arg(name, tag,
                                  total > 0 ? megabytes(received) + u" / "_s + megabytes(total) : megabytes(received)));
        });
    }
}

void ToolInstaller::verify()
{
    setProgress(1);
    setStatusText(tr("正在校验…"));
    const QByteArray digest = m_job->hash.result().toHex();
    if (digest != m_job->expectedDigest) {
        qCWarning(lcEngine, "[Quillbox] [install] SHA-256 %s, expected %s", digest.constData(),
            m_job->expectedDigest.constData());
        finish(false, tr("下载的文件校验失败（SHA-256 不符），已丢弃，原有文件未改动。"));
        return;
    }
    qCInfo(lcEngine, "[Quillbox] [install] SHA-256 verified: %s", digest.constData());
    if (m_job->tool == Tool::Deno)
        unpack();
    else
        waitForGate();
}

void ToolInstaller::unpack()
{
    Job &job = *m_job;
    setProgress(-1);
    setStatusText(tr("正在解压…"));
    job.output = std::make_unique<QSaveFile>(toolPath(job.tool));
    if (!job.output->open(QIODevice::WriteOnly)) {
        finish(false, cannotWrite(job.folder));
        return;
    }
    job.unpacking = std::make_unique<QFutureWatcher<ZipExtractResult>>();
    connect(job.unpacking.get(), &QFutureWatcher<ZipExtractResult>::finished, this, [this] {
        const ZipExtractResult result = m_job->unpacking->result();
        if (result.status != ZipExtractResult::Extracted)
            qCWarning(lcEngine, "[Quillbox] [install] unzip: %ls", qUtf16Printable(result.detail));
        switch (result.status) {
        case ZipExtractResult::Extracted:
            waitForGate();
            break;
        case ZipExtractResult::NotFound:
            finish(false, tr("下载的压缩包里没有 deno 程序，已丢弃，原有文件未改动。"));
            break;
        case ZipExtractResult::Damaged:
            finish(false, tr("下载的压缩包已损坏，已丢弃，原有文件未改动。"));
            break;
        case ZipExtractResult::WriteFailed:
            finish(false, writeFailed(*m_job->output, m_job->folder));
            break;
        case ZipExtractResult::Cancelled:
            finish(false, cancelledText());
            break;
        }
    });
    const QString archive = job.archive->fileName();
    QSaveFile *output = job.output.get();
    const std::atomic_bool *stop = &job.stop;
    job.unpacking->setFuture(QtConcurrent::run([archive, output, stop] {
        QFile zip(archive);
        if (!zip.open(QIODevice::ReadOnly))
            return ZipExtractResult { ZipExtractResult::Damaged, zip.errorString() };
        return extractZipEntry(zip, u"deno"_s, *output, *stop);
    }));
}

void ToolInstaller::waitForGate()
{
    Job &job = *m_job;
    if (!job.output->flush() || !job.output->setPermissions(Executable)) {
        finish(false, writeFailed(*job.output, job.folder));
        return;
    }
    job.archive.reset();
    if (!m_gate) {
        replace(job.id);
        return;
    }
    job.waitingForGate = true;
    setStatusText(tr("等待下载结束后替换…"));
    const QPointer<ToolInstaller> self(this);
    const quint64 id = job.id;
    m_gate([self, id] {
        if (self)
            self->replace(id);
    });
}

void ToolInstaller::replace(quint64 jobId)
{
    if (!m_job || m_job->id != jobId)
        return; // cancelled while the gate held it
    m_job->waitingForGate = false;
    if (!m_job->output->commit()) {
        qCWarning(lcEngine, "[Quillbox] [install] replacing %ls: %ls", qUtf16Printable(toolPath(m_job->tool)),
            qUtf16Printable(m_job->output->errorString()));
        finish(false, writeFailed(*m_job->output, m_job->folder));
        return;
    }
    finish(true, tr("%1 %2 已安装。").arg(toolName(m_job->tool), m_job->tag));
}

void ToolInstaller::cancel()
{
    if (!m_job)
        return;
    qCInfo(lcEngine, "[Quillbox] [install] cancel");
    if (m_job->unpacking && m_job->unpacking->isRunning()) {
        // The thread owns the new file until it returns; it ends the job then.
        m_job->stop = true;
        setStatusText(tr("正在取消…"));
        return;
    }
    finish(false, cancelledText());
}

void ToolInstaller::failLater(const QString &message)
{
    const quint64 id = m_job->id;
    QMetaObject::invokeMethod(
        this,
        [this, id, message] {
            if (m_job && m_job->id == id)
                finish(false, message);
        },
        Qt::QueuedConnection);
}

void ToolInstaller::finish(bool ok, const QString &message)
{
    // Taken out first: aborting a reply runs its handlers, which must find no job.
    const std::unique_ptr<Job> job = std::move(m_job);
    if (job->reply) {
        job->reply->disconnect();
        job->reply->abort();
    }
    // An uncommitted QSaveFile and a QTemporaryFile remove their files when destroyed.
    if (job->output)
        job->output->cancelWriting();
    // finish() may run inside the watcher's own signal.
    if (job->unpacking)
        job->unpacking.release()->deleteLater();
    const QString path = toolPath(job->tool);
    if (ok)
        qCInfo(lcEngine, "[Quillbox] [install] %ls", qUtf16Printable(message));
    else
        qCWarning(lcEngine, "[Quillbox] [install] failed: %ls", qUtf16Printable(message));
    setProgress(ok ? 1 : 0);
    setStatusText(message);
    Q_EMIT busyChanged();
    Q_EMIT finished(job->tool, ok, path, job->tag, message);
}

void ToolInstaller::setProgress(double progress)
{
    if (qFuzzyCompare(progress + 2, m_progress + 2))
        return;
    m_progress = progress;
    Q_EMIT progressChanged();
}

void ToolInstaller::setStatusText(const QString &text)
{
    if (text == m_statusText)
        return;
    m_statusText = text;
    Q_EMIT statusTextChanged();
}
