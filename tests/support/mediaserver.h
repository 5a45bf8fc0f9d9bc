#pragma once

#include "support/localserver.h"

// tests/support/mediaserver.py on 127.0.0.1, serving `root` and the clips it generates there.
class MediaServer : public LocalServer
{
public:
    MediaServer(const QString &testsDir, const QString &root, const QStringList &extraArguments = {},
        const QProcessEnvironment &environment = QProcessEnvironment::systemEnvironment())
        : LocalServer(QStringLiteral("media server"),
            QStringList { testsDir + QStringLiteral("/support/mediaserver.py"), QStringLiteral("--root"), root,
                QStringLiteral("--generate") }
                + extraArguments,
            120000, environment)
    {
    }
};
