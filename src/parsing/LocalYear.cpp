// SPDX-FileCopyrightText: 2026 The trelvik developers
//
// SPDX-License-Identifier: GPL-2.0-or-later

#include "LocalYear.h"

#include <QDateTime>

#include <ctime>

int LocalYear::current()
{
    const qint64 now = qint64(std::time(nullptr));
    if (now < m_from || now >= m_until) {
        m_year = QDate::currentDate().year();
        const QDateTime from(QDate(m_year, 1, 1), QTime(0, 0), Qt::LocalTime);
        const QDateTime until(QDate(m_year + 1, 1, 1), QTime(0, 0), Qt::LocalTime);
        const bool bounded = from.isValid() && until.isValid();
        m_from = bounded ? from.toSecsSinceEpoch() : now;
        m_until = bounded ? until.toSecsSinceEpoch() : now;
    }
    return m_year;
}
