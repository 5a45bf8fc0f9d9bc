#include "views/presenters/formatpicker.h"

#include "engine/downloadmanager.h"
#include "engine/secretarguments.h"
#include "engine/shellcommand.h"
#include "engine/videoinfofetch.h"
#include "model/appstate.h"
#include "views/presenters/downloadoptionspresenter.h"

#include <algorithm>

using namespace Qt::StringLiterals;

namespace {
// The bytes of a streamed format as yt-dlp guesses them: its bitrate over the whole duration.
std::optional<qint64> guessedBytes(const VideoFormat &format, qint64 duration)
{
    if (format.tbr && *format.tbr > 0 && duration > 0)
        return qint64(double(duration) * *format.tbr * (1000.0 / 8));
    return std::nullopt;
}

// The size as yt-dlp's format table shows it: exact, its estimate "≈", or else "~" the guess.
QString sizeCell(const VideoFormat &format, qint64 duration)
{
    if (format.filesize)
        return (format.filesizeApproximate ? u"≈"_s : QString()) + FormatPicker::sizeText(*format.filesize);
    if (const auto guess = guessedBytes(format, duration))
        return u"~"_s + FormatPicker::sizeText(*guess);
    return {};
}

bool startsWithAny(const std::optional<QString> &codec, std::initializer_list<QStringView> prefixes)
{
    return codec && std::any_of(prefixes.begin(), prefixes.end(), [&](QStringView p) { return codec->startsWith(p); });
}

// Bytes, known or guessed; a very large number when neither is known.
double bytesOf(const VideoFormat &format, qint64 duration)
{
    return double(format.filesize.value_or(guessedBytes(format, duration).value_or(qint64(1) << 62)));
}
} // namespace

QList<bool> FormatPicker::fitting(const QList<VideoFormat> &formats, const QString &outcome, qint64 duration)
{
    QList<bool> fits(formats.size(), false);
    if (outcome == u"everywhere") {
        for (qsizetype i = 0; i < formats.size(); ++i) {
            const VideoFormat &f = formats.at(i);
            // A stream that is not there, or not named, does not stand in the way.
            const bool video = !f.vcodec || !f.hasVideo() || startsWithAny(f.vcodec, { u"avc1", u"h264" });
            const bool audio = !f.acodec || !f.hasAudio() || startsWithAny(f.acodec, { u"mp4a", u"aac" });
            fits[i] = kindOf(f) != Kind::Other && video && audio && (f.ext == u"mp4" || f.ext == u"m4a");
        }
        return fits;
    }
    if (outcome != u"quality" && outcome != u"smallest")
        return fits;
    // What the sorting puts first: one format with video and, when it has no sound, one audio.
    const bool smallest = outcome == u"smallest";
    const auto better = [&](const VideoFormat &a, const VideoFormat &b) {
        if (smallest)
            return bytesOf(a, duration) < bytesOf(b, duration);
        const auto worth
            = [](const VideoFormat &f) { return std::tuple(f.pixels(), f.fps.value_or(0), f.tbr.value_or(0)); };
        return worth(a) > worth(b);
    };
    qsizetype video = -1, audio = -1;
    for (qsizetype i = 0; i < formats.size(); ++i) {
        const Kind kind = kindOf(formats.at(i));
        qsizetype &best = kind == Kind::AudioOnly ? audio : video;
        if (kind != Kind::Other && (best < 0 || better(formats.at(i), formats.at(best))))
            best = i;
    }
    if (video >= 0)
        fits[video] = true;
    if (audio >= 0 && (video < 0 || kindOf(formats.at(video)) == Kind::VideoOnly))
        fits[audio] = true;
    return fits;
}

QString FormatPicker::outcomeHint() const
{
    const DownloadChoices choices = m_state ? m_state->downloadChoices() : DownloadChoices();
    const QString label = DownloadChoices::compatibilityLabel(choices.compatibility);
    if (label.isEmpty())
        return {};
    if (choices.compatibility == u"everywhere")
        return tr("✓ 标出的格式符合“%1”（%2）").arg(label, choices.outcomeText());
    return tr("✓ 标出的是“%1”会选的格式").arg(label);
}

void FormatPicker::refit()
{
    m_fits = fitting(m_formats, m_state ? m_state->downloadChoices().compatibility : QString(), m_duration);
}

FormatPicker::FormatPicker(QObject *parent)
    : FormatPicker(AppState::instance(), DownloadManager::instance(), parent)
{
}

FormatPicker::FormatPicker(AppState *state, DownloadManager *downloads, QObject *parent)
    : QAbstractListModel(parent)
    , m_state(state)
    , m_downloads(downloads)
{
    if (!m_state)
        return;
    connect(m_state, &AppState::downloadChoicesChanged, this, [this] {
        const QList<bool> before = m_fits;
        refit();
        if (m_fits != before && !m_formats.isEmpty())
            Q_EMIT dataChanged(index(0), index(int(m_formats.size()) - 1), { FitsRole });
        Q_EMIT outcomeHintChanged();
    });
}

FormatPicker::~FormatPicker()
{
    if (m_fetch)
        m_fetch->cancel();
}

FormatPicker::Kind FormatPicker::kindOf(const VideoFormat &format)
{
    if (!format.hasVideo())
        return format.hasAudio() ? Kind::AudioOnly : Kind::Other;
    return format.hasAudio() ? Kind::Combined : Kind::VideoOnly;
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
    m_fetch
        = DownloadOptionsPresenter::fetchAsTheForm(m_downloads, m_state, url, [self](const VideoInfoResult &result) {
              if (!self || result.cancelled)
                  return;
              self->m_fetch = nullptr;
              Q_EMIT self->loadingChanged();
              if (!result.ok)
                  self->setErrorText(result.error.localizedDescription);
              else if (result.info.formats.isEmpty())
                  self->setErrorText(tr("没有可以选择的格式"));
              else
                  self->setFormats(result.info.formats, result.info.duration);
          });
    Q_EMIT loadingChanged();
}

void FormatPicker::setFormats(const QList<VideoFormat> &formats, qint64 duration)
{
    const bool countChanges = formats.size() != m_formats.size();
    beginResetModel();
    m_formats = formats;
    m_duration = duration;
    m_selected.clear();
    refit();
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
    return tr("用所选格式「%1」替换现有的自定义参数「%2」？").arg(arguments(), maskSecrets(written));
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
        return format.codecs().join(u" + "_s);
    case SizeRole:
        return sizeCell(format, m_duration);
    case NoteRole:
        return format.formatNote.value_or(QString());
    case KindRole:
        return int(kindOf(format));
    case SelectedRole:
        return m_selected.contains(index.row());
    case FitsRole:
        return m_fits.value(index.row());
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
        { FitsRole, "fits" },
    };
}
