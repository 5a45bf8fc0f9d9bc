#pragma once

#include <QColor>
#include <QObject>
#include <QString>
#include <QtQml/qqmlregistration.h>

// Colour from a hexadecimal text: trimmed, upper-cased, one leading "#" dropped, the longest
// hexadecimal prefix read (as a hex scanner would, "0X" prefix allowed, saturating on overflow),
// then the low 24 bits as RRGGBB, always opaque. Anything unreadable is black. Unlike QColor's
// own parsing, "#FFF" is 0x000FFF and "#80FF0000" is opaque red; the palette relies on this.
QColor colorFromHex(const QString &hex);

// colorFromHex for QML: Colors.hex("#0D1117").
class Colors : public QObject
{
    Q_OBJECT
    QML_ELEMENT
    QML_SINGLETON

public:
    using QObject::QObject;

    Q_INVOKABLE QColor hex(const QString &hex) const { return colorFromHex(hex); }
};
