#pragma once

#include <QByteArray>
#include <QMetaType>
#include <QString>
#include <QStringList>

#include <optional>

// What `quillbox [--start] [LINK | quillbox://add?url=…]…` asks for. The texts are only ever
// candidates: whoever takes them reads them with the links box's rule, so none becomes an option.
struct CommandLine
{
    enum class Action { Run, Help, Version, Refused };

    Action action = Action::Run;
    // Queue the links with the form as it is, rather than only put them into the links box.
    bool start = false;
    // The links given: each argument as it is, a quillbox:// URL's `url=` values decoded.
    QStringList texts;
    // Why the command line was refused.
    QString error;
    // Every link came in a quillbox:// URL (the desktop opened one), not typed as an argument.
    bool fromUrls = false;

    // `arguments` without the program's name. "--" ends the options. Qt's own options ("-style
    // Fusion", "-session ID" from a session manager) and macOS's "-psn_…" are left to Qt.
    static CommandLine parse(const QStringList &arguments);
    static QString helpText();
};

// The `url=` values of "quillbox://add?url=…&url=…", decoded; none for any other address.
QStringList linksOfQuillboxUrl(const QString &address);

// A bookmark's address that sends the page it is clicked on to Quillbox as a quillbox:// link.
QString quillboxBookmarklet();

// What a second start hands to the first over the local socket: "QBX1", the length of what follows
// (4 bytes, big-endian), then JSON {"start": bool, "texts": [...], "from": "..."}.
struct Handover
{
    bool start = false;
    QStringList texts;
    // Where the links came from, for the log: the Chinese word ("命令行", "链接"), so that a
    // Quillbox in any language reads what another one sent.
    QString from;

    // The largest message taken: a longer one is refused whole.
    static constexpr qsizetype MaxBytes = 4 * 1024 * 1024;

    // `from` in the interface's language.
    QString fromText() const;

    QByteArray encode() const;
    // A whole message, or nothing for anything else (garbage, too long, cut short).
    static std::optional<Handover> decode(const QByteArray &bytes);
    // How many bytes the message at the start of `bytes` needs in all, once its header is there;
    // -1 while it is not, 0 when the header is not ours or says too much.
    static qsizetype expectedSize(const QByteArray &bytes);
};

Q_DECLARE_METATYPE(Handover)
