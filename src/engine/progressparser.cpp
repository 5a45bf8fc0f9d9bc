#include "engine/progressparser.h"

#include <QCoreApplication>
#include <QRegularExpression>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace {
struct Expressions
{
    QRegularExpression percent { u"([0-9]+\\.?[0-9]*)%"_s };
    QRegularExpression speed { u"at\\s+([0-9]+\\.?[0-9]*[KMG]iB/s)"_s };
    QRegularExpression size { u"([0-9]+\\.?[0-9]*[KMG]iB)"_s };

    Expressions()
    {
        percent.optimize();
        speed.optimize();
        size.optimize();
    }
};

const Expressions &expressions()
{
    static const Expressions compiled;
    return compiled;
}

// Fills the fields still empty in `update` from `line`.
void readProgressLine(const QString &line, ProgressUpdate &update)
{
    const Expressions &re = expressions();
    if (!update.progress) {
        const QRegularExpressionMatch percent = re.percent.match(line);
        bool ok = false;
        const double value = percent.hasMatch() ? percent.capturedView(1).toDouble(&ok) : 0.0;
        // A file name such as "99999999999999999999%" matches too; the fraction stays in 0–1.
        if (ok)
            update.progress = std::clamp(value / 100.0, 0.0, 1.0);
    }
    if (!update.speed) {
        const QRegularExpressionMatch speed = re.speed.match(line);
        if (speed.hasMatch()) {
            QString text = speed.captured(0);
            text.remove(u"at"_s);
            update.speed = text.trimmed();
        }
    }
    if (!update.size) {
        const QRegularExpressionMatch size = re.size.match(line);
        if (size.hasMatch())
            update.size = size.captured(0);
    }
}

bool anyContains(const QStringList &lines, QStringView needle)
{
    return std::any_of(lines.cbegin(), lines.cend(), [needle](const QString &line) { return line.contains(needle); });
}
} // namespace

ProgressUpdate parseProgress(const QStringList &lines)
{
    ProgressUpdate update;
    if (anyContains(lines, u"[download]")) {
        // A later line overrides an earlier one field by field, so the first match of each
        // field counted from the end is the one that stands.
        for (auto line = lines.crbegin(); line != lines.crend(); ++line) {
            if (line->contains(u'%'))
                readProgressLine(*line, update);
            if (update.progress && update.speed && update.size)
                break;
        }
    }
    update.errorMessage = knownFailure(lines);
    return update;
}

std::optional<QString> knownFailure(const QStringList &lines)
{
    if (!anyContains(lines, u"ERROR") && !anyContains(lines, u"error"))
        return std::nullopt;
    if (anyContains(lines, u"This video is available only for registered users")
        || anyContains(lines, u"Login required"))
        return QCoreApplication::translate("ProgressParser", "需要登录或 Cookie 已过期");
    if (anyContains(lines, u"is not a valid URL"))
        return QCoreApplication::translate("ProgressParser", "无效的 URL");
    return std::nullopt;
}
