#pragma once

#include "support/localserver.h"

// tests/support/releaseserver.py on 127.0.0.1, serving the release files under `root`.
class ReleaseServer : public LocalServer
{
public:
    ReleaseServer(const QString &testsDir, const QString &root, const QStringList &extraArguments = {})
        : LocalServer(QStringLiteral("release server"),
            QStringList { script(testsDir), QStringLiteral("--root"), root } + extraArguments, 30000)
    {
    }

    // Runs the script's --make-zip; empty, or what went wrong.
    static QString makeZip(const QString &testsDir, const QStringList &arguments)
    {
        QProcess zip;
        zip.setProcessChannelMode(QProcess::MergedChannels);
        zip.start(python(), QStringList { script(testsDir), QStringLiteral("--make-zip") } + arguments);
        if (zip.waitForFinished(30000) && zip.exitStatus() == QProcess::NormalExit && zip.exitCode() == 0)
            return {};
        return QString::fromUtf8(zip.readAll()) + zip.errorString();
    }

    // "http://127.0.0.1:PORT" (no slash at the end), or empty if it is not serving (error() says why).
    QString base() const { return LocalServer::base().chopped(LocalServer::base().isEmpty() ? 0 : 1); }

private:
    static QString script(const QString &testsDir) { return testsDir + QStringLiteral("/support/releaseserver.py"); }
};
