// SPDX-FileCopyrightText: 2026 The trelvik developers
//
// SPDX-License-Identifier: GPL-2.0-or-later

#pragma once

#include <QLoggingCategory>

// Start-up and window events; silent unless enabled, e.g. with
// QT_LOGGING_RULES="nimb.app.info=true".
Q_DECLARE_LOGGING_CATEGORY(nimbApp)
