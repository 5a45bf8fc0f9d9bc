#include "views/presenters/savedpresetmodel.h"

#include "engine/shellwords.h"
#include "model/appstate.h"
#include "model/downloadpreset.h"
#include "model/languagechange.h"
#include "store/queuememory.h"

using namespace Qt::StringLiterals;

SavedPresetModel::SavedPresetModel(QObject *parent)
    : SavedPresetModel(QueueMemory::instance(), AppState::instance(), parent)
{
}

SavedPresetModel::SavedPresetModel(QueueMemory *memory, AppState *state, QObject *parent)
    : QAbstractListModel(parent)
    , m_memory(memory)
    , m_state(state)
{
    if (m_memory)
        m_memory->loadPresets(this, [this](const QList<SavedPreset> &presets) { load(presets); });
    // The rows' option summaries and the store's error are made in the language of the moment.
    onLanguageChange(this, [this] {
        if (rowCount() > 0)
            Q_EMIT dataChanged(index(0), index(rowCount() - 1));
        updateStoreError();
    });
}

int SavedPresetModel::rowCount(const QModelIndex &parent) const
{
    return parent.isValid() ? 0 : int(m_entries.size());
}

QVariant SavedPresetModel::data(const QModelIndex &index, int role) const
{
    if (!checkIndex(index, CheckIndexOption::IndexIsValid | CheckIndexOption::ParentIsInvalid))
        return QVariant();
    const Entry &entry = m_entries.at(index.row());
    switch (role) {
    case PresetIdRole:
        return entry.preset.id;
    case Qt::DisplayRole:
    case NameRole:
        return entry.preset.name;
    case ArgumentsRole:
        return entry.preset.arguments;
    case OptionsRole:
        return entry.preset.choices.isDefault() ? QString() : entry.preset.choices.summary();
    case SavingRole:
        return entry.saving;
    default:
        return QVariant();
    }
}

QHash<int, QByteArray> SavedPresetModel::roleNames() const
{
    return { { PresetIdRole, "presetId" }, { NameRole, "name" }, { ArgumentsRole, "arguments" },
        { OptionsRole, "options" }, { SavingRole, "saving" } };
}

void SavedPresetModel::load(const QList<SavedPreset> &presets)
{
    if (!presets.isEmpty()) {
        beginInsertRows(QModelIndex(), 0, int(presets.size()) - 1);
        QList<Entry> entries;
        entries.reserve(presets.size());
        for (const SavedPreset &preset : presets)
            entries.append({ preset, m_nextKey++ });
        m_entries = entries + m_entries;
        endInsertRows();
    }
    m_loaded = true;
    Q_EMIT loadedChanged();
}

QString SavedPresetModel::checkName(const QString &name, int exceptRow) const
{
    if (name.isEmpty())
        return tr("请填写预设名称");
    if (name.size() > MaxNameLength)
        return tr("预设名称最多 %n 个字", nullptr, MaxNameLength);
    // The built-in names too, as shown and in Chinese: "已选用预设: 最佳画质" must mean one preset
    // in either language.
    bool taken = downloadPresetFromRawValue(name).has_value();
    for (const DownloadPreset preset : allDownloadPresets())
        taken = taken || rawValue(preset).compare(name, Qt::CaseInsensitive) == 0;
    for (int row = 0; row < m_entries.size() && !taken; ++row)
        taken = row != exceptRow && m_entries.at(row).preset.name.compare(name, Qt::CaseInsensitive) == 0;
    return taken ? tr("已有名为“%1”的预设，请换一个名称").arg(name) : QString();
}

QString SavedPresetModel::checkArguments(const QString &arguments, const DownloadChoices &choices)
{
    // A preset of download options alone needs no words of its own.
    if (arguments.isEmpty() && choices.isDefault())
        return tr("请填写 yt-dlp 参数");
    // Refused now rather than when a download is started with them.
    return splitShellWords(arguments).error;
}

QString SavedPresetModel::checkChangeable(int row) const
{
    if (row < 0 || row >= m_entries.size())
        return tr("找不到这个预设");
    // Until its id is known, a second write would store it twice.
    if (m_entries.at(row).saving)
        return tr("“%1”正在保存，请稍后再改").arg(m_entries.at(row).preset.name);
    return QString();
}

