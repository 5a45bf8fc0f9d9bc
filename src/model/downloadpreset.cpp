#include "model/downloadpreset.h"

#include "model/rawvalue.h"

namespace {
constexpr std::array<StoredEnumName<DownloadPreset>, 6> presetNames { {
    { DownloadPreset::Default, "default", QT_TRANSLATE_NOOP("DownloadPreset", "默认") },
    { DownloadPreset::BestQuality, "bestQuality", QT_TRANSLATE_NOOP("DownloadPreset", "最佳画质") },
    { DownloadPreset::BestAudio, "bestAudio", QT_TRANSLATE_NOOP("DownloadPreset", "最佳音质") },
    { DownloadPreset::BestVideoAudio, "bestVideoAudio", QT_TRANSLATE_NOOP("DownloadPreset", "最佳视频+音频") },
    { DownloadPreset::AudioOnly, "audioOnly", QT_TRANSLATE_NOOP("DownloadPreset", "仅音频") },
    { DownloadPreset::Custom, "custom", QT_TRANSLATE_NOOP("DownloadPreset", "自定义") },
} };
} // namespace

QString rawValue(DownloadPreset preset)
{
    return labelIn(presetNames, "DownloadPreset", preset);
}

QString sourceLabel(DownloadPreset preset)
{
    return sourceLabelIn(presetNames, preset);
}

std::optional<DownloadPreset> downloadPresetFromRawValue(QStringView raw)
{
    return fromLabelIn(presetNames, raw);
}

QString storageKey(DownloadPreset preset)
{
    return keyIn(presetNames, preset);
}

std::optional<DownloadPreset> downloadPresetFromStorageKey(QStringView key)
{
    return fromKeyIn(presetNames, key);
}

const QStringList &presetArguments(DownloadPreset preset)
{
    // bestQuality and bestVideoAudio share one selector, and bestAudio differs from audioOnly
    // only by its "--audio-quality 0": both are intended.
    static const QStringList none;
    static const QStringList bestVideoAndAudio { QStringLiteral("-f"), QStringLiteral("bv*+ba/b") };
    static const QStringList bestAudio { QStringLiteral("-x"), QStringLiteral("--audio-format"), QStringLiteral("mp3"),
        QStringLiteral("--audio-quality"), QStringLiteral("0") };
    static const QStringList audioOnly { QStringLiteral("-x"), QStringLiteral("--audio-format"),
        QStringLiteral("mp3") };

    switch (preset) {
    case DownloadPreset::Default:
    case DownloadPreset::Custom:
        return none;
    case DownloadPreset::BestQuality:
    case DownloadPreset::BestVideoAudio:
        return bestVideoAndAudio;
    case DownloadPreset::BestAudio:
        return bestAudio;
    case DownloadPreset::AudioOnly:
        return audioOnly;
    }
    return none;
}

const QList<DownloadPreset> &allDownloadPresets()
{
    static const QList<DownloadPreset> all { DownloadPreset::Default, DownloadPreset::BestQuality,
        DownloadPreset::BestAudio, DownloadPreset::BestVideoAudio, DownloadPreset::AudioOnly, DownloadPreset::Custom };
    return all;
}

bool makesMp3(DownloadPreset preset)
{
    return preset == DownloadPreset::AudioOnly || preset == DownloadPreset::BestAudio;
}
