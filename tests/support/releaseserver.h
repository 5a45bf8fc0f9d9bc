#pragma once

#include <QDeadlineTimer>
#include <QFileInfo>
#include <QProcess>
#include <QRegularExpression>
#include <QStandardPaths>

// tests/support/releaseserver.py on 127.0.0.1, serving the release files under `root`, until it
// is destroyed. Its standard input stays an open pipe: the server exits when that closes, even if
// the process that started it dies.
class ReleaseServer
{
public:
    static constexpr int Patience = 30000;

    ReleaseServer(const QString &testsDir, const QString &root, const QStringList &extraArguments = {})
    {
        using namespace Qt::StringLiterals;
        m_process.setProcessChannelMode(QProcess::ForwardedErrorChannel);
        m_process.start(
            python(), QStringList { testsDir + u"/support/releaseserver.py"_s, u"--root"_s, root } + extraArguments);
        if (!m_process.waitForStarted(Patience)) {
            m_error = u"the release server did not start: "_s + m_process.errorString();
            return;
        }
        QDeadlineTimer deadline(Patience);
        while (!m_process.canReadLine() && m_process.state() == QProcess::Running && !deadline.hasExpired())
            m_process.waitForReadyRead(1000);
        const QString ready = QString::fromUtf8(m_process.readLine()).trimmed();
        static const QRegularExpression readyLine(u"^READY (http://127\\.0\\.0\\.1:\\d+)/$"_s);
        const QRegularExpressionMatch match = readyLine.match(ready);
        if (match.hasMatch())
            m_base = match.captured(1);
        else
            m_error = u"the release server said: "_s + ready;
    }

    ~ReleaseServer()
    {
        if (m_process.state() == QProcess::NotRunning)
            return;
        m_process.closeWriteChannel();
        if (!m_process.waitForFinished(10000)) {
            m_process.kill();
            m_process.waitForFinished(5000);
        }
    }

    ReleaseServer(const ReleaseServer &) = delete;
    ReleaseServer &operator=(const ReleaseServer &) = delete;

    static QString python()
    {
        using namespace Qt::StringLiterals;
        return QFileInfo::exists(u"/usr/bin/python3"_s) ? u"/usr/bin/python3"_s
                                                        : QStandardPaths::findExecutable(u"python3"_s);
    }

    // Runs the script's --make-zip; empty, or what went wrong.
    static QString makeZip(const QString &testsDir, const QStringList &arguments)
    {
        using namespace Qt::StringLiterals;
        QProcess zip;
        zip.setProcessChannelMode(QProcess::MergedChannels);
        zip.start(python(), QStringList { testsDir + u"/support/releaseserver.py"_s, u"--make-zip"_s } + arguments);
        if (zip.waitForFinished(Patience) && zip.exitStatus() == QProcess::NormalExit && zip.exitCode() == 0)
            return {};
        return QString::fromUtf8(zip.readAll()) + zip.errorString();
    }

    // "http://127.0.0.1:PORT" (no slash at the end), or empty if it is not serving (error() says why).
    QString base() const { return m_base; }
    QString error() const { return m_error; }

private:
    QProcess m_process;
    QString m_base;
    QString m_error;
};
