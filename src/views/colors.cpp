#include "views/colors.h"

#include <limits>

namespace {
int hexDigit(QChar c)
{
    if (c >= u'0' && c <= u'9')
        return c.unicode() - u'0';
    if (c >= u'A' && c <= u'F')
        return c.unicode() - u'A' + 10;
    return -1;
}
} // namespace

QColor colorFromHex(const QString &hex)
{
    QString text = hex.trimmed().toUpper();
    if (text.startsWith(u'#'))
        text.remove(0, 1);

    // A hex scanner skips leading white space and takes an optional "0X" before the digits.
    qsizetype pos = 0;
    while (pos < text.size() && text.at(pos).isSpace())
        ++pos;
    if (text.mid(pos, 2) == u"0X" && pos + 2 < text.size() && hexDigit(text.at(pos + 2)) >= 0)
        pos += 2;

    quint64 value = 0;
    bool overflow = false;
    for (; pos < text.size(); ++pos) {
        const int digit = hexDigit(text.at(pos));
        if (digit < 0)
            break;
        if (value > (std::numeric_limits<quint64>::max() >> 4))
            overflow = true;
        value = (value << 4) | quint64(digit);
    }
    if (overflow)
        value = std::numeric_limits<quint64>::max();

    const int red = int((value >> 16) & 0xFF);
    const int green = int((value >> 8) & 0xFF);
    const int blue = int(value & 0xFF);
    return QColor::fromRgbF(float(red / 255.0), float(green / 255.0), float(blue / 255.0), 1.0f);
}
