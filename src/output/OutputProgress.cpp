// SPDX-FileCopyrightText: 2026 The trelvik developers
//
// SPDX-License-Identifier: GPL-2.0-or-later

#include "OutputProgress.h"

#include <algorithm>

OutputProgress::OutputProgress(QObject *parent)
    : QObject(parent)
{
}

void OutputProgress::report(qint64 done, qint64 total)
{
    if (total <= 0)
        return;
    const int percent = static_cast<int>(std::min<qint64>(100, done * 100 / total));
    if (percent > m_percent.load(std::memory_order_relaxed)) {
        m_percent.store(percent, std::memory_order_relaxed);
        Q_EMIT percentChanged(percent);
    }
}

void OutputProgress::setFailure(const QString &reason)
{
    std::lock_guard<std::mutex> lock(m_failureMutex);
    m_failure = reason;
}

QString OutputProgress::failure() const
{
    std::lock_guard<std::mutex> lock(m_failureMutex);
    return m_failure;
}
