#pragma once

#include <QByteArray>
#include <QString>

// Decodes strict UTF-8; output that is not valid UTF-8 (a stray byte, a sequence cut short at
// the end) decodes to an empty text.
QString decodeUtf8OrEmpty(const QByteArray &bytes);

// `path` with a leading "~" (alone or before "/") read as `home`, as a shell would; any other
// path as it is.
QString expandHome(const QString &path, const QString &home);

// The first `count` characters of `text`, for a log line: an emoji is one character, and a pair
// of surrogates is never cut in two.
QString leftCharacters(const QString &text, qsizetype count);
