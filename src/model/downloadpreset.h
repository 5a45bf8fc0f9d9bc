#pragma once

#include <QList>
#include <QObject>
#include <QString>
#include <QStringList>

#include <optional>

#include "model/enums.h"

QString rawValue(DownloadPreset preset);
std::optional<DownloadPreset> downloadPresetFromRawValue(QStringView raw);

// The yt-dlp words of a preset. The lists are shared constants: reading them allocates nothing.
const QStringList &presetArguments(DownloadPreset preset);

// All presets in declaration order.
const QList<DownloadPreset> &allDownloadPresets();
