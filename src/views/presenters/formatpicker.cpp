#include "views/presenters/formatpicker.h"

#include "engine/downloadmanager.h"
#include "engine/secretarguments.h"
#include "engine/shellcommand.h"
#include "engine/videoinfofetch.h"
#include "model/appstate.h"

#include <algorithm>

using namespace Qt::StringLiterals;

namespace {
bool isNone(const std::optional<QString> &codec)
{
    return codec && *codec == u"none"_s;
}

QString codecsText(const VideoFormat &format)
{
    QStringList codecs;
    for (const auto &codec : { format.vcodec, format.acodec }) {
        if (codec && !codec->isEmpty() && !isNone(codec))
            codecs << *codec;
    }
    return codecs.join(u" + "_s);
}

// The size as yt-dlp's format table shows it: exact, its estimate "≈", or else "~" the bitrate
// over the whole duration (what yt-dlp itself guesses for streamed formats).
QString sizeCell(const VideoFormat &format, qint64 duration)
{
    if (format.filesize)
        return (format.filesizeApproximate ? u"≈"_s : QString()) + FormatPicker::sizeText(*format.filesize);
    if (format.tbr && *format.tbr > 0 && duration > 0)
        return u"~"_s + FormatPicker::sizeText(qint64(double(duration) * *format.tbr * (1000.0 / 8)));
    return {};
}
} // namespace

FormatPicker::FormatPicker(QObject *parent)
    : FormatPicker(AppState::instance(), DownloadManager::instance(), parent)
{
}

FormatPicker::FormatPicker(AppState *state, DownloadManager *downloads, QObject *parent)
    : QAbstractListModel(parent)
    , m_state(state)
    , m_downloads(downloads)
{
}

FormatPicker::~FormatPicker()
{
    if (m_fetch)
        m_fetch->cancel();
}

FormatPicker::Kind FormatPicker::kindOf(const VideoFormat &format)
{
    // Unknown codecs (yt-dlp prints null for a bare file) may hold both streams.
    if (isNone(format.vcodec) && isNone(format.acodec))
        return Kind::Other;
    if (isNone(format.vcodec))
        return Kind::AudioOnly;
    if (isNone(format.acodec))
        return Kind::VideoOnly;
    return Kind::Combined;
}

QString FormatPicker::sizeText(qint64 bytes)
{
    double value = double(bytes);
    const char *units[] = { "B", "KiB", "MiB", "GiB", "TiB", "PiB", "EiB" };
    int unit = 0;
    while (value >= 1024 && unit < 6) {
        value /= 1024;
        ++unit;
    }
    return QString::number(value, 'f', 2) + QLatin1String(units[unit]);
}

QString FormatPicker::arguments() const
{
    if (m_selected.isEmpty())
        return {};
    QStringList ids;
    for (int row : m_selected)
        ids << m_formats.at(row).formatId;
    // The custom arguments are shell words: the choice is written as a command would show it.
    return (ShellCommand() << u"-f"_s << ids.join(u'+')).text();
}

void FormatPicker::fetch(const QString &url)
{
    if (m_fetch)
        m_fetch->cancel();
    setFormats({});
    setErrorText({});
    if (!m_downloads)
        return;
    QPointer<FormatPicker> self(this);
    m_fetch = m_downloads->fetchVideoInfo(url, m_state && m_state->useCookies(), [self](const VideoInfoResult &result) {
        if (!self || result.cancelled)
            return;
        if (result.ok && self->m_state)
            self->m_state->setKnownVideo(result.info.templateFields());
        self->m_fetch = nullptr;
        Q_EMIT self->loadingChanged();
        if (!result.ok)
            self->setErrorText(result.error.localizedDescription);
        else if (result.info.formats.isEmpty())
            self->setErrorText(u"没有可以选择的格式"_s);
        else
            self->setFormats(result.info.formats, result.info.duration);
    }, m_state ? m_state->downloadChoices().networkWords() : QStringList());
    Q_EMIT loadingChanged();
}

