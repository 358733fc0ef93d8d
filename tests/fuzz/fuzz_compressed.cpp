// SPDX-FileCopyrightText: 2026 The trelvik developers
//
// SPDX-License-Identifier: GPL-2.0-or-later

// A rotated journal, compressed or not, perhaps damaged. Unpacking either succeeds
// or leaves an empty copy, and the engine reads whatever came out.

#include "FuzzTarget.h"

#include "CompressedLogFile.h"
#include "LogParser.h"

#include <QFile>
#include <QFileInfo>

NIMB_FUZZ_TARGET(compressed)
{
    const QString root = fuzzsupport::setUp();
    if (size == 0)
        return 0;
    // The first byte picks the name's suffix; detection goes by content first.
    static const char *const suffixes[] = {".gz", ".bz2", ".xz", ".zst", ""};
    const QString path = root + QStringLiteral("/events.2") + QLatin1String(suffixes[data[0] % 5]);
    if (!fuzzsupport::writeFile(path, reinterpret_cast<const char *>(data + 1), qint64(size - 1)))
        return 0;
    QString copy;
    {
        // A few kilobytes of some kinds can declare gigabytes of output; the limit keeps
        // every run short, and the limit's own path is fuzzed with it.
        CompressedLogFile file(path, {64 * 1024 * 1024, 0});
        file.unpack();
        const QString readable = file.readablePath();
        FUZZ_CHECK(file.isTemporary() == (file.compression() != CompressedLogFile::Compression::None));
        if (file.isTemporary()) {
            FUZZ_CHECK(readable != path);
            FUZZ_CHECK(QFileInfo(readable).isFile());
            if (!file.unpacked())
                FUZZ_CHECK(QFileInfo(readable).size() == 0);
        }
        LogParser parser(readable);
        const int counted = parser.count();
        FUZZ_CHECK(counted >= 0);
        if (counted > 0) {
            auto [opened, events] = parser.loadAll();
            FUZZ_CHECK(opened);
            FUZZ_CHECK(int(events.size()) == counted);
            for (Event *event : events)
                delete event;
        }
        if (file.isTemporary())
            copy = readable;
    }
    // The private copy lives exactly as long as its object.
    FUZZ_CHECK(copy.isEmpty() || !QFile::exists(copy));
    QFile::remove(path);
    return 0;
}
