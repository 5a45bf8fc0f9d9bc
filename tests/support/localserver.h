#pragma once

#include <QDeadlineTimer>
#include <QFileInfo>
#include <QProcess>
#include <QRegularExpression>
#include <QStandardPaths>

// A test server of ours (a Python script in tests/support) on 127.0.0.1, from the moment it says
// "READY http://127.0.0.1:PORT/" until this is destroyed. Its standard input stays an open pipe:
// the server exits when that closes, even if the process that started it dies.
class LocalServer
{
public:
    LocalServer(const QString &name, const QStringList &arguments, int patience,
        const QProcessEnvironment &environment = QProcessEnvironment::systemEnvironment())
    {
        using namespace Qt::StringLiterals;
        const QString interpreter = python();
        if (interpreter.isEmpty()) {
            m_error = u"python3 is not installed"_s;
            return;
        }
        m_process.setProcessChannelMode(QProcess::ForwardedErrorChannel);
        m_process.setProcessEnvironment(environment);
        m_process.start(interpreter, arguments);
        if (!m_process.waitForStarted(patience)) {
            m_error = u"the %1 did not start: "_s.arg(name) + m_process.errorString();
            return;
        }
        QDeadlineTimer deadline(patience);
        while (!m_process.canReadLine() && m_process.state() == QProcess::Running && !deadline.hasExpired())
            m_process.waitForReadyRead(1000);
        const QString ready = QString::fromUtf8(m_process.readLine()).trimmed();
        static const QRegularExpression readyLine(u"^READY (http://127\\.0\\.0\\.1:\\d+/)$"_s);
        const QRegularExpressionMatch match = readyLine.match(ready);
        if (match.hasMatch())
            m_base = match.captured(1);
        else
            m_error = u"the %1 said: "_s.arg(name) + ready;
    }

    ~LocalServer()
    {
        if (m_process.state() == QProcess::NotRunning)
            return;
        m_process.closeWriteChannel();
        if (!m_process.waitForFinished(10000)) {
            m_process.kill();
            m_process.waitForFinished(5000);
        }
    }

    LocalServer(const LocalServer &) = delete;
    LocalServer &operator=(const LocalServer &) = delete;

    static QString python()
    {
        using namespace Qt::StringLiterals;
        return QFileInfo::exists(u"/usr/bin/python3"_s) ? u"/usr/bin/python3"_s
                                                        : QStandardPaths::findExecutable(u"python3"_s);
    }

    // "http://127.0.0.1:PORT/", or empty if the server is not serving (error() says why).
    QString base() const { return m_base; }
    QString error() const { return m_error; }

private:
    QProcess m_process;
    QString m_base;
    QString m_error;
};