void FormatPicker::setFormats(const QList<VideoFormat> &formats, qint64 duration)
{
    const bool countChanges = formats.size() != m_formats.size();
    beginResetModel();
    m_formats = formats;
    m_duration = duration;
    m_selected.clear();
    endResetModel();
    Q_EMIT selectionChanged();
    if (countChanges)
        Q_EMIT countChanged();
}

void FormatPicker::toggle(int row)
{
    if (row < 0 || row >= m_formats.size())
        return;
    const Kind kind = kindOf(m_formats.at(row));
    if (kind == Kind::Other)
        return;
    if (m_selected.contains(row)) {
        QList<int> rows = m_selected;
        rows.removeOne(row);
        select(rows);
        return;
    }
    if (kind == Kind::Combined) {
        select({ row });
        return;
    }
    QList<int> rows;
    for (int chosen : std::as_const(m_selected)) {
        const Kind other = kindOf(m_formats.at(chosen));
        if (other != Kind::Combined && other != kind)
            rows << chosen;
    }
    rows << row;
    std::sort(rows.begin(), rows.end(), [this](int a, int b) {
        return kindOf(m_formats.at(a)) == Kind::VideoOnly && kindOf(m_formats.at(b)) == Kind::AudioOnly;
    });
    select(rows);
}

bool FormatPicker::apply()
{
    if (m_selected.isEmpty() || !m_state)
        return false;
    m_state->setCustomArguments(arguments());
    m_state->setSelectedPreset(DownloadPreset::Custom);
    return true;
}

QString FormatPicker::replaceQuestion() const
{
    const QString written = m_state ? m_state->customArguments().trimmed() : QString();
    if (m_selected.isEmpty() || written.isEmpty() || written == arguments())
        return {};
    return u"用所选格式「%1」替换现有的自定义参数「%2」？"_s.arg(arguments(), maskSecrets(written));
}

void FormatPicker::select(const QList<int> &rows)
{
    const QList<int> before = m_selected;
    m_selected = rows;
    for (int row : before + rows) {
        if (before.contains(row) != rows.contains(row))
            Q_EMIT dataChanged(index(row), index(row), { SelectedRole });
    }
    Q_EMIT selectionChanged();
}

void FormatPicker::setErrorText(const QString &text)
{
    if (m_errorText == text)
        return;
    m_errorText = text;
    Q_EMIT errorTextChanged();
}

int FormatPicker::rowCount(const QModelIndex &parent) const
{
    return parent.isValid() ? 0 : int(m_formats.size());
}

QVariant FormatPicker::data(const QModelIndex &index, int role) const
{
    if (!checkIndex(index, CheckIndexOption::IndexIsValid | CheckIndexOption::ParentIsInvalid))
        return {};
    const VideoFormat &format = m_formats.at(index.row());
    switch (role) {
    case FormatIdRole:
    case Qt::DisplayRole:
        return format.formatId;
    case ExtRole:
        return format.ext;
    case ResolutionRole:
        return format.resolution.value_or(QString());
    case FpsRole:
        return format.fps ? QString::number(*format.fps, 'g', 6) : QString();
    case CodecsRole:
        return codecsText(format);
    case SizeRole:
        return sizeCell(format, m_duration);
    case NoteRole:
        return format.formatNote.value_or(QString());
    case KindRole:
        return int(kindOf(format));
    case SelectedRole:
        return m_selected.contains(index.row());
    default:
        return {};
    }
}

QHash<int, QByteArray> FormatPicker::roleNames() const
{
    return {
        { FormatIdRole, "formatId" },
        { ExtRole, "ext" },
        { ResolutionRole, "resolution" },
        { FpsRole, "fps" },
        { CodecsRole, "codecs" },
        { SizeRole, "size" },
        { NoteRole, "note" },
        { KindRole, "kind" },
        { SelectedRole, "selected" },
    };
}
