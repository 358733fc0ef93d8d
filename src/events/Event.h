// SPDX-FileCopyrightText: 2026 The trelvik developers
//
// SPDX-License-Identifier: GPL-2.0-or-later

#pragma once

#include "AuxPar.h"
#include "AuxParKindTable.h"

#include <QDateTime>
#include <QMap>
#include <QMetaType>
#include <QPair>
#include <QString>
#include <QVector>

#include <array>
#include <memory>

// The auxiliary parameters of one event, keyed by type number. A fixed slot per kind
// keeps lookups cheap on the counting threads and gives a stable iteration order.
class ParameterMap
{
public:
    const AuxPar *value(int type) const;
    bool contains(int type) const { return value(type) != nullptr; }
    int size() const { return m_size; }
    // Takes ownership; replaces an object of the same type.
    void insert(std::unique_ptr<AuxPar> parameter);

    template<typename Function>
    void forEach(Function function) const
    {
        for (const auto &slot : m_slots)
            if (slot)
                function(*slot);
    }

private:
    std::array<std::unique_ptr<AuxPar>, kAuxParKindCount> m_slots;
    int m_size = 0;
};

// One journal record after parsing. Created by the line parser, handed between
// threads by pointer, deleted by whoever holds it last.
class Event
{
public:
    enum Priority : qint32 {
        Unknown = 0,
        Emergency = 1,
        Alert = 2,
        Critical = 3,
        Error = 4,
        Warning = 5,
        Notice = 6,
        Info = 7,
        Debug = 8,
    };

    using Row = QPair<QString, QString>;

    Event() = default;
    Event(const Event &) = delete;
    Event &operator=(const Event &) = delete;

    // The journal's word for a priority, exact and case-sensitive; Unknown otherwise.
    static Priority priorityFromWord(const QString &word);
    static Priority priorityFromWord(QLatin1String word);

    QString typeText() const;
    QString eventName() const;
    QString host() const;
    QString source() const;
    QString sourceText() const;
    QString priorityText() const;
    QVector<Row> parameterList() const;
    QString copyLine() const;

    quint32 number = 0;
    Priority priority = Unknown;
    QDateTime time;
    QString facility;
    QString messageId;
    QString nameEn;
    QString nameRu;
    ParameterMap parameters;
    // Custom parameter name -> text value, for the names the site declared.
    QMap<QString, QString> customParameters;

private:
    // Label and text of every parameter that carries a value, custom ones last.
    QVector<Row> detailRows() const;
};

Q_DECLARE_METATYPE(Event::Priority)
