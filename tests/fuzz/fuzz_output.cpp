// libFuzzer target for what a child's output goes through: the line splitter, progress parsing
// and the percentage a row shows; and for the custom-arguments word splitter. Built and run by
// scripts/fuzz (clang, -fsanitize=fuzzer,address,undefined).

#include "engine/linesplitter.h"
#include "engine/progressparser.h"
#include "engine/shellwords.h"
#include "model/taskmodel.h"

#include <cstdint>
#include <cstdlib>

namespace {
void require(bool condition)
{
    if (!condition)
        std::abort();
}

void checkProgress(const QStringList &lines)
{
    const ProgressUpdate update = parseProgress(lines);
    if (!update.progress)
        return;
    require(*update.progress >= 0.0 && *update.progress <= 1.0);
    const QString percent = TaskModel::percentText(*update.progress);
    bool ok = false;
    const int value = QStringView(percent).chopped(1).toInt(&ok);
    require(ok && value >= 0 && value <= 100 && percent.endsWith(u'%'));
}

void checkLines(const QStringList &lines)
{
    // A line is at most the bound plus the note of what was left out.
    for (const QString &line : lines)
        require(line.size() <= LineSplitter::MaxLineBytes + 64);
    checkProgress(lines);
}
} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    if (size == 0)
        return 0;
    // The first byte chooses how the rest is cut into reads, as a pipe cuts a stream anywhere.
    const unsigned cut = data[0];
    LineSplitter splitter;
    size_t at = 1;
    while (at < size) {
        const size_t length = std::min<size_t>(size - at, 1 + (cut * 7 + at) % (cut + 2));
        checkLines(splitter.feed(QByteArray(reinterpret_cast<const char *>(data + at), qsizetype(length))));
        const QString drawing = splitter.pending();
        require(drawing.size() <= LineSplitter::MaxLineBytes);
        checkProgress({ drawing });
        at += length;
    }
    checkLines(splitter.finish());

    const ShellWords words
        = splitShellWords(QString::fromUtf8(reinterpret_cast<const char *>(data + 1), qsizetype(size - 1)));
    require(words.ok() || words.words.isEmpty());
    return 0;
}
