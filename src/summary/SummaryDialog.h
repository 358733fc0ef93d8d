// SPDX-FileCopyrightText: 2026 The trelvik developers
//
// SPDX-License-Identifier: GPL-2.0-or-later

#pragma once

#include "Event.h"
#include "FilterPack.h"
#include "MapForCounts.h"

#include <QDialog>
#include <QHash>
#include <QModelIndex>
#include <QThread>

#include <memory>

class AsyncLoader;
class QStandardItemModel;
class SummaryParser;

namespace Ui
{
class SummaryDialog;
}

// How many events of each priority and source a journal had in the last hour, day
// and week, as a tree of priorities, most severe first, with their sources by name.
// Counts on a thread of its own; a double click asks for the journal filtered by that
// priority (and source).
class SummaryDialog : public QDialog
{
    Q_OBJECT
public:
    enum Column {
        PriorityColumn = 0,
        SourceColumn,
        HourColumn,
        DayColumn,
        WeekColumn,
        ColumnCount,
    };

    explicit SummaryDialog(const QString &logPath, QWidget *parent = nullptr);
    ~SummaryDialog() override;

    QString logPath() const { return m_logPath; }
    // Ready for a count: none is running.
    bool isReady() const { return !m_counting; }
    // When ready, emits countRequestForSummary and returns true; otherwise does nothing.
    bool requestSummary();

    // The criteria of a filter request: the priority and, when not empty, the source.
    static FilterPack filterFor(Event::Priority priority, const QString &source);

    QStandardItemModel *model() const { return m_model; }

Q_SIGNALS:
    // Starts a count on the dialog's thread and shows the dialog with its progress.
    void countRequestForSummary();
    void filterRequest(Event::Priority priority, QString source);

public Q_SLOTS:
    // Replaces the tree with the counts and shows the dialog.
    void setCountsForSummary(MapForCounts counts);

private:
    void onCountRequested();
    void onPercentRead(int percent);
    void onDoubleClicked(const QModelIndex &index);

    std::unique_ptr<Ui::SummaryDialog> ui;
    QString m_logPath;
    std::unique_ptr<SummaryParser> m_parser;
    // Deleted when the thread finishes.
    AsyncLoader *m_loader = nullptr;
    QThread m_thread;
    QStandardItemModel *m_model = nullptr;
    QHash<QModelIndex, Event::Priority> m_priorities;
    QHash<QModelIndex, QString> m_sources;
    bool m_counting = false;
};
