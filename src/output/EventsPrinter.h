// SPDX-FileCopyrightText: 2026 The trelvik developers
//
// SPDX-License-Identifier: GPL-2.0-or-later

#pragma once

#include <QObject>
#include <QStringList>

#include <atomic>
#include <functional>
#include <memory>
#include <mutex>
#include <vector>

class Event;
class EventsSelection;
class JournalRows;
class OutputProgress;
class QPrinter;

// Draws events as a paged report onto its printer: A4 landscape, a dated title
// "LOG REPORT", then a table of six columns whose titles head every page, rows kept
// whole on one page, the page number at the bottom right of each page. Used from
// a worker thread, by one job at a time.
class EventsPrinter : public QObject
{
    Q_OBJECT
public:
    explicit EventsPrinter(QObject *parent = nullptr);
    ~EventsPrinter() override;

    // The main window's print dialog configures it before a job starts, never while
    // one runs.
    QPrinter *printer() const { return m_printer.get(); }
    // A job is drawing; any thread may ask.
    bool isPrinting() const { return m_printing.load(); }
    QStringList columnTitles() const { return m_titles; }

    // Each returns the number of pages drawn; 0 when the painter could not be begun
    // or the printer's file could not be written (see PrintedFile). A second job
    // waits for the first.
    int print(const std::vector<const Event *> &events);
    // Rows of a journal, read and drawn batch by batch.
    int print(const JournalRows &rows, OutputProgress *progress = nullptr);
    // One print job, the number of events drawn left as the progress's outcome and
    // the reason a file could not be written as its failure. Call it on the job's thread.
    int print(const EventsSelection &selection, OutputProgress *progress = nullptr);

private:
    class Report;

    // One job around `draw`, which returns the pages it drew and sets the events.
    int runJob(OutputProgress *progress, const std::function<int(int *printed)> &draw);
    int drawList(const std::vector<const Event *> &events, int *printed);
    int drawRows(const JournalRows &rows, OutputProgress *progress, int *printed);

    std::unique_ptr<QPrinter> m_printer;
    QStringList m_titles;
    std::mutex m_jobMutex;
    std::atomic<bool> m_printing{false};
};
