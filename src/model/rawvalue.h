#pragma once

#include <QCoreApplication>
#include <QString>
#include <QStringView>

#include <algorithm>
#include <array>
#include <optional>

// The entry of a table that lists every case of an enumeration once, found by that case.
template <typename Entry, std::size_t N, typename Key>
const Entry &entryFor(const std::array<Entry, N> &table, Key Entry::*key, Key value)
{
    return *std::find_if(table.cbegin(), table.cend(), [&](const Entry &entry) { return entry.*key == value; });
}

// An enumeration whose raw values are fixed texts: a table of (case, text) pairs and the two
// lookups. Matching is exact and case-sensitive.
template <typename Enum>
struct RawValuePair
{
    Enum value;
    const char16_t *raw;
};

// An enumeration that is stored: each case has a key, plain ASCII that never changes once a
// release has written it, and its label, the Chinese text the interface shows (UTF-8, marked with
// QT_TRANSLATE_NOOP so that it is shown translated). A store or settings file from before keys
// kept that Chinese label, so it is read back through the same table.
template <typename Enum>
struct StoredEnumName
{
    Enum value;
    const char *key;
    const char *label;
};

template <typename Table, typename Enum>
QString rawValueIn(const Table &table, Enum value)
{
    for (const auto &entry : table) {
        if (entry.value == value)
            return QString::fromUtf16(entry.raw);
    }
    return QString();
}

template <typename Table>
auto fromRawValueIn(const Table &table, QStringView raw) -> std::optional<decltype(table.front().value)>
{
    for (const auto &entry : table) {
        if (raw == QStringView(entry.raw))
            return entry.value;
    }
    return std::nullopt;
}

// The label of `value` in the interface's language, translated under `context` each time it is
// read, so that a change of language shows on the next read.
template <typename Enum, std::size_t N>
QString labelIn(const std::array<StoredEnumName<Enum>, N> &table, const char *context, Enum value)
{
    for (const auto &entry : table) {
        if (entry.value == value)
            return QCoreApplication::translate(context, entry.label);
    }
    return QString();
}

// The Chinese label of `value`, untranslated.
template <typename Enum, std::size_t N>
QString sourceLabelIn(const std::array<StoredEnumName<Enum>, N> &table, Enum value)
{
    for (const auto &entry : table) {
        if (entry.value == value)
            return QString::fromUtf8(entry.label);
    }
    return QString();
}

// The case whose Chinese label is `label`, whatever the interface's language: what older stores kept.
template <typename Enum, std::size_t N>
std::optional<Enum> fromLabelIn(const std::array<StoredEnumName<Enum>, N> &table, QStringView label)
{
    for (const auto &entry : table) {
        if (label == QString::fromUtf8(entry.label))
            return entry.value;
    }
    return std::nullopt;
}

template <typename Enum, std::size_t N>
QString keyIn(const std::array<StoredEnumName<Enum>, N> &table, Enum value)
{
    for (const auto &entry : table) {
        if (entry.value == value)
            return QLatin1String(entry.key);
    }
    return QString();
}

template <typename Enum, std::size_t N>
std::optional<Enum> fromKeyIn(const std::array<StoredEnumName<Enum>, N> &table, QStringView key)
{
    for (const auto &entry : table) {
        if (key == QLatin1String(entry.key))
            return entry.value;
    }
    return std::nullopt;
}
