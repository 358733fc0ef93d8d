// SPDX-FileCopyrightText: 2026 The trelvik developers
//
// SPDX-License-Identifier: GPL-2.0-or-later

#pragma once

#include <QtGlobal>

// The current local year, as the legacy date reader takes it from the clock on every
// call: read through the cheap clock against the bounds of the local year, found once
// a year instead of once a line. One per thread.
class LocalYear
{
public:
    int current();

private:
    int m_year = 0;
    qint64 m_from = 0;
    qint64 m_until = 0;
};
