#pragma once

#include <QList>
#include <QObject>
#include <QString>
#include <QStringList>

#include <optional>

#include "model/enums.h"

// The label a preset is shown by, in the interface's language. Read back from a label, only the
// Chinese one is known: what stores and settings kept before keys.
QString rawValue(DownloadPreset preset);
std::optional<DownloadPreset> downloadPresetFromRawValue(QStringView raw);
// The Chinese label whatever the interface's language: for the system log, which stays Chinese.
QString sourceLabel(DownloadPreset preset);
// The key a preset is stored by ("default", "bestQuality", …), which never changes.
QString storageKey(DownloadPreset preset);
std::optional<DownloadPreset> downloadPresetFromStorageKey(QStringView key);

// The yt-dlp words of a preset. The lists are shared constants: reading them allocates nothing.
const QStringList &presetArguments(DownloadPreset preset);
// The preset extracts the audio into an MP3, whatever format was downloaded.
bool makesMp3(DownloadPreset preset);

// All presets in declaration order.
const QList<DownloadPreset> &allDownloadPresets();
