#include "app/commandline.h"

#include <QCoreApplication>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QUrl>
#include <QUrlQuery>
#include <QtEndian>

using namespace Qt::StringLiterals;

namespace {
constexpr char Magic[] = "QBX1";
constexpr qsizetype HeaderBytes = 8;
} // namespace

CommandLine CommandLine::parse(const QStringList &arguments)
{
    CommandLine line;
    bool options = true;
    for (const QString &argument : arguments) {
        if (options && argument == u"--") {
            options = false;
        } else if (options && (argument == u"--help" || argument == u"-h")) {
            line.action = Action::Help;
            return line;
        } else if (options && argument == u"--version") {
            line.action = Action::Version;
            return line;
        } else if (options && argument == u"--start") {
            line.start = true;
        } else if (options && argument.startsWith(u'-')) {
            line.action = Action::Refused;
            line.error = QCoreApplication::translate("CommandLine", "未知的选项：%1（quillbox --help 列出可用的选项）")
                             .arg(argument);
            return line;
        } else if (argument.startsWith(u"quillbox:", Qt::CaseInsensitive)) {
            line.texts << linksOfQuillboxUrl(argument);
        } else {
            line.texts << argument;
        }
    }
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
    const QUrl url(address, QUrl::StrictMode);
    if (!url.isValid() || url.scheme().compare(u"quillbox", Qt::CaseInsensitive) != 0
        || (url.host() != u"add" && url.path() != u"add" && url.path() != u"//add"))
        return {};
    QStringList links;
    for (const QString &value : QUrlQuery(url).allQueryItemValues(u"url"_s, QUrl::FullyDecoded)) {
        if (!value.isEmpty())
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
