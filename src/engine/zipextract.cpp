#include "engine/zipextract.h"

#include <QIODevice>
#include <QScopeGuard>
#include <QtEndian>

#include <zlib.h>

#include <algorithm>
#include <optional>

using namespace Qt::StringLiterals;

namespace {
constexpr quint32 LocalHeaderSignature = 0x04034b50;
constexpr quint32 CentralHeaderSignature = 0x02014b50;
constexpr quint32 EndSignature = 0x06054b50;
constexpr quint32 Zip64EndSignature = 0x06064b50;
constexpr quint32 Zip64LocatorSignature = 0x07064b50;
constexpr int EndSize = 22;
constexpr int CentralHeaderSize = 46;
constexpr int LocalHeaderSize = 30;
constexpr qint64 MaxCentralDirectory = 64 * 1024 * 1024;
constexpr qint64 Block = 256 * 1024;

// Little-endian fields of a record held in memory, with every read checked against its end.
class Record
{
public:
    explicit Record(QByteArrayView bytes)
        : m_bytes(bytes)
    {
    }
    bool has(qsizetype at, qsizetype size) const { return at >= 0 && size >= 0 && at + size <= m_bytes.size(); }
    quint16 u16(qsizetype at) const { return has(at, 2) ? qFromLittleEndian<quint16>(m_bytes.data() + at) : 0; }
    quint32 u32(qsizetype at) const { return has(at, 4) ? qFromLittleEndian<quint32>(m_bytes.data() + at) : 0; }
    quint64 u64(qsizetype at) const { return has(at, 8) ? qFromLittleEndian<quint64>(m_bytes.data() + at) : 0; }
    QByteArrayView mid(qsizetype at, qsizetype size) const
    {
        return has(at, size) ? m_bytes.sliced(at, size) : QByteArrayView();
    }

private:
    QByteArrayView m_bytes;
};

struct Entry
{
    quint16 flags = 0;
    quint16 method = 0;
    quint32 crc = 0;
    quint64 compressedSize = 0;
    quint64 size = 0;
    quint64 localHeaderOffset = 0;
};

QByteArray readAt(QIODevice &device, qint64 offset, qint64 size)
{
    if (offset < 0 || size < 0 || !device.seek(offset))
        return {};
    return device.read(size);
}

struct CentralDirectory
{
    quint64 offset = 0;
    quint64 size = 0;
};

std::optional<CentralDirectory> findCentralDirectory(QIODevice &zip)
{
    const qint64 total = zip.size();
    const qint64 tailSize = std::min<qint64>(total, EndSize + 0xFFFF);
    const QByteArray tail = readAt(zip, total - tailSize, tailSize);
    if (tail.size() != tailSize)
        return std::nullopt;
    const Record record(tail);
    for (qsizetype at = tail.size() - EndSize; at >= 0; --at) {
        if (record.u32(at) != EndSignature)
            continue;
        CentralDirectory directory { record.u32(at + 16), record.u32(at + 12) };
        if (directory.offset != 0xFFFFFFFF && directory.size != 0xFFFFFFFF)
            return directory;
        // A zip64 archive: its own end record, found through the locator just before this one.
        const qint64 locatorAt = total - tailSize + at - 20;
        const QByteArray locator = readAt(zip, locatorAt, 20);
        if (locator.size() != 20 || Record(locator).u32(0) != Zip64LocatorSignature)
            return std::nullopt;
        const QByteArray end64 = readAt(zip, static_cast<qint64>(Record(locator).u64(8)), 56);
        const Record record64(end64);
        if (end64.size() != 56 || record64.u32(0) != Zip64EndSignature)
            return std::nullopt;
        return CentralDirectory { record64.u64(48), record64.u64(40) };
    }
    return std::nullopt;
}

bool nameMatches(QByteArrayView stored, const QByteArray &wanted)
{
    return stored == wanted
        || (stored.endsWith(wanted) && stored.size() > wanted.size()
            && stored.at(stored.size() - wanted.size() - 1) == '/');
}

// The entry named `wanted` in the central directory; nullopt if there is none, the reason in `failure`.
std::optional<Entry> findEntry(QByteArrayView directory, const QByteArray &wanted, ZipExtractResult *failure)
{
    const Record record(directory);
    qsizetype at = 0;
    while (record.has(at, CentralHeaderSize) && record.u32(at) == CentralHeaderSignature) {
        const quint16 nameLength = record.u16(at + 28);
        const quint16 extraLength = record.u16(at + 30);
        const quint16 commentLength = record.u16(at + 32);
        const QByteArrayView name = record.mid(at + CentralHeaderSize, nameLength);
        if (!record.has(at + CentralHeaderSize, nameLength + extraLength + commentLength)) {
            *failure = { ZipExtractResult::Damaged, u"the central directory is cut short"_s };
            return std::nullopt;
        }
        if (!name.endsWith('/') && nameMatches(name, wanted)) {
            Entry entry;
            entry.flags = record.u16(at + 8);
            entry.method = record.u16(at + 10);
            entry.crc = record.u32(at + 16);
            entry.compressedSize = record.u32(at + 20);
            entry.size = record.u32(at + 24);
            entry.localHeaderOffset = record.u32(at + 42);
            // Fields too small for their value are 0xFFFFFFFF, the value in the zip64 extra
            // field, in this order.
            const Record extra(record.mid(at + CentralHeaderSize + nameLength, extraLength));
            for (qsizetype field = 0; extra.has(field, 4); field += 4 + extra.u16(field + 2)) {
                if (extra.u16(field) != 0x0001)
                    continue;
                qsizetype value = field + 4;
                for (quint64 *target : { &entry.size, &entry.compressedSize, &entry.localHeaderOffset }) {
                    if (*target == 0xFFFFFFFF) {
                        *target = extra.u64(value);
                        value += 8;
                    }
                }
            }
            return entry;
        }
        at += CentralHeaderSize + nameLength + extraLength + commentLength;
    }
    *failure = { ZipExtractResult::NotFound, u"no entry named "_s + QString::fromUtf8(wanted) };
    return std::nullopt;
}

ZipExtractResult fail(ZipExtractResult::Status status, const QString &detail)
{
    return { status, detail };
}
} // namespace

