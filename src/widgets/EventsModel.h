// SPDX-FileCopyrightText: 2026 The trelvik developers
//
// SPDX-License-Identifier: GPL-2.0-or-later

#pragma once

#include <QAbstractTableModel>
#include <QColor>
#include <QHash>
#include <QString>
#include <QVector>

#include <vector>

class AuxParRegistry;
class Event;

// One page of events as a table: six fixed columns, then one column per auxiliary
// parameter (built-in kinds and the site's custom ones) in ascending header order.
// Owns the events it shows.
class EventsModel : public QAbstractTableModel
{
    Q_OBJECT
public:
    enum FixedColumn {
        NumberColumn = 0,
        TimeColumn,
        MessageIdColumn,
        TypeColumn,
        PriorityColumn,
        NameColumn,
        FixedColumnCount,
    };

    explicit EventsModel(QObject *parent = nullptr);
    EventsModel(const AuxParRegistry &registry, QObject *parent = nullptr);
    ~EventsModel() override;

    int rowCount(const QModelIndex &parent = QModelIndex()) const override;
    int columnCount(const QModelIndex &parent = QModelIndex()) const override;
    QVariant data(const QModelIndex &index, int role = Qt::DisplayRole) const override;
    QVariant headerData(int section, Qt::Orientation orientation, int role = Qt::DisplayRole) const override;

    // Takes the events over and deletes the ones held before.
    void setEvents(std::vector<Event *> events);
    void clear();
    // Null for a row outside the page.
    const Event *event(int row) const;
    const std::vector<Event *> &events() const { return m_events; }

    int firstAuxColumn() const { return FixedColumnCount; }
    // Column of a built-in kind by type number, or of a parameter by its journal key
    // (custom parameters: their declared name); -1 when it has no column.
    int columnOfType(int type) const;
    int columnOfName(const QString &name) const;
    // For an auxiliary column: the built-in type number (-1 for a custom parameter)
    // and the journal key or custom name.
    int typeOfColumn(int column) const;
    QString nameOfColumn(int column) const;

    // The shade of a priority colour (`design`: red or dark yellow) the table writes on
    // `palette`, shared by everything that stands for those rows.
    static QColor severityColour(const QColor &design, const QPalette &palette);

private:
    struct AuxColumn {
        QString header;
        QString name;
        int type; // -1: custom parameter
    };
    QString auxText(const Event &event, const AuxColumn &column) const;
    // Text colours of the two severity groups that read well on the current palette.
    struct PriorityColours {
        qint64 paletteKey = -1;
        QColor severe;
        QColor warning;
    };
    const PriorityColours &paletteColours() const;

    std::vector<Event *> m_events;
    QVector<AuxColumn> m_auxColumns;
    QHash<QString, int> m_positionByName;
    QHash<int, int> m_positionByType;
    int m_endColumn = FixedColumnCount;
    mutable PriorityColours m_colours;
};
