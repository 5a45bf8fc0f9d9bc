#pragma once

#include <QByteArray>
#include <QFile>
#include <QQuickWindow>

#include <ctime>

// With QUILLBOX_REPORT_FIRST_FRAME naming a file, appends CLOCK_MONOTONIC in nanoseconds to it
// once, when the first frame of `window` has been swapped to the screen (bench_startup compares
// it with the time it started the process). Header-only, so the benchmark's bare window reports
// the same way without linking anything of ours. reportMoment() appends the time of later
// moments (the stored queue back in the window) to the same file, one line each.
inline void reportMoment()
{
    const QString path = qEnvironmentVariable("QUILLBOX_REPORT_FIRST_FRAME");
    if (path.isEmpty())
        return;
    timespec now {};
    clock_gettime(CLOCK_MONOTONIC, &now);
    QFile out(path);
    if (out.open(QIODevice::WriteOnly | QIODevice::Append))
        out.write(QByteArray::number(qint64(now.tv_sec) * 1000000000 + now.tv_nsec) + '\n');
}

inline void reportFirstFrame(QQuickWindow *window)
{
    if (!qEnvironmentVariableIsSet("QUILLBOX_REPORT_FIRST_FRAME") || !window)
        return;
    QObject::connect(window, &QQuickWindow::frameSwapped, window, &reportMoment,
        Qt::ConnectionType(Qt::DirectConnection | Qt::SingleShotConnection));
}
