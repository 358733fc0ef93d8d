// SPDX-FileCopyrightText: 2026 The trelvik developers
//
// SPDX-License-Identifier: GPL-2.0-or-later

#pragma once

#include "AbstractLogParser.h"

class EventTimes;
class LineAcceptor;
class LineReader;

// Every line that parses. Full scans are split over worker threads; lines are judged
// by LineAcceptor, which gives the line parser's answer without building events.
class LogParser : public AbstractLogParser
{
    Q_OBJECT
public:
    using AbstractLogParser::AbstractLogParser;

protected:
    void scan(QIODevice &file) override;

private:
    qint64 scanTail(LineReader &reader, qint64 size);
    // Whether the line counts; with `times`, a counted line's time and priority go there.
    static Outcome judge(LineAcceptor &acceptor, EventTimes *times, const char *data, qint64 size);
};
