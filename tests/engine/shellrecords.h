#pragma once

#include <QByteArrayList>
#include <QProcess>
#include <QStringList>

// Runs `commands`, one a line, in one `shell -c`; each command's program prints its arguments,
// each ended by a NUL byte, then 0x1E and a newline (as fakes/argvdump does). Returns the argv
// each command's program received, in order; nothing if the shell failed.
inline QList<QByteArrayList> recordedArgvs(const QString &shell, const QStringList &commands)
{
    QProcess process;
    process.start(shell, { QStringLiteral("-c"), commands.join(u'\n') });
    if (!process.waitForFinished(60000) || process.exitStatus() != QProcess::NormalExit || process.exitCode() != 0)
        return {};
    QList<QByteArray> records = process.readAllStandardOutput().split('\x1e');
    records.removeLast(); // the newline after the last record
    QList<QByteArrayList> argvs;
    for (QByteArray record : std::as_const(records)) {
        if (record.startsWith('\n'))
            record.remove(0, 1);
        QByteArrayList argv = record.split('\0');
        argv.removeLast(); // what follows the last NUL: nothing
        argvs << argv;
    }
    return argvs;
}
