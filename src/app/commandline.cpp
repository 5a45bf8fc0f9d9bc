#include "app/commandline.h"

#include <QCoreApplication>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QRegularExpression>
#include <QUrl>
#include <QtEndian>

using namespace Qt::StringLiterals;

namespace {
constexpr char Magic[] = "QBX1";
constexpr qsizetype HeaderBytes = 8;

// The options QGuiApplication takes out of the arguments itself: with a value, and without.
bool isQtOption(QStringView argument, bool *takesValue)
{
    static const QStringList withValue { u"platform"_s, u"platformpluginpath"_s, u"platformtheme"_s, u"plugin"_s,
        u"qwindowgeometry"_s, u"qwindowicon"_s, u"qwindowtitle"_s, u"style"_s, u"stylesheet"_s, u"session"_s,
        u"display"_s, u"name"_s, u"geometry"_s, u"title"_s, u"visual"_s, u"fontengine"_s, u"dialogs"_s };
    static const QStringList alone { u"reverse"_s, u"nograb"_s, u"dograb"_s, u"sync"_s, u"widgetcount"_s,
        u"testability"_s };
    QStringView name = argument.startsWith(u"--") ? argument.mid(2) : argument.mid(1);
    if (name.startsWith(u"qmljsdebugger=") || name.startsWith(u"style=") || name.startsWith(u"platform=")) {
        *takesValue = false;
        return true;
    }
    *takesValue = withValue.contains(name);
    return *takesValue || alone.contains(name);
}

int hexValue(char c)
{
    if (c >= '0' && c <= '9')
        return c - '0';
    if ((c | 0x20) >= 'a' && (c | 0x20) <= 'f')
        return (c | 0x20) - 'a' + 10;
    return -1;
}

// "%XX" decoded where XX is hexadecimal; any other "%" is kept as it is. "+" stays "+".
QString percentDecoded(const QByteArray &text)
{
    QByteArray bytes;
    bytes.reserve(text.size());
    for (qsizetype i = 0; i < text.size(); ++i) {
        const int high = i + 2 < text.size() && text[i] == '%' ? hexValue(text[i + 1]) : -1;
        const int low = high >= 0 ? hexValue(text[i + 2]) : -1;
        if (low >= 0) {
            bytes += char(high * 16 + low);
            i += 2;
        } else {
            bytes += text[i];
        }
    }
    return QString::fromUtf8(bytes);
}
} // namespace

CommandLine CommandLine::parse(const QStringList &arguments)
{
    CommandLine line;
    bool options = true;
    bool typed = false;
    bool skipValue = false;
    for (const QString &argument : arguments) {
        bool takesValue = false;
        if (skipValue) {
            skipValue = false;
        } else if (options && argument == u"--") {
            options = false;
        } else if (options && (argument == u"--help" || argument == u"-h")) {
            line.action = Action::Help;
            return line;
        } else if (options && argument == u"--version") {
            line.action = Action::Version;
            return line;
        } else if (options && argument == u"--start") {
            line.start = true;
        } else if (options && (argument.startsWith(u"-psn_") || isQtOption(argument, &takesValue))) {
            skipValue = takesValue;
        } else if (options && argument.startsWith(u'-')) {
            line.action = Action::Refused;
            line.error = QCoreApplication::translate("CommandLine", "未知的选项：%1（quillbox --help 列出可用的选项）")
                             .arg(argument);
            return line;
        } else if (argument.startsWith(u"quillbox:", Qt::CaseInsensitive)) {
            line.texts << linksOfQuillboxUrl(argument);
        } else {
            line.texts << argument;
            typed = true;
        }
    }
    line.fromUrls = !typed && !line.texts.isEmpty();
    return line;
}

QString CommandLine::helpText()
{
    return QCoreApplication::translate("CommandLine",
        "用法：quillbox [--start] [链接 | quillbox://add?url=…]…\n"
        "\n"
        "把链接放进 Quillbox 的链接框；Quillbox 已在运行时交给它的窗口。\n"
        "\n"
        "  --start      用当前的预设和选项直接开始下载\n"
        "  --version    显示版本\n"
        "  --help       显示这段说明\n");
}

QStringList linksOfQuillboxUrl(const QString &address)
{
    // Read by hand rather than by QUrl, which in its tolerant mode takes one badly escaped value
    // ("%zz") for a sign that nothing was escaped, and so decodes none of the others.
    static const QRegularExpression form(
        u"^quillbox:(?://)?add/?\\?([^#]*)"_s, QRegularExpression::CaseInsensitiveOption);
    const QRegularExpressionMatch match = form.match(address);
    if (!match.hasMatch())
        return {};
    QStringList links;
    for (const QStringView item : QStringView(match.capturedView(1)).split(u'&')) {
        if (!item.startsWith(u"url="))
            continue;
        if (const QString value = percentDecoded(item.mid(4).toUtf8()); !value.isEmpty())
            links << value;
    }
    return links;
}

QString quillboxBookmarklet()
{
    // encodeURIComponent leaves nothing of the page's address ("&", "#", "?", any script) to be
    // read as part of the quillbox:// link around it.
    return u"javascript:location.href='quillbox://add?url='+encodeURIComponent(location.href)"_s;
}

QString Handover::fromText() const
{
    return QCoreApplication::translate("Handover", from.toUtf8().constData());
}

QByteArray Handover::encode() const
{
    const QJsonObject object { { u"start"_s, start }, { u"texts"_s, QJsonArray::fromStringList(texts) },
        { u"from"_s, from } };
    const QByteArray body = QJsonDocument(object).toJson(QJsonDocument::Compact);
    QByteArray message(Magic, 4);
    char length[4];
    qToBigEndian(quint32(body.size()), length);
    message.append(length, 4);
    return message + body;
}

qsizetype Handover::expectedSize(const QByteArray &bytes)
{
    if (bytes.size() < HeaderBytes)
        return bytes.startsWith(QByteArray(Magic).left(bytes.size())) ? -1 : 0;
    if (!bytes.startsWith(Magic))
        return 0;
    const quint32 length = qFromBigEndian<quint32>(bytes.constData() + 4);
    return qsizetype(length) > MaxBytes ? 0 : HeaderBytes + qsizetype(length);
}

std::optional<Handover> Handover::decode(const QByteArray &bytes)
{
    if (expectedSize(bytes) != bytes.size())
        return std::nullopt;
    QJsonParseError error;
    const QJsonDocument document = QJsonDocument::fromJson(bytes.mid(HeaderBytes), &error);
    if (error.error != QJsonParseError::NoError || !document.isObject())
        return std::nullopt;
    const QJsonObject object = document.object();
    Handover handover;
    handover.start = object.value(u"start").toBool();
    handover.from = object.value(u"from").toString().left(40);
    for (const QJsonValue &text : object.value(u"texts").toArray()) {
        if (text.isString())
            handover.texts << text.toString();
    }
    return handover;
}
