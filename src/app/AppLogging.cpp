// SPDX-FileCopyrightText: 2026 The trelvik developers
//
// SPDX-License-Identifier: GPL-2.0-or-later

#include "AppLogging.h"

Q_LOGGING_CATEGORY(nimbApp, "nimb.app", QtWarningMsg)
