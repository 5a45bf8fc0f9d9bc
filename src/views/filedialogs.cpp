#include "views/filedialogs.h"

#include "engine/tooltext.h"
#include "views/colors.h"

#include <QColor>
#include <QDir>
#include <QFileInfo>
#include <QQuickItem>
#include <QWindow>

using namespace Qt::StringLiterals;

QUrl FileDialogs::startFolder(const QString &path) const
{
    QString folder = expandHome(path.trimmed(), QDir::homePath());
    if (!QDir::isAbsolutePath(folder))
        return QUrl::fromLocalFile(QDir::homePath());
    folder = QDir::cleanPath(folder);
    const QString given = folder;
    while (!QFileInfo(folder).isDir()) {
        const QString above = QFileInfo(folder).absolutePath();
        if (above == folder)
            break;
        folder = above;
    }
    if (QDir(folder).isRoot() && folder != given)
        folder = QDir::homePath();
    return QUrl::fromLocalFile(folder);
}

QObject *FileDialogs::fallbackOf(QObject *dialog) const
{
    if (!dialog)
        return nullptr;
    // Qt makes it as the dialog's grandchild and moves it to the window when it opens.
    QObjectList candidates;
    for (QObject *child : dialog->findChildren<QObject *>())
        candidates << child;
    if (auto *window = qobject_cast<QWindow *>(dialog->property("parentWindow").value<QObject *>()))
        candidates << window->children();
    const QString title = dialog->property("title").toString();
    for (QObject *candidate : std::as_const(candidates)) {
        if ((candidate->inherits("QQuickFileDialogImpl") || candidate->inherits("QQuickFolderDialogImpl"))
            && candidate->property("visible").toBool() && candidate->property("title").toString() == title)
            return candidate;
    }
    return nullptr;
}

namespace {
// `item` and every item under it.
void collectItems(QQuickItem *item, QObjectList &items)
{
    items << item;
    for (QQuickItem *child : item->childItems())
        collectItems(child, items);
}

// Qt's folder dialog marks the first folder inside the one it shows and chooses that one (and,
// in a folder with none inside, nothing: its button stays grey). Here it chooses the folder it
// shows, the one in its path bar, until the user marks one inside.
class ShownFolderChoice : public QObject
{
    Q_OBJECT

public:
    explicit ShownFolderChoice(QObject *dialog)
        : QObject(dialog)
    {
        connect(dialog, SIGNAL(currentFolderChanged(QUrl)), this, SLOT(choose()));
        choose();
    }

public Q_SLOTS:
    void choose()
    {
        QObject *dialog = parent();
        if (auto *list = dialog->property("contentItem").value<QObject *>())
            list->setProperty("currentIndex", -1);
        dialog->setProperty("selectedFolder", dialog->property("currentFolder"));
    }
};
} // namespace

void FileDialogs::fitFallback(QObject *dialog) const
{
    QObject *fallback = fallbackOf(dialog);
    if (!fallback)
        return;
    if (fallback->inherits("QQuickFolderDialogImpl")) {
        if (auto *choice = fallback->findChild<ShownFolderChoice *>(QString(), Qt::FindDirectChildrenOnly))
            choice->choose();
        else
            new ShownFolderChoice(fallback);
    }
    // The controls under its footer (a plain rectangle) would keep the window's palette: each of
    // them gets the palette too. Controls made later (the entries of a folder) inherit it.
    QObjectList owners { fallback };
    if (auto *content = fallback->property("contentItem").value<QQuickItem *>(); content && content->parentItem())
        collectItems(content->parentItem(), owners);
    // Light greys under near-black text, the accent for the marked entry (Qt tints it lightly, so
    // its text stays dark).
    const QString ink = u"#1F2328"_s;
    const std::pair<const char *, QString> roles[] = {
        { "window", u"#F6F8FA"_s },
        { "windowText", ink },
        { "base", u"#FFFFFF"_s },
        { "alternateBase", u"#F6F8FA"_s },
        { "text", ink },
        { "button", u"#EAEEF2"_s },
        { "buttonText", ink },
        { "brightText", u"#FFFFFF"_s },
        { "light", u"#FFFFFF"_s },
        { "midlight", u"#EAEEF2"_s },
        { "mid", u"#D0D7DE"_s },
        { "dark", u"#8C959F"_s },
        { "shadow", u"#000000"_s },
        { "highlight", u"#FF0054"_s },
        { "highlightedText", ink },
        { "placeholderText", u"#6E7781"_s },
        { "toolTipBase", u"#FFFFFF"_s },
        { "toolTipText", ink },
        { "link", u"#0969DA"_s },
    };
    for (QObject *owner : std::as_const(owners)) {
        if (auto *palette = owner->property("palette").value<QObject *>()) {
            for (const auto &[role, hex] : roles)
                palette->setProperty(role, colorFromHex(hex));
        }
    }
}

#include "filedialogs.moc"
