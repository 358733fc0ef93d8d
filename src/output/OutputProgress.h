// SPDX-FileCopyrightText: 2026 The trelvik developers
//
// SPDX-License-Identifier: GPL-2.0-or-later

#pragma once

#include <QObject>
#include <QString>

#include <atomic>
#include <mutex>

// Progress and cancellation of one export or print job. The job's thread reports,
// any thread may ask to stop; percentChanged reaches receivers on other threads
// through queued delivery.
class OutputProgress : public QObject
{
    Q_OBJECT
public:
    explicit OutputProgress(QObject *parent = nullptr);

    // Emits percentChanged when the whole percent grows.
    void report(qint64 done, qint64 total);
    int percent() const { return m_percent.load(std::memory_order_relaxed); }

    void requestStop() { m_stop.store(true, std::memory_order_relaxed); }
    bool stopRequested() const { return m_stop.load(std::memory_order_relaxed); }

    // How the job ended: the number of events it wrote or printed, or -1 when it
    // had nowhere to put them (a file that could not be written in full, a printer
    // that cannot be drawn on) or was stopped before its end. The job's thread sets
    // it last; read it once the thread ended.
    void setOutcome(int events) { m_outcome.store(events); }
    int outcome() const { return m_outcome.load(); }
    // Why a file could not be written, as the system said it; empty when the job did
    // not fail on a file. Set and read like the outcome.
    void setFailure(const QString &reason);
    QString failure() const;

Q_SIGNALS:
    void percentChanged(int percent);

private:
    std::atomic<int> m_percent{0};
    std::atomic<bool> m_stop{false};
    std::atomic<int> m_outcome{-1};
    mutable std::mutex m_failureMutex;
    QString m_failure;
};
