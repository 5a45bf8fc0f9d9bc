#pragma once

#include <QFont>
#include <QFontDatabase>
#include <QGuiApplication>
#include <QStringList>

// Names the installed CJK family first in the application font, so that Chinese text is drawn
// with one family rather than a fallback per glyph. Inline and on Qt Gui alone: the start-up
// benchmark's bare window makes the same choice without linking the application.
inline void preferCjkFont()
{
#if defined(Q_OS_LINUX) || defined(Q_OS_FREEBSD)
    // families() rather than hasFamily(): the latter also resolves the name as a fontconfig
    // alias, a costly substitution pass the first frame would wait for.
    const QStringList installed = QFontDatabase::families();
    for (const QString &family : { QStringLiteral("Noto Sans CJK SC"), QStringLiteral("WenQuanYi Micro Hei") }) {
        if (installed.contains(family)) {
            QFont font = QGuiApplication::font();
            font.setFamilies({ family, font.family() });
            QGuiApplication::setFont(font);
            return;
        }
    }
#endif
}
