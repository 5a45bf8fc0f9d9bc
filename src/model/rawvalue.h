#pragma once

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

template <typename Enum, std::size_t N>
QString rawValueIn(const std::array<RawValuePair<Enum>, N> &table, Enum value)
{
    for (const auto &pair : table) {
        if (pair.value == value)
            return QString::fromUtf16(pair.raw);
    }
    return QString();
}

template <typename Enum, std::size_t N>
std::optional<Enum> fromRawValueIn(const std::array<RawValuePair<Enum>, N> &table, QStringView raw)
{
    for (const auto &pair : table) {
        if (raw == QStringView(pair.raw))
            return pair.value;
    }
    return std::nullopt;
}
