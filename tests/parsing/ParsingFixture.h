// SPDX-FileCopyrightText: 2026 The trelvik developers
//
// SPDX-License-Identifier: GPL-2.0-or-later

#pragma once

#include "Event.h"
#include "NimbTestMain.h"

#include <vector>

// Journal lines and files for the parsing tests, written as the system logger writes them.
namespace fixture
{
inline QByteArray line(const QString &messageId, const QString &priority = QStringLiteral("info"),
                       const QString &source = QStringLiteral("velmo-auth"),
                       const QDateTime &time = QDateTime(QDate(2024, 3, 1), QTime(10, 0), Qt::OffsetFromUTC, 3 * 3600),
                       int padding = 0)
{
    return QStringLiteral("{\"FACILITY\":\"auth\",\"PRIORITY\":\"%1\",\"HOST\":\"host1\",\"ISODATE\":\"%2\","
                          "\"MSG\":{\"%3\":{\"message_id\":\"%4\",\"name_en\":\"Event %4\",\"comment\":\"%5\"}}}")
        .arg(priority, time.toString(Qt::ISODate), source, messageId, QString(padding, QLatin1Char('x')))
        .toUtf8();
}

inline void write(const QString &path, const QByteArray &bytes, QIODevice::OpenMode mode = QIODevice::WriteOnly)
{
    QFile file(path);
    QVERIFY2(file.open(mode), qPrintable(path));
    QCOMPARE(file.write(bytes), qint64(bytes.size()));
}

inline void append(const QString &path, const QByteArray &bytes)
{
    write(path, bytes, QIODevice::Append);
}

// Lines "<prefix>0" .. with every seventh one broken and lengths that vary, so that
// range boundaries land at all kinds of places.
inline QByteArray journal(int lines, const QString &prefix = QStringLiteral("e"), QStringList *valid = nullptr)
{
    QByteArray bytes;
    for (int i = 0; i < lines; ++i) {
        const QString id = prefix + QString::number(i);
        const bool broken = i % 7 == 3;
        bytes += broken ? "{\"MSG\": broken " + id.toUtf8()
                        : line(id, i % 2 ? "error" : "info", "velmo-auth",
                               QDateTime(QDate(2024, 3, 1), QTime(10, 0), Qt::UTC), (i * 37) % 300);
        bytes += '\n';
        if (valid && !broken)
            valid->append(id);
    }
    return bytes;
}

// Message IDs in order; the events are deleted.
inline QStringList ids(std::vector<Event *> events, QVector<quint32> *numbers = nullptr)
{
    QStringList result;
    for (Event *event : events) {
        result.append(event->messageId);
        if (numbers)
            numbers->append(event->number);
        delete event;
    }
    return result;
}
}

#include "TsanDefaults.h"

// The dictionary is built on first use from the system paths.
#define NIMB_PARSING_TEST_MAIN(TestClass) NIMB_TEST_MAIN_WITH(TestClass, QCoreApplication, NIMB_TEST_DATA_DIR "/sysroot-engine")
