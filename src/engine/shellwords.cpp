#include "engine/shellwords.h"

#include <QCoreApplication>
#include <QDir>

#include <pwd.h>

using namespace Qt::StringLiterals;

namespace {
bool isBlank(QChar c)
{
    return c == u' ' || c == u'\t' || c == u'\n';
}

bool isNameStart(QChar c)
{
    return c.unicode() < 128 && (c.isLetter() || c == u'_');
}

bool isNameChar(QChar c)
{
    return c.unicode() < 128 && (c.isLetterOrNumber() || c == u'_');
}

QString homeOf(const QString &user)
{
    if (user.isEmpty()) {
        const QString home = qEnvironmentVariable("HOME");
        return home.isEmpty() ? QDir::homePath() : home;
    }
    const passwd *entry = ::getpwnam(user.toLocal8Bit().constData());
    return entry && entry->pw_dir ? QString::fromLocal8Bit(entry->pw_dir) : QString();
}

class Splitter
{
public:
    explicit Splitter(const QString &text)
        : m_text(text)
    {
    }

    ShellWords run()
    {
        while (m_at < m_text.size() && m_result.ok())
            step();
        if (!m_result.ok())
            return { {}, m_result.error };
        endWord();
        return m_result;
    }

private:
    QChar at(qsizetype i) const { return i < m_text.size() ? m_text.at(i) : QChar(); }

    void fail(const QString &why)
    {
        if (m_result.ok())
            m_result.error = why;
    }

    void append(QStringView text)
    {
        m_word += text;
        m_exists = true;
    }

    void endWord()
    {
        if (m_exists)
            m_result.words.append(m_word);
        m_word.clear();
        m_exists = false;
    }

    void step()
    {
        const QChar c = m_text.at(m_at);
        // Only a "~" that starts a word of the text itself; one after an expansion stays.
        const bool wordStart = !m_exists && (m_at == 0 || isBlank(m_text.at(m_at - 1)));
        if (c == u'~' && wordStart && expandTilde())
            return;
        if (isBlank(c)) {
            endWord();
            ++m_at;
        } else if (c == u'\\') {
            if (m_at + 1 >= m_text.size()) {
                append(u"\\"); // nothing left to escape: a shell keeps it
            } else if (m_text.at(m_at + 1) != u'\n') { // backslash-newline joins lines
                append(QStringView(m_text).sliced(m_at + 1, 1));
            }
            m_at += 2;
        } else if (c == u'\'') {
            const qsizetype close = m_text.indexOf(u'\'', m_at + 1);
            if (close < 0)
                return fail(QCoreApplication::translate("ShellWords", "自定义参数中的单引号没有闭合"));
            append(QStringView(m_text).sliced(m_at + 1, close - m_at - 1));
            m_at = close + 1;
        } else if (c == u'"') {
            doubleQuoted();
        } else if (c == u'`') {
            fail(commandSubstitution());
        } else if (c == u'$') {
            variable(false);
        } else {
            append(QStringView(m_text).sliced(m_at, 1));
            ++m_at;
        }
    }

    static QString commandSubstitution()
    {
        return QCoreApplication::translate("ShellWords", "自定义参数中不能有命令替换（$(…) 或反引号），它不会被执行");
    }

    // "~" or "~user" up to the first "/" or the end of the word, when none of it is quoted.
    bool expandTilde()
    {
        qsizetype end = m_at + 1;
        while (end < m_text.size() && m_text.at(end) != u'/' && !isBlank(m_text.at(end))) {
            const QChar c = m_text.at(end);
            if (c == u'\'' || c == u'"' || c == u'\\' || c == u'$' || c == u'`')
                return false;
            ++end;
        }
        const QString home = homeOf(m_text.mid(m_at + 1, end - m_at - 1));
        if (home.isEmpty())
            return false;
        append(home);
        m_at = end;
        return true;
    }

    void doubleQuoted()
    {
        m_exists = true; // "" is an empty word
        ++m_at;
        while (m_result.ok()) {
            if (m_at >= m_text.size())
                return fail(QCoreApplication::translate("ShellWords", "自定义参数中的双引号没有闭合"));
            const QChar c = m_text.at(m_at);
            if (c == u'"') {
                ++m_at;
                return;
            }
            if (c == u'\\') {
                const QChar next = at(m_at + 1);
                if (next == u'$' || next == u'`' || next == u'"' || next == u'\\') {
                    append(QStringView(m_text).sliced(m_at + 1, 1));
                    m_at += 2;
                } else if (next == u'\n') {
                    m_at += 2;
                } else {
                    append(u"\\");
                    ++m_at;
                }
            } else if (c == u'`') {
                return fail(commandSubstitution());
            } else if (c == u'$') {
                variable(true);
            } else {
                append(QStringView(m_text).sliced(m_at, 1));
                ++m_at;
            }
        }
    }

    // At a "$": $NAME or ${NAME}; any other "$" is an ordinary character.
    void variable(bool quoted)
    {
        const QChar next = at(m_at + 1);
        QString name;
        if (next == u'(') {
            return fail(commandSubstitution());
        } else if (next == u'{') {
            const qsizetype close = m_text.indexOf(u'}', m_at + 2);
            name = close < 0 ? QString() : m_text.mid(m_at + 2, close - m_at - 2);
            if (name.isEmpty() || !isNameStart(name.front()) || !std::all_of(name.cbegin(), name.cend(), isNameChar))
                return fail(QCoreApplication::translate("ShellWords", "自定义参数中的 ${…} 只能写变量名"));
            m_at = close + 1;
        } else if (isNameStart(next)) {
            qsizetype end = m_at + 1;
            while (end < m_text.size() && isNameChar(m_text.at(end)))
                ++end;
            name = m_text.mid(m_at + 1, end - m_at - 1);
            m_at = end;
        } else {
            append(u"$");
            ++m_at;
            return;
        }
        const QString value = qEnvironmentVariable(name.toLatin1().constData());
        if (quoted) {
            append(value);
            return;
        }
        // Unquoted, the value is split at blanks like the rest of the text.
        for (const QChar c : value) {
            if (isBlank(c))
                endWord();
            else
                append(QStringView(&c, 1));
        }
    }

    const QString &m_text;
    qsizetype m_at = 0;
    QString m_word;
    bool m_exists = false;
    ShellWords m_result;
};
} // namespace

ShellWords splitShellWords(const QString &text)
{
    return Splitter(text).run();
}
