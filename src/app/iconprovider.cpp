#include "app/iconprovider.h"

#include "model/logcategories.h"

#include <QFile>
#include <QPainter>
#include <QSvgRenderer>
#include <QUrlQuery>

using namespace Qt::StringLiterals;

IconProvider::IconProvider()
    : QQuickImageProvider(QQuickImageProvider::Image)
{
}

QString IconProvider::fileForSymbol(const QString &symbol)
{
    QString name = symbol;
    name.replace(u'.', u'-');
    const QString file = u":/qt/qml/Quillbox/icons/"_s + name + u".svg"_s;
    return QFile::exists(file) ? file : QString();
}

QImage IconProvider::requestImage(const QString &id, QSize *size, const QSize &requestedSize)
{
    const QString symbol = id.section(u'?', 0, 0);
    const QUrlQuery query(id.section(u'?', 1));
    const QString color = query.queryItemValue(u"color"_s).isEmpty() ? u"#ffffff"_s : query.queryItemValue(u"color"_s);

    const QSize target(requestedSize.width() > 0 ? requestedSize.width() : 24,
        requestedSize.height() > 0 ? requestedSize.height() : 24);
    QImage image(target, QImage::Format_ARGB32_Premultiplied);
    image.fill(Qt::transparent);
    if (size)
        *size = target;

    const QString file = fileForSymbol(symbol);
    QFile svg(file);
    if (file.isEmpty() || !svg.open(QIODevice::ReadOnly)) {
        qCWarning(lcUi, "no icon for the symbol %ls", qUtf16Printable(symbol));
        return image;
    }
    QByteArray data = svg.readAll();
    const QString from = query.queryItemValue(u"from"_s);
    const QString to = query.queryItemValue(u"to"_s);
    if (!from.isEmpty() && !to.isEmpty()) {
        // Top-leading to bottom-trailing, across the icon's own box.
        const QByteArray gradient = "<defs><linearGradient id=\"qbg\" x1=\"0\" y1=\"0\" x2=\"1\" y2=\"1\">"
                                    "<stop offset=\"0\" stop-color=\""
            + from.toLatin1()
            + "\"/>"
              "<stop offset=\"1\" stop-color=\""
            + to.toLatin1() + "\"/></linearGradient></defs>";
        const qsizetype open = data.indexOf('>', data.indexOf("<svg"));
        if (open > 0)
            data.insert(open + 1, gradient);
        data.replace("currentColor", "url(#qbg)");
    } else {
        data.replace("currentColor", color.toLatin1());
    }
    QSvgRenderer renderer(data);
    QPainter painter(&image);
    painter.setRenderHint(QPainter::Antialiasing);
    renderer.render(&painter);
    return image;
}
