// SPDX-FileCopyrightText: 2026 The trelvik developers
//
// SPDX-License-Identifier: GPL-2.0-or-later

#pragma once

#include "LocalYear.h"

#include <QByteArray>
#include <QHash>
#include <QString>
#include <QVector>

#include <utility>

// Date-time texts of journal lines, read as the line parser reads them (Qt's ISO 8601
// reader and the legacy syslog reader) but without their cost for the shapes the logger
// writes; any other shape is handed to those readers, so every answer is theirs.
//
// One reader per thread: it remembers the local days without a clock change and the
// current year.
class TimeTextReader
{
public:
    struct Result {
        bool valid = false;
        // For a valid time with a zone (Z or an offset): milliseconds since the epoch.
        bool hasInstant = false;
        qint64 msecs = 0;
    };

    TimeTextReader();

    // QDateTime::fromString(text, Qt::ISODate) of UTF-8 or of decoded text.
    Result readIso(const char *data, int size);
    static Result readIso(const QString &text);
    // Whether LineParser::parseLegacyDate(text) is valid.
    bool legacyIsValid(const char *data, int size);
    static bool legacyIsValid(const QString &text);

private:
    // Every local time of the day exists (no clock change that day).
    bool isRegularLocalDay(int year, int month, int day);

    QVector<std::pair<QByteArray, int>> m_months;
    QHash<qint64, bool> m_regularDays;
    LocalYear m_localYear;
};
