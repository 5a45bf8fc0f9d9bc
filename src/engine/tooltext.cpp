#include "engine/tooltext.h"

#include <QStringDecoder>

QString decodeUtf8OrEmpty(const QByteArray &bytes)
{
    // Stateless: a sequence cut short at the end is an error, not a state kept for a next call.
    QStringDecoder decoder(QStringDecoder::Utf8, QStringDecoder::Flag::Stateless);
    QString text = decoder.decode(bytes);
    return decoder.hasError() ? QString() : text;
}

QString leftCharacters(const QString &text, qsizetype count)
{
    qsizetype end = 0;
    for (; end < text.size() && count > 0; --count)
        end += text.at(end).isHighSurrogate() && end + 1 < text.size() && text.at(end + 1).isLowSurrogate() ? 2 : 1;
    return text.left(end);
}

QString expandHome(const QString &path, const QString &home)
{
    if (path == u"~" || path.startsWith(u"~/"))
        return home + path.mid(1);
    return path;
}
