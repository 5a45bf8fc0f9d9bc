#pragma once

#include "model/downloadpreset.h"

#include <QAbstractListModel>

// The six presets in order, with what a preset card shows: name, icon, description; and the
// preset's yt-dlp words as a command carries them (empty for "默认" and "自定义").
class PresetListModel : public QAbstractListModel
{
    Q_OBJECT

public:
    explicit PresetListModel(QObject *parent = nullptr);
    enum Role {
        PresetRole = Qt::UserRole + 1,
        NameRole,
        SymbolRole,
        DescriptionRole,
        ArgumentsRole,
    };
    Q_ENUM(Role)

    using QAbstractListModel::QAbstractListModel;

    int rowCount(const QModelIndex &parent = QModelIndex()) const override;
    QVariant data(const QModelIndex &index, int role = Qt::DisplayRole) const override;
    QHash<int, QByteArray> roleNames() const override;

    static QString symbolFor(DownloadPreset preset);
    static QString descriptionFor(DownloadPreset preset);
    static QString argumentsFor(DownloadPreset preset);
};
