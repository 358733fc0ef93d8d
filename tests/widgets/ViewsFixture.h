// SPDX-FileCopyrightText: 2026 The trelvik developers
//
// SPDX-License-Identifier: GPL-2.0-or-later

#pragma once

#include "Event.h"
#include "LineParser.h"

#include <QJsonDocument>
#include <QJsonObject>
#include <QTableWidget>
#include <QtTest>

#include <memory>

// Events for the view tests, made from journal lines the way the logger writes them.
namespace views
{
inline QByteArray line(const QString &messageId, const QString &priority = QStringLiteral("info"),
                       const QJsonObject &extra = QJsonObject(), const QString &source = QStringLiteral("sshd"))
{
    QJsonObject body{{QStringLiteral("message_id"), messageId},
                     {QStringLiteral("name_en"), QStringLiteral("Name of ") + messageId},
                     {QStringLiteral("name_ru"), QStringLiteral("Имя ") + messageId},
                     {QStringLiteral("type_en"), QStringLiteral("Authorisation")},
                     {QStringLiteral("type_ru"), QStringLiteral("Авторизация")}};
    for (auto it = extra.begin(); it != extra.end(); ++it)
        body.insert(it.key(), it.value());
    const QJsonObject record{{QStringLiteral("FACILITY"), QStringLiteral("auth")},
                             {QStringLiteral("PRIORITY"), priority},
                             {QStringLiteral("HOST"), QStringLiteral("host1")},
                             {QStringLiteral("ISODATE"), QStringLiteral("2024-03-01T10:00:00+03:00")},
                             {QStringLiteral("MSG"), QJsonObject{{source, body}}}};
    return QJsonDocument(record).toJson(QJsonDocument::Compact);
}

inline Event *event(const QByteArray &bytes, quint32 number = 0)
{
    std::unique_ptr<Event> parsed = LineParser::parseLine(bytes);
    if (!parsed)
        qFatal("test line does not parse: %s", bytes.constData());
    parsed->number = number;
    return parsed.release();
}

using Rows = QVector<QPair<QString, QString>>;

inline Rows tableRows(const QTableWidget *table)
{
    Rows rows;
    for (int row = 0; row < table->rowCount(); ++row) {
        const QTableWidgetItem *label = table->item(row, 0);
        const QTableWidgetItem *value = table->item(row, 1);
        rows.append({label ? label->text() : QString(), value ? value->text() : QString()});
    }
    return rows;
}

inline int rowOf(const Rows &rows, const QString &label)
{
    for (int i = 0; i < rows.size(); ++i) {
        if (rows.at(i).first == label)
            return i;
    }
    return -1;
}
}
