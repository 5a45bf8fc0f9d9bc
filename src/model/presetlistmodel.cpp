#include "model/presetlistmodel.h"

#include "engine/shellcommand.h"
#include "model/languagechange.h"
#include "model/rawvalue.h"

PresetListModel::PresetListModel(QObject *parent)
    : QAbstractListModel(parent)
{
    // Names and descriptions are translated when read.
    onLanguageChange(this, [this] { Q_EMIT dataChanged(index(0), index(rowCount() - 1)); });
}

int PresetListModel::rowCount(const QModelIndex &parent) const
{
    return parent.isValid() ? 0 : int(allDownloadPresets().size());
}

QVariant PresetListModel::data(const QModelIndex &index, int role) const
{
    if (!checkIndex(index, CheckIndexOption::IndexIsValid | CheckIndexOption::ParentIsInvalid))
        return QVariant();
    const DownloadPreset preset = allDownloadPresets().at(index.row());
    switch (role) {
    case PresetRole:
        return QVariant::fromValue(preset);
    case Qt::DisplayRole:
    case NameRole:
        return rawValue(preset);
    case SymbolRole:
        return symbolFor(preset);
    case DescriptionRole:
        return descriptionFor(preset);
    case ArgumentsRole:
        return argumentsFor(preset);
    default:
        return QVariant();
    }
}

QHash<int, QByteArray> PresetListModel::roleNames() const
{
    return { { PresetRole, "preset" }, { NameRole, "name" }, { SymbolRole, "symbol" },
        { DescriptionRole, "description" }, { ArgumentsRole, "arguments" } };
}

namespace {
struct PresetLook
{
    DownloadPreset preset;
    const char16_t *symbol;
    const char *description;
};

constexpr std::array<PresetLook, 6> looks { {
    { DownloadPreset::Default, u"wand.and.stars",
        QT_TRANSLATE_NOOP("PresetListModel", "使用 yt-dlp 默认参数，自动选择最佳格式") },
    { DownloadPreset::BestQuality, u"sparkles.tv", QT_TRANSLATE_NOOP("PresetListModel", "下载最高画质和音质的视频") },
    { DownloadPreset::BestAudio, u"waveform", QT_TRANSLATE_NOOP("PresetListModel", "下载最佳音质的音频") },
    { DownloadPreset::BestVideoAudio, u"rectangle.stack",
        QT_TRANSLATE_NOOP("PresetListModel", "分别下载最佳视频和音频并合并") },
    { DownloadPreset::AudioOnly, u"music.note", QT_TRANSLATE_NOOP("PresetListModel", "仅下载音频（MP3格式）") },
    { DownloadPreset::Custom, u"slider.horizontal.3", QT_TRANSLATE_NOOP("PresetListModel", "使用自定义参数") },
} };

} // namespace

QString PresetListModel::symbolFor(DownloadPreset preset)
{
    return QString::fromUtf16(entryFor(looks, &PresetLook::preset, preset).symbol);
}

QString PresetListModel::descriptionFor(DownloadPreset preset)
{
    return QCoreApplication::translate("PresetListModel", entryFor(looks, &PresetLook::preset, preset).description);
}

QString PresetListModel::argumentsFor(DownloadPreset preset)
{
    return (ShellCommand() << presetArguments(preset)).text();
}
