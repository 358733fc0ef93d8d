// SPDX-FileCopyrightText: 2026 The trelvik developers
//
// SPDX-License-Identifier: GPL-2.0-or-later

#pragma once

#include "JsonLineScanner.h"
#include "TimeTextReader.h"

#include <QByteArray>

// Decides whether the line parser accepts a line from one scan of its bytes: a JSON
// object whose "MSG" has exactly one member, with a time by the parser's precedence.
// Lines it cannot judge exactly are parsed in full, so the answer is always the
// parser's. One acceptor per thread.
class LineAcceptor
{
public:
    enum class Answer { Accepted, Rejected, Unsure };
    // The rule that gave an accepted line its time.
    enum class TimeRule { BodyTime, UnixTime, EndTime, IsoDate, Date };

    // The scan alone; Unsure when the scan cannot tell.
    Answer judge(const char *data, qsizetype size);
    // The parser's answer.
    bool accepts(const char *data, qsizetype size);
    bool accepts(const QByteArray &line) { return accepts(line.constData(), line.size()); }

    // After judge() answered Accepted: the scanned line and how its time was chosen.
    const JsonLineScanner &scanner() const { return m_scanner; }
    TimeRule timeRule() const { return m_timeRule; }
    // The value that gave the time ("time", "unixtime", "end_time", "ISODATE" or "DATE").
    const JsonLineScanner::Value &timeValue() const { return *m_timeValue; }
    // For the "time" member and "ISODATE": the reading of the text.
    const TimeTextReader::Result &timeText() const { return m_timeText; }
    // For "unixtime" and "end_time": the seconds since the epoch, when known here.
    bool hasEpochSeconds() const;
    qint64 epochSeconds() const { return m_epochSeconds; }

    TimeTextReader &timeReader() { return m_timeReader; }

private:
    // Whether a seconds member carries a value, as the parameter would; Unsure for forms
    // whose conversion is left to Qt.
    Answer carriesSeconds(const JsonLineScanner::Value &value);
    TimeTextReader::Result readIso(const JsonLineScanner::Value &value);

    JsonLineScanner m_scanner;
    TimeTextReader m_timeReader;
    TimeRule m_timeRule = TimeRule::Date;
    const JsonLineScanner::Value *m_timeValue = nullptr;
    TimeTextReader::Result m_timeText;
    qint64 m_epochSeconds = 0;
    bool m_secondsKnown = false;
};
