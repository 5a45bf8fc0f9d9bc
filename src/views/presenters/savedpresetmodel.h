#pragma once

#include "store/taskstore.h"

#include <QAbstractListModel>
#include <QPointer>
#include <QtQml/qqmlregistration.h>

class AppState;
class QueueMemory;

// "我的预设": the presets the user saved, each a name, yt-dlp arguments and the download options
// that were set when it was made, in the order they were made. A change shows at once and is written to the store
// behind it; a preset the store could not keep stays for this run and is named in `storeError`.
class SavedPresetModel : public QAbstractListModel
{
    Q_OBJECT
    QML_ELEMENT
    // The stored presets have been read; until then nothing can be added.
    Q_PROPERTY(bool loaded READ isLoaded NOTIFY loadedChanged)
    // Which presets are not stored, in words; empty when all are.
    Q_PROPERTY(QString storeError READ storeError NOTIFY storeErrorChanged)

public:
    enum Role {
        PresetIdRole = Qt::UserRole + 1,
        NameRole,
        ArgumentsRole,
        OptionsRole, // the download options' summary, or empty when it keeps none
        // Its first write has not been answered yet: it cannot be changed until it is.
        SavingRole,
    };
    Q_ENUM(Role)

    static constexpr int MaxNameLength = 40;

    // Bound to the process-wide store and AppState; starts reading the stored presets.
    explicit SavedPresetModel(QObject *parent = nullptr);
    SavedPresetModel(QueueMemory *memory, AppState *state, QObject *parent = nullptr);

    int rowCount(const QModelIndex &parent = QModelIndex()) const override;
    QVariant data(const QModelIndex &index, int role = Qt::DisplayRole) const override;
    QHash<int, QByteArray> roleNames() const override;

    bool isLoaded() const { return m_loaded; }
    QString storeError() const { return m_storeError; }

    // Each returns why the change was refused, in words, or an empty text when it was made.
    // Names and arguments are taken trimmed.
    Q_INVOKABLE QString add(const QString &name, const QString &arguments);
    Q_INVOKABLE QString rename(int row, const QString &name);
    Q_INVOKABLE QString setArguments(int row, const QString &arguments);
    Q_INVOKABLE QString remove(int row);
    // The download form takes the preset's arguments under "自定义" and its download options, and
    // the download page shows.
    Q_INVOKABLE void choose(int row);

Q_SIGNALS:
    void loadedChanged();
    void storeErrorChanged();

private:
    struct Entry
    {
        SavedPreset preset;
        // Names the entry in answers from the store, which may come after rows have moved.
        quint64 key = 0;
        bool saving = false;
        bool unsaved = false;
    };

    void load(const QList<SavedPreset> &presets);
    QString checkName(const QString &name, int exceptRow) const;
    static QString checkArguments(const QString &arguments, const DownloadChoices &choices);
    QString checkChangeable(int row) const;
    void store(int row);
    void stored(quint64 key, bool inserted, qint64 id);
    int rowOf(quint64 key) const;
    void updateStoreError();

    QPointer<QueueMemory> m_memory;
    AppState *m_state;
    QList<Entry> m_entries;
    quint64 m_nextKey = 1;
    bool m_loaded = false;
    QString m_storeError;
};
