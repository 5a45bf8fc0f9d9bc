#pragma once

#include <QString>
#include <QStringList>

// The rules of the links editor.

// What the editor's text holds: the links to queue, in order, and the lines that are not links.
struct LinkInput
{
    QStringList links;
    QStringList rejected; // per line, the words that are not links, joined by a space
    // Lines left out for being longer than MaxLineLength, and links past MaxLinks.
    int tooLong = 0;
    int overLimit = 0;
};

// What any way in takes at once: a line longer than this is left out whole (10 MB on one line is
// nobody's list of links), and links past the limit are left out.
constexpr qsizetype MaxLineLength = 8192;
constexpr qsizetype MaxLinks = 10000;

// One or more links per line: lines are split at any line break and into words at spaces and
// tabs. A word is a link when it has a scheme ("https://…") or a dot-separated host
// ("youtu.be/…") and does not begin with "-"; other words are rejected, never queued. A link
// given twice is queued twice.
LinkInput readLinkInput(const QString &input);

// True for a word that can be queued as a link.
bool isLink(const QString &word);

// The first line as typed (not trimmed), or the whole text when it has no line break.
QString firstLineOf(const QString &input);

// The editor's text after pasting or dropping `added`: on a line of its own.
QString withAddedText(const QString &current, const QString &added);
