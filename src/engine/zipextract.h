#pragma once

#include <QString>

#include <atomic>

class QIODevice;

struct ZipExtractResult
{
    enum Status { Extracted, NotFound, Damaged, WriteFailed, Cancelled };
    Status status = Damaged;
    QString detail; // for the log, in English
};

// Copies the file `entryName` (the whole name, or the last part of a name in a folder) out of
// the zip archive `zip` into `out`, inflating it if it is deflated, and checks its length and
// CRC-32. Blocking, touches nothing but its two devices: run it off the GUI thread for big
// archives. `cancelled` is looked at between blocks.
ZipExtractResult extractZipEntry(
    QIODevice &zip, const QString &entryName, QIODevice &out, const std::atomic_bool &cancelled);
