// SPDX-FileCopyrightText: 2026 The trelvik developers
//
// SPDX-License-Identifier: GPL-2.0-or-later

#include "NotificationHelper.h"

#include <KAuth/HelperSupport>

KAUTH_HELPER_MAIN(NIMB_KAUTH_HELPER_ID, NotificationHelper)