ZipExtractResult extractZipEntry(
    QIODevice &zip, const QString &entryName, QIODevice &out, const std::atomic_bool &cancelled)
{
    const std::optional<CentralDirectory> directory = findCentralDirectory(zip);
    if (!directory || directory->size > MaxCentralDirectory)
        return fail(ZipExtractResult::Damaged, u"no readable end of central directory"_s);
    const QByteArray directoryBytes
        = readAt(zip, static_cast<qint64>(directory->offset), static_cast<qint64>(directory->size));
    if (directoryBytes.size() != static_cast<qsizetype>(directory->size))
        return fail(ZipExtractResult::Damaged, u"the central directory lies beyond the end of the file"_s);

    ZipExtractResult failure;
    const std::optional<Entry> entry = findEntry(directoryBytes, entryName.toUtf8(), &failure);
    if (!entry)
        return failure;
    if (entry->flags & 0x1)
        return fail(ZipExtractResult::Damaged, u"the entry is encrypted"_s);
    if (entry->method != 0 && entry->method != Z_DEFLATED)
        return fail(ZipExtractResult::Damaged, u"unsupported compression method %1"_s.arg(entry->method));

    const QByteArray local = readAt(zip, static_cast<qint64>(entry->localHeaderOffset), LocalHeaderSize);
    const Record localRecord(local);
    if (local.size() != LocalHeaderSize || localRecord.u32(0) != LocalHeaderSignature)
        return fail(ZipExtractResult::Damaged, u"no local header where the directory says"_s);
    const qint64 dataStart
        = static_cast<qint64>(entry->localHeaderOffset) + LocalHeaderSize + localRecord.u16(26) + localRecord.u16(28);
    if (dataStart + static_cast<qint64>(entry->compressedSize) > zip.size() || !zip.seek(dataStart))
        return fail(ZipExtractResult::Damaged, u"the entry's data runs past the end of the file"_s);

    z_stream stream {};
    const bool deflated = entry->method == Z_DEFLATED;
    if (deflated && inflateInit2(&stream, -MAX_WBITS) != Z_OK)
        return fail(ZipExtractResult::Damaged, u"zlib could not start"_s);
    const auto endStream = qScopeGuard([&] {
        if (deflated)
            inflateEnd(&stream);
    });

    uLong crc = crc32(0L, Z_NULL, 0);
    quint64 written = 0;
    quint64 remaining = entry->compressedSize;
    const auto put = [&](const char *data, qint64 size) {
        crc = crc32(crc, reinterpret_cast<const Bytef *>(data), static_cast<uInt>(size));
        written += static_cast<quint64>(size);
        return out.write(data, size) == size;
    };
    const auto readBlock = [&] {
        const QByteArray block = zip.read(static_cast<qint64>(std::min<quint64>(remaining, Block)));
        remaining -= static_cast<quint64>(block.size());
        return block;
    };

    if (!deflated) {
        while (remaining > 0) {
            if (cancelled.load())
                return fail(ZipExtractResult::Cancelled, u"cancelled"_s);
            const QByteArray block = readBlock();
            if (block.isEmpty())
                return fail(ZipExtractResult::Damaged, u"the entry's data cannot be read"_s);
            if (!put(block.constData(), block.size()))
                return fail(ZipExtractResult::WriteFailed, out.errorString());
        }
    } else {
        QByteArray input;
        QByteArray output(Block, Qt::Uninitialized);
        int status = Z_OK;
        while (status != Z_STREAM_END) {
            if (cancelled.load())
                return fail(ZipExtractResult::Cancelled, u"cancelled"_s);
            if (stream.avail_in == 0) {
                input = remaining > 0 ? readBlock() : QByteArray();
                if (input.isEmpty())
                    return fail(ZipExtractResult::Damaged, u"the deflate stream ends early"_s);
                stream.next_in = reinterpret_cast<Bytef *>(input.data());
                stream.avail_in = static_cast<uInt>(input.size());
            }
            stream.next_out = reinterpret_cast<Bytef *>(output.data());
            stream.avail_out = static_cast<uInt>(output.size());
            status = inflate(&stream, Z_NO_FLUSH);
            if (status != Z_OK && status != Z_STREAM_END && !(status == Z_BUF_ERROR && stream.avail_in == 0))
                return fail(ZipExtractResult::Damaged,
                    u"inflate: "_s + QString::fromLatin1(stream.msg ? stream.msg : "corrupt data"));
            const qint64 produced = output.size() - static_cast<qint64>(stream.avail_out);
            if (produced > 0 && !put(output.constData(), produced))
                return fail(ZipExtractResult::WriteFailed, out.errorString());
            // Never more than the directory promises, however well the data compresses.
            if (written > entry->size)
                return fail(ZipExtractResult::Damaged, u"more data than the directory says"_s);
        }
    }

    if (written != entry->size)
        return fail(
            ZipExtractResult::Damaged, u"%1 bytes unpacked, the directory says %2"_s.arg(written).arg(entry->size));
    if (crc != entry->crc)
        return fail(ZipExtractResult::Damaged, u"CRC-32 mismatch"_s);
    return { ZipExtractResult::Extracted, {} };
}
