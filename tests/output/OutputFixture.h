// SPDX-FileCopyrightText: 2026 The trelvik developers
//
// SPDX-License-Identifier: GPL-2.0-or-later

#pragma once

#include "Event.h"
#include "LineParser.h"

#include <QDateTime>
#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>
#include <QProcess>
#include <QString>
#include <QTest>

#include <memory>
#include <vector>

// Journals, events and external readers for the output tests.
namespace output
{
inline void write(const QString &path, const QByteArray &bytes)
{
    QFile file(path);
    QVERIFY2(file.open(QIODevice::WriteOnly | QIODevice::Truncate), qPrintable(path));
    QCOMPARE(file.write(bytes), qint64(bytes.size()));
}

inline QByteArray read(const QString &path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

// Journal line of a known source; `body` is the inside of the message object.
inline QByteArray line(const QByteArray &body, const QByteArray &priority = "info",
                       const QByteArray &source = "velmo-auth", int minute = 0)
{
    return "{\"FACILITY\":\"auth\",\"PRIORITY\":\"" + priority + "\",\"HOST\":\"ws-1\",\"ISODATE\":\"2024-03-01T10:"
        + QByteArray::number(minute % 60).rightJustified(2, '0') + ":00+03:00\",\"MSG\":{\"" + source + "\":{" + body
        + "}}}";
}

struct Parsed {
    std::vector<std::unique_ptr<Event>> owned;
    std::vector<const Event *> events;
};

inline Parsed parse(const QList<QByteArray> &lines)
{
    Parsed parsed;
    for (const QByteArray &text : lines) {
        std::unique_ptr<Event> event = LineParser::parseLine(text);
        if (!event)
            continue;
        event->number = static_cast<quint32>(parsed.owned.size()) + 1;
        parsed.events.push_back(event.get());
        parsed.owned.push_back(std::move(event));
    }
    return parsed;
}

struct Run {
    bool finished = false;
    int exitCode = -1;
    QByteArray out;
    QByteArray err;
};

inline Run run(const QString &program, const QStringList &arguments)
{
    QProcess process;
    process.start(program, arguments);
    Run result;
    result.finished = process.waitForFinished(120000) && process.exitStatus() == QProcess::NormalExit;
    result.exitCode = process.exitCode();
    result.out = process.readAllStandardOutput();
    result.err = process.readAllStandardError();
    return result;
}

// The rows of a CSV file as Python's csv module reads them in strict mode, or an
// empty array when it refuses the file.
inline QJsonArray strictCsvRows(const QString &path)
{
    const Run python = run(QStringLiteral("python3"),
                           {QStringLiteral("-c"),
                            QStringLiteral("import csv, json, sys\n"
                                           "with open(sys.argv[1], newline='', encoding='utf-8') as f:\n"
                                           "    print(json.dumps(list(csv.reader(f, strict=True))))\n"),
                            path});
    if (!python.finished || python.exitCode != 0) {
        qWarning("python3: %s", python.err.constData());
        return {};
    }
    return QJsonDocument::fromJson(python.out).array();
}
}
