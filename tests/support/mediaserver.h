#pragma once

#include <QDeadlineTimer>
#include <QFileInfo>
#include <QProcess>
#include <QRegularExpression>
#include <QStandardPaths>

// tests/support/mediaserver.py on 127.0.0.1, serving `root` and the clips it generates there,
// until it is destroyed. Its standard input stays an open pipe: the server exits when that
// closes, even if the process that started it dies.
class MediaServer
{
public:
    static constexpr int Patience = 120000;

    MediaServer(const QString &testsDir, const QString &root, const QStringList &extraArguments = {},
        const QProcessEnvironment &environment = QProcessEnvironment::systemEnvironment())
    {
        using namespace Qt::StringLiterals;
        const QString python = QFileInfo::exists(u"/usr/bin/python3"_s) ? u"/usr/bin/python3"_s
                                                                        : QStandardPaths::findExecutable(u"python3"_s);
        if (python.isEmpty()) {
            m_error = u"python3 is not installed"_s;
            return;
        }
        m_process.setProcessChannelMode(QProcess::ForwardedErrorChannel);
        m_process.setProcessEnvironment(environment);
        m_process.start(python,
            QStringList {
                testsDir + u"/support/mediaserver.py"_s, u"--root"_s, root, u"--port"_s, u"0"_s, u"--generate"_s }
                + extraArguments);
        if (!m_process.waitForStarted(Patience)) {
            m_error = u"the media server did not start: "_s + m_process.errorString();
            return;
        }
        QDeadlineTimer deadline(Patience);
        while (!m_process.canReadLine() && m_process.state() == QProcess::Running && !deadline.hasExpired())
            m_process.waitForReadyRead(1000);
        const QString ready = QString::fromUtf8(m_process.readLine()).trimmed();
        static const QRegularExpression readyLine(u"^READY (http://127\\.0\\.0\\.1:\\d+/)$"_s);
        const QRegularExpressionMatch match = readyLine.match(ready);
        if (match.hasMatch())
            m_base = match.captured(1);
        else
            m_error = u"the media server said: "_s + ready;
    }

    ~MediaServer()
    {
        if (m_process.state() == QProcess::NotRunning)
            return;
        m_process.closeWriteChannel();
        if (!m_process.waitForFinished(10000)) {
            m_process.kill();
            m_process.waitForFinished(5000);
        }
    }

    MediaServer(const MediaServer &) = delete;
    MediaServer &operator=(const MediaServer &) = delete;

    // "http://127.0.0.1:PORT/", or empty if the server is not serving (error() says why).
    QString base() const { return m_base; }
    QString error() const { return m_error; }

private:
    QProcess m_process;
    QString m_base;
    QString m_error;
};
