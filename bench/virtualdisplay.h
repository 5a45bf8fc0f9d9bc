#pragma once

// A private X server (Xvfb) for the benchmarks that draw on a real display: on a free display
// number, local connections only, ended when the object goes.

#include "benchsupport.h"

#include <QFileInfo>
#include <QProcess>
#include <QString>

namespace bench {

class VirtualDisplay
{
public:
    explicit VirtualDisplay(const QString &xvfb, const QString &logFile, const QString &screen = u"1400x900x24"_s)
    {
        for (int number = 99; number < 160 && m_name.isEmpty(); ++number) {
            if (QFileInfo::exists(u"/tmp/.X%1-lock"_s.arg(number))
                || QFileInfo::exists(u"/tmp/.X11-unix/X%1"_s.arg(number)))
                continue;
            m_process.setStandardInputFile(QProcess::nullDevice());
            m_process.setStandardOutputFile(logFile, QIODevice::Append);
            m_process.setStandardErrorFile(logFile, QIODevice::Append);
            m_process.start(xvfb, { u":%1"_s.arg(number), u"-screen"_s, u"0"_s, screen, u"-nolisten"_s, u"tcp"_s });
            if (!m_process.waitForStarted(10000))
                continue;
            // Ready once its socket is there; gone early when another server took the number.
            const QString socket = u"/tmp/.X11-unix/X%1"_s.arg(number);
            waitUntil(
                [&] { return QFileInfo::exists(socket) || m_process.state() == QProcess::NotRunning; }, 10000, 10);
            if (m_process.state() == QProcess::Running && QFileInfo::exists(socket))
                m_name = u":%1"_s.arg(number);
            else
                stop();
        }
    }

    ~VirtualDisplay() { stop(); }

    VirtualDisplay(const VirtualDisplay &) = delete;
    VirtualDisplay &operator=(const VirtualDisplay &) = delete;

    bool isValid() const { return !m_name.isEmpty(); }
    QString name() const { return m_name; }
    qint64 pid() const { return m_process.processId(); }

private:
    void stop()
    {
        if (m_process.state() == QProcess::NotRunning)
            return;
        m_process.terminate();
        if (!m_process.waitForFinished(5000)) {
            m_process.kill();
            m_process.waitForFinished(5000);
        }
    }

    QProcess m_process;
    QString m_name;
};

} // namespace bench
