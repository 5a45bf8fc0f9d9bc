#pragma once

#include <QString>
#include <QStringList>

// The words of a custom-arguments text, or why it cannot be used.
struct ShellWords
{
    QStringList words;
    QString error; // empty when the text could be split

    bool ok() const { return error.isEmpty(); }
};

// Splits `text` into words as a POSIX shell splits the arguments of a command, without running
// anything: blanks and newlines separate words; single quotes, double quotes and backslashes
// quote; a leading "~" or "~user" becomes that home folder; $NAME and ${NAME} become the
// variable's value (split into words when unquoted, as a shell does). Command substitution
// ("$(…)" or backticks) is refused, as is an open quote. Everything else — ; | & < > ( ) { } * ?
// [ ] # — is an ordinary character, so nothing in the text can act as shell code, and no word is
// matched against file names.
ShellWords splitShellWords(const QString &text);
