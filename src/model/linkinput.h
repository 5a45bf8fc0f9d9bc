#pragma once

#include <QString>
#include <QStringList>

// The rules of the links editor.

// One link per line: lines are split at any line break, each trimmed of spaces and tabs, and
// empty ones dropped. Nothing else is checked; a line given twice is queued twice.
QStringList linksFromInput(const QString &input);

// The first line as typed (not trimmed), or the whole text when it has no line break.
QString firstLineOf(const QString &input);

// The editor's text after pasting or dropping `added`: on a line of its own.
QString withAddedText(const QString &current, const QString &added);