QString SavedPresetModel::add(const QString &name, const QString &arguments)
{
    if (!m_loaded)
        return tr("还在读取已保存的预设，请稍后再试");
    const QString cleanName = name.simplified();
    const QString cleanArguments = arguments.trimmed();
    const DownloadChoices choices = m_state ? m_state->downloadChoices() : DownloadChoices();
    QString error = checkName(cleanName, -1);
    if (error.isEmpty())
        error = checkArguments(cleanArguments, choices);
    if (!error.isEmpty())
        return error;
    const int row = int(m_entries.size());
    beginInsertRows(QModelIndex(), row, row);
    m_entries.append({ { 0, cleanName, cleanArguments, choices }, m_nextKey++ });
    endInsertRows();
    store(row);
    return QString();
}

QString SavedPresetModel::rename(int row, const QString &name)
{
    const QString cleanName = name.simplified();
    QString error = checkChangeable(row);
    if (error.isEmpty())
        error = checkName(cleanName, row);
    if (!error.isEmpty())
        return error;
    if (m_entries.at(row).preset.name == cleanName)
        return QString();
    m_entries[row].preset.name = cleanName;
    Q_EMIT dataChanged(index(row), index(row), { NameRole, Qt::DisplayRole });
    store(row);
    return QString();
}

QString SavedPresetModel::setArguments(int row, const QString &arguments)
{
    const QString cleanArguments = arguments.trimmed();
    QString error = checkChangeable(row);
    if (error.isEmpty())
        error = checkArguments(cleanArguments, m_entries.at(row).preset.choices);
    if (!error.isEmpty())
        return error;
    if (m_entries.at(row).preset.arguments == cleanArguments)
        return QString();
    m_entries[row].preset.arguments = cleanArguments;
    Q_EMIT dataChanged(index(row), index(row), { ArgumentsRole });
    store(row);
    return QString();
}

QString SavedPresetModel::remove(int row)
{
    const QString error = checkChangeable(row);
    if (!error.isEmpty())
        return error;
    const qint64 id = m_entries.at(row).preset.id;
    beginRemoveRows(QModelIndex(), row, row);
    m_entries.removeAt(row);
    endRemoveRows();
    if (id != 0 && m_memory)
        m_memory->removePreset(id);
    updateStoreError();
    return QString();
}

void SavedPresetModel::choose(int row)
{
    if (row < 0 || row >= m_entries.size())
        return;
    // A copy: whatever the form's signals set off may change the list.
    const SavedPreset preset = m_entries.at(row).preset;
    m_state->setSelectedPreset(DownloadPreset::Custom);
    m_state->setCustomArguments(preset.arguments);
    m_state->setDownloadChoices(preset.choices);
    m_state->addLog(tr("已选用预设: %1").arg(preset.name), LogEntry::LogType::Info);
    // Last: the page that holds this model may go with it.
    m_state->setSelectedTab(0);
}

void SavedPresetModel::store(int row)
{
    Entry &entry = m_entries[row];
    if (!m_memory) {
        entry.unsaved = true;
        updateStoreError();
        return;
    }
    // An entry that could not be inserted before is inserted again.
    const bool inserting = entry.preset.id == 0;
    const quint64 key = entry.key;
    if (inserting && !entry.saving) {
        entry.saving = true;
        Q_EMIT dataChanged(index(row), index(row), { SavingRole });
    }
    m_memory->savePreset(entry.preset, this, [this, key, inserting](qint64 id) { stored(key, inserting, id); });
}

void SavedPresetModel::stored(quint64 key, bool inserted, qint64 id)
{
    const int row = rowOf(key);
    if (row < 0)
        return;
    Entry &entry = m_entries[row];
    QList<int> roles;
    if (inserted) {
        entry.saving = false;
        entry.preset.id = id;
        roles = { SavingRole, PresetIdRole };
    }
    entry.unsaved = id == 0;
    if (!roles.isEmpty())
        Q_EMIT dataChanged(index(row), index(row), roles);
    updateStoreError();
}

int SavedPresetModel::rowOf(quint64 key) const
{
    for (int row = 0; row < m_entries.size(); ++row) {
        if (m_entries.at(row).key == key)
            return row;
    }
    return -1;
}

void SavedPresetModel::updateStoreError()
{
    QStringList names;
    for (const Entry &entry : std::as_const(m_entries)) {
        if (entry.unsaved)
            names << tr("“%1”").arg(entry.preset.name);
    }
    //: Between the items of a list, as "、" is in Chinese: "“a”、“b”"
    const QString separator = tr("、");
    const QString error = names.isEmpty()
        ? QString()
        : tr("未能保存到磁盘：%1。本次运行中仍可使用，退出后不会保留。").arg(names.join(separator));
    if (error == m_storeError)
        return;
    m_storeError = error;
    Q_EMIT storeErrorChanged();
}
