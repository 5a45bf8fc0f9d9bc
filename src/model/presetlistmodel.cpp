#include "model/presetlistmodel.h"

using namespace Qt::StringLiterals;

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
    default:
        return QVariant();
    }
}

QHash<int, QByteArray> PresetListModel::roleNames() const
{
    return { { PresetRole, "preset" }, { NameRole, "name" }, { SymbolRole, "symbol" },
        { DescriptionRole, "description" } };
}

QString PresetListModel::symbolFor(DownloadPreset preset)
{
    switch (preset) {
    case DownloadPreset::Default:
        return u"wand.and.stars"_s;
    case DownloadPreset::BestQuality:
        return u"sparkles.tv"_s;
    case DownloadPreset::BestAudio:
        return u"waveform"_s;
    case DownloadPreset::BestVideoAudio:
        return u"rectangle.stack"_s;
    case DownloadPreset::AudioOnly:
        return u"music.note"_s;
    case DownloadPreset::Custom:
        return u"slider.horizontal.3"_s;
    }
    return QString();
}

QString PresetListModel::descriptionFor(DownloadPreset preset)
{
    switch (preset) {
    case DownloadPreset::Default:
        return u"使用 yt-dlp 默认参数，自动选择最佳格式"_s;
    case DownloadPreset::BestQuality:
        return u"下载最高画质和音质的视频"_s;
    case DownloadPreset::BestAudio:
        return u"下载最佳音质的音频"_s;
    case DownloadPreset::BestVideoAudio:
        return u"分别下载最佳视频和音频并合并"_s;
    case DownloadPreset::AudioOnly:
        return u"仅下载音频（MP3格式）"_s;
    case DownloadPreset::Custom:
        return u"使用自定义参数"_s;
    }
    return QString();
}
