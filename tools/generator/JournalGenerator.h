// SPDX-FileCopyrightText: 2026 The trelvik developers
//
// SPDX-License-Identifier: GPL-2.0-or-later

#pragma once

#include "Catalogue.h"

#include <QString>
#include <QtGlobal>

#include <memory>

class QIODevice;

namespace nimbgen
{

struct GeneratorOptions {
    quint64 seed = 1;
    qint64 lines = -1;          // number of lines to write, or
    qint64 bytes = -1;          // the size to reach (whole lines: the last one may pass it)
    int days = 10;              // the times cover this many days up to `end`
    int malformedPermille = 5;
    qint64 end = 0;             // newest time, seconds since the epoch
    bool live = false;          // times start at `end` and run on a few seconds apart, as when appending
};

// A byte count with an optional K, M or G suffix (powers of 1024); -1 when the text is not one.
qint64 parseByteSize(const QString &text);

// Time of the newest line of an existing journal, in seconds since the epoch; 0 when none is found.
qint64 lastJournalTime(const QString &path);

// Writes a journal as the system logger would, with a sprinkling of the faults real journals have.
// The output depends only on the catalogue and the options, never on the clock.
class JournalGenerator
{
public:
    JournalGenerator(Catalogue catalogue, const GeneratorOptions &options);
    ~JournalGenerator();

    // False when the device stops accepting data.
    bool write(QIODevice *device);

    qint64 linesWritten() const;
    qint64 bytesWritten() const;

private:
    struct Private;
    std::unique_ptr<Private> d;
};

}
