#pragma once

#include "support/localserver.h"

// tests/support/releaseserver.py on 127.0.0.1, serving the release files under `root`.
class ReleaseServer : public LocalServer
{
public:
    static constexpr int Patience = 30000;

    ReleaseServer(const QString &testsDir, const QString &root, const QStringList &extraArguments = {})
        : LocalServer(QStringLiteral("release server"),
            QStringList { testsDir + QStringLiteral("/support/releaseserver.py"), QStringLiteral("--root"), root }
                + extraArguments,
            Patience)
    {
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
    QString base() const
    {
        const QString withSlash = LocalServer::base();
        return withSlash.isEmpty() ? withSlash : withSlash.chopped(1);
    }
};
