// SPDX-FileCopyrightText: 2026 The trelvik developers
//
// SPDX-License-Identifier: GPL-2.0-or-later

#include "EventsModel.h"

#include "AuxParRegistry.h"
#include "Dictionary.h"
#include "Event.h"
#include "Language.h"

#include <QApplication>
#include <QColor>
#include <QPalette>

#include <algorithm>
#include <cmath>

namespace
{
// Relative luminance as the web content accessibility guidelines define it.
double luminance(const QColor &colour)
{
    const auto channel = [](double value) {
        return value <= 0.04045 ? value / 12.92 : std::pow((value + 0.055) / 1.055, 2.4);
    };
    return 0.2126 * channel(colour.redF()) + 0.7152 * channel(colour.greenF()) + 0.0722 * channel(colour.blueF());
}

double contrast(const QColor &a, const QColor &b)
{
    const double la = luminance(a);
    const double lb = luminance(b);
    return (std::max(la, lb) + 0.05) / (std::min(la, lb) + 0.05);
}
}

EventsModel::EventsModel(QObject *parent) : EventsModel(AuxParRegistry::instance(), parent) {}

EventsModel::EventsModel(const AuxParRegistry &registry, QObject *parent) : QAbstractTableModel(parent)
{
    for (int type = 0; type < AuxParRegistry::count(); ++type) {
        // The fixed columns already show the time and the type.
        if (type == AuxParId::Time || type == AuxParId::TypeEn || type == AuxParId::TypeRu)
            continue;
        const AuxPar *prototype = registry.prototype(type);
        m_auxColumns.append({prototype->label(), prototype->key(), type});
    }
    for (const CustomParameter &parameter : registry.customParameters())
        m_auxColumns.append({parameter.label, parameter.name, -1});

    std::stable_sort(m_auxColumns.begin(), m_auxColumns.end(),
                     [](const AuxColumn &a, const AuxColumn &b) { return a.header < b.header; });

    for (int position = 0; position < m_auxColumns.size(); ++position) {
        const AuxColumn &column = m_auxColumns.at(position);
        // A custom name that repeats a built-in key cannot be told apart by name;
        // the built-in column keeps it.
        if (column.type >= 0 || !m_positionByName.contains(column.name))
            m_positionByName.insert(column.name, position);
        if (column.type >= 0)
            m_positionByType.insert(column.type, position);
    }
    m_endColumn = FixedColumnCount + m_auxColumns.size();
}

EventsModel::~EventsModel()
{
    for (Event *event : m_events)
        delete event;
}

int EventsModel::rowCount(const QModelIndex &parent) const
{
    return parent.isValid() ? 0 : int(m_events.size());
}

int EventsModel::columnCount(const QModelIndex &parent) const
{
    return parent.isValid() ? 0 : m_endColumn;
}

QVariant EventsModel::data(const QModelIndex &index, int role) const
{
    const Event *shown = index.isValid() && index.column() < m_endColumn ? event(index.row()) : nullptr;
    if (!shown)
        return QVariant();

    if (role == Qt::ForegroundRole) {
        switch (shown->priority) {
        case Event::Emergency:
        case Event::Alert:
        case Event::Critical:
            return paletteColours().severe;
        case Event::Error:
        case Event::Warning:
            return paletteColours().warning;
        default:
            return QVariant();
        }
    }
    if (role != Qt::DisplayRole)
        return QVariant();

    switch (index.column()) {
    case NumberColumn:
        return shown->number;
    case TimeColumn:
        return shown->time.toString(Qt::ISODate);
    case MessageIdColumn:
        return shown->messageId;
    case TypeColumn:
        return shown->typeText();
    case PriorityColumn:
        return Dictionary::instance().priorityText(shown->priority);
    case NameColumn:
        return Language::isRussian() ? shown->nameRu : shown->nameEn;
    default:
        return auxText(*shown, m_auxColumns.at(index.column() - FixedColumnCount));
    }
}

QVariant EventsModel::headerData(int section, Qt::Orientation orientation, int role) const
{
    if (orientation != Qt::Horizontal || role != Qt::DisplayRole)
        return QVariant();
    switch (section) {
    case NumberColumn:
        return tr("№");
    case TimeColumn:
        return tr("Date and time");
    case MessageIdColumn:
        return tr("Message ID");
    case TypeColumn:
        return tr("Event type");
    case PriorityColumn:
        return tr("Priority");
    case NameColumn:
        return tr("Event name");
    default:
        if (section < FixedColumnCount || section >= m_endColumn)
            return QVariant();
        return m_auxColumns.at(section - FixedColumnCount).header;
    }
}

void EventsModel::setEvents(std::vector<Event *> events)
{
    beginResetModel();
    std::vector<Event *> old;
    old.swap(m_events);
    m_events = std::move(events);
    endResetModel();
    // Views may still ask for data until the reset has ended.
    for (Event *event : old)
        delete event;
}

void EventsModel::clear()
{
    setEvents({});
}

const Event *EventsModel::event(int row) const
{
    if (row < 0 || std::size_t(row) >= m_events.size())
        return nullptr;
    return m_events[std::size_t(row)];
}

int EventsModel::columnOfType(int type) const
{
    const auto it = m_positionByType.constFind(type);
    return it == m_positionByType.cend() ? -1 : FixedColumnCount + it.value();
}

int EventsModel::columnOfName(const QString &name) const
{
    const auto it = m_positionByName.constFind(name);
    return it == m_positionByName.cend() ? -1 : FixedColumnCount + it.value();
}

int EventsModel::typeOfColumn(int column) const
{
    if (column < FixedColumnCount || column >= m_endColumn)
        return -1;
    return m_auxColumns.at(column - FixedColumnCount).type;
}

QString EventsModel::nameOfColumn(int column) const
{
    if (column < FixedColumnCount || column >= m_endColumn)
        return QString();
    return m_auxColumns.at(column - FixedColumnCount).name;
}

QString EventsModel::auxText(const Event &event, const AuxColumn &column) const
{
    if (column.type < 0)
        return event.customParameters.value(column.name);
    const AuxPar *parameter = event.parameters.value(column.type);
    return parameter ? parameter->toString() : QString();
}

// The design's colour is meant for dark text on a light base and stays as it is
// there. Light text on a dark base (a dark colour scheme) asks for a lighter shade
// of the same hue: dark yellow would all but vanish on it. The shade is lightened
// until it reads as body text does (4.5:1) on both row colours.
QColor EventsModel::severityColour(const QColor &design, const QPalette &palette)
{
    const QColor base = palette.color(QPalette::Base);
    const QColor alternate = palette.color(QPalette::AlternateBase);
    if (luminance(palette.color(QPalette::Text)) <= luminance(base))
        return design;
    QColor shade = design.toHsl();
    while (shade.lightness() < 255 && std::min(contrast(shade, base), contrast(shade, alternate)) < 4.5)
        shade.setHsl(shade.hslHue(), shade.hslSaturation(), std::min(255, shade.lightness() + 4));
    return shade.toRgb();
}

const EventsModel::PriorityColours &EventsModel::paletteColours() const
{
    // The palette the views draw with; it changes when the user picks another scheme.
    const QPalette palette = QApplication::palette("QAbstractItemView");
    if (palette.cacheKey() != m_colours.paletteKey) {
        m_colours.severe = severityColour(Qt::red, palette);
        m_colours.warning = severityColour(Qt::darkYellow, palette);
        m_colours.paletteKey = palette.cacheKey();
    }
    return m_colours;
}
