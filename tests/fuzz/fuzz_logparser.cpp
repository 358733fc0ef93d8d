// SPDX-FileCopyrightText: 2026 The trelvik developers
//
// SPDX-License-Identifier: GPL-2.0-or-later

// A journal that grows while it is followed. The input is the file as first seen, a
// zero byte, then what is appended. Counting the tail after a first count gives what
// one count of the whole gives, and the parallel parser finds the same lines.

#include "FuzzTarget.h"

#include "FilterPack.h"
#include "FilteringLogParser.h"
#include "LineParser.h"
#include "LogParser.h"

#include <QFile>

#include <algorithm>
#include <cstring>
#include <functional>

NIMB_FUZZ_TARGET(logparser)
{
    const QString root = fuzzsupport::setUp();
    const char *bytes = reinterpret_cast<const char *>(data);
    const char *split = static_cast<const char *>(std::memchr(bytes, '\0', size));
    const QByteArray first(bytes, split ? int(split - bytes) : int(size));
    const QByteArray appended = split ? QByteArray(split + 1, int(size - first.size() - 1)) : QByteArray();

    const QString path = root + QStringLiteral("/events");
    if (!fuzzsupport::writeFile(path, first.constData(), first.size()))
        return 0;
    LogParser following(path);
    const int before = following.count();
    FUZZ_CHECK(before >= 0);
    {
        QFile file(path);
        if (!file.open(QIODevice::Append) || file.write(appended) != appended.size())
            return 0;
    }
    const int after = following.count();

    LogParser whole(path);
    const int counted = whole.count();
    // A last line that was complete JSON before more bytes joined it was rightly
    // counted then, and is no longer one line of the whole; that case aside, the
    // tail scan must agree with the full one.
    const int cut = first.lastIndexOf('\n');
    const QByteArray lastLine = first.mid(cut + 1);
    if (after != counted && (appended.isEmpty() || lastLine.isEmpty() || !LineParser::acceptsLine(lastLine))) {
        std::fprintf(stderr, "counted %d, then %d after %d appended bytes; the whole file counts %d\n", before,
                     after, int(appended.size()), counted);
        FUZZ_CHECK(after == counted);
    }
    FUZZ_CHECK(after >= before);
    const std::vector<qint64> positions = whole.positions();
    FUZZ_CHECK(std::adjacent_find(positions.begin(), positions.end(), std::greater_equal<qint64>()) == positions.end());

    FilteringLogParser parallel(path);
    parallel.setFilter(FilterPack());
    parallel.setWorkerCount(3);
    FUZZ_CHECK(parallel.count() == counted);
    FUZZ_CHECK(parallel.positions() == positions);

    auto [opened, events] = whole.loadAll();
    FUZZ_CHECK(opened);
    FUZZ_CHECK(int(events.size()) == counted);
    for (Event *event : events)
        delete event;
    return 0;
}
