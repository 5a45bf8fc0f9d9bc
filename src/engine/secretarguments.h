#pragma once

#include <QString>
#include <QStringView>

// What stands in for a secret wherever a command or its arguments are shown.
inline constexpr QStringView SecretMask = u"••••••";

// `shellText` (a rendered command, or custom arguments as the user typed them) with the value of
// every option that holds a secret — yt-dlp's --password (-p), --video-password, --ap-password,
// --client-certificate-password and --twofactor, apart or joined by "=" — and the password of a
// --proxy URL replaced by SecretMask.
// The rest is left as it was written, quotes included; a value in an open quote is masked to the
// end. Nothing after a lone "--" is an option. For display only: the command that runs keeps the
// values.
QString maskSecrets(const QString &shellText);
