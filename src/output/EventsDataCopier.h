// SPDX-FileCopyrightText: 2026 The trelvik developers
//
// SPDX-License-Identifier: GPL-2.0-or-later

#pragma once

#include <QList>
#include <QObject>
#include <QSet>
#include <QString>

#include <vector>

class Event;
class EventsSelection;
class JournalRows;
class OutputProgress;

// Writes events out: JSON, CSV and the journal's raw lines to files, tab-separated
// text to the clipboard. The writers touch no widget and keep no state, so one
// instance serves every job, on whatever thread the job runs. Values are escaped as
// their format requires, so every file reads back with a strict reader; values that
// need no escaping are written as they stand.
class EventsDataCopier : public QObject
{
    Q_OBJECT
public:
    enum Format {
        Json,
        Csv,
        RawLines,
    };
    Q_ENUM(Format)

    explicit EventsDataCopier(QObject *parent = nullptr);

    // The writer a file name asks for: ".json", ".csv" or ".log", compared
    // case-sensitively. False for any other ending.
    static bool formatOfFile(const QString &fileName, Format *format);

    // Each writer returns how many events (lines) it wrote. The file replaces the
    // earlier one only once complete (see OutputFile): -1, and the earlier file left
    // as it was, when the target cannot be written in full or the job is stopped.
    int writeJson(const std::vector<const Event *> &events, const QString &path) const;
    int writeCsv(const std::vector<const Event *> &events, const QString &path) const;
    // Rows of a journal, streamed: read in batches, parsed on every processor, written
    // in order. Lines that no longer parse are left out.
    int writeJson(const JournalRows &rows, const QString &path, OutputProgress *progress = nullptr) const;
    int writeCsv(const JournalRows &rows, const QString &path, OutputProgress *progress = nullptr) const;
    // The lines unchanged, each followed by a line feed.
    int writeRawLines(const JournalRows &rows, const QString &path, OutputProgress *progress = nullptr) const;

    // One export job: the selection in the given format, its count left as the
    // progress's outcome and the reason of a failure as its failure. Call it on the
    // job's thread.
    void write(const EventsSelection &selection, Format format, const QString &path,
               OutputProgress *progress = nullptr) const;

    // One line per event, fields separated by tabs: time, message ID, type, priority
    // (when it has a name), event name, then the texts of the valid parameters of the
    // given kinds and the values of the named custom parameters. Lines joined by line feeds.
    static QString copyText(const QList<const Event *> &events, const QSet<int> &auxTypes,
                            const QSet<QString> &customNames);
    // The same text onto the clipboard; interface thread only.
    void copyToClipboard(const QList<const Event *> &events, const QSet<int> &auxTypes,
                         const QSet<QString> &customNames) const;
};
