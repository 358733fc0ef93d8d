// SPDX-FileCopyrightText: 2026 The trelvik developers
// SPDX-License-Identifier: GPL-2.0-or-later
#pragma once

#include "AbstractLogParser.h"
#include "CompressedLogFile.h"

#include <QDateTime>
#include <QObject>
#include <QString>
#include <QStringList>

#include <functional>
#include <memory>
#include <mutex>
#include <string>
#include <utility>
#include <vector>

// A journal and its rotations read as one journal: rows are numbered across the whole
// history, oldest rotation first and the live file last. Each file has a parser of its
// own; a compressed rotation is unpacked into a private copy first. Rotated files do not
// change, so after the first count only the live file is read again, unless a rotation
// changed the set of files, which starts everything afresh.
//
// Like a parser: on one thread at a time (the loader's), and the stop flag from any;
// percentRead tells the share of the whole history's bytes read, from the scanning
// threads as the parsers' own signal does.
class JournalHistory : public QObject
{
    Q_OBJECT
public:
    using MakeParser = std::function<std::unique_ptr<AbstractLogParser>(const QString &readablePath)>;

    JournalHistory(const QString &livePath, MakeParser makeParser, QObject *parent = nullptr);
    ~JournalHistory() override;

    // The files of a journal's history, oldest first: NAME.N and NAME.N.<gz|bz2|xz|zst>
    // with the highest N first, then NAME-YYYYMMDD[.ext] by date, then NAME itself when
    // it exists. Of a plain and a compressed file of one number or date only the plain
    // one counts: the other is still being written by the rotation.
    static QStringList files(const QString &livePath);

    // Compressed rotations are unpacked by the first count() and after every rotation,
    // within CompressedLogFile's limits, each sending percentRead as it goes before the
    // reading sends its own; the stop flag ends an unpacking soon after.
    // The events of the whole history, or -1 when none of its files can be opened.
    int count();
    // Rows as the parsers' (numbered first + 1 ...), over file boundaries; the counts of
    // the last count() place them.
    std::pair<bool, std::vector<Event *>> load(int first, int n);
    std::unique_ptr<Event> loadSingle(int index);
    std::string loadSingleString(int index);
    int rowAtTime(const QDateTime &time);
    // A journal when any of the files is one; otherwise what the live file is.
    AbstractLogParser::FileCheck checkFile();
    std::vector<AbstractLogParser::TimelineEntry> timeline(AbstractLogParser::TimelineBucket bucket);
    void setTimelineEnabled(bool enabled);
    void setStopFlag(bool stop);

    // The files read at the last count, and those that could not be unpacked.
    QStringList partPaths() const;
    QStringList failures() const { return m_failures; }

    // Every part's parser, oldest first, for what only a particular parser kind offers.
    std::vector<AbstractLogParser *> parsers() const;

Q_SIGNALS:
    void percentRead(int percent);

private:
    struct Part;
    void refresh();
    // The part holding history row `row` and the row within it; null past the end.
    Part *partOf(int row, int *within);

    QString m_livePath;
    MakeParser m_makeParser;
    std::vector<std::unique_ptr<Part>> m_parts;
    QStringList m_failures;
    QStringList m_listed;
    std::vector<std::pair<quint64, quint64>> m_identities;
    bool m_timeline = false;
    // Guards the list of parts against setStopFlag() from other threads.
    std::mutex m_mutex;
    bool m_stop = false;
    // The rotation being unpacked, for the stop flag; under the mutex.
    CompressedLogFile *m_unpacking = nullptr;
};
