// SPDX-FileCopyrightText: 2026 The trelvik developers
//
// SPDX-License-Identifier: GPL-2.0-or-later

#pragma once

// Qt and the C library are not built for ThreadSanitizer: their locks, event queues and
// allocations are invisible to it, so memory they hand between threads would be reported
// as raced. Reports about our own code are unaffected. Include in one file per test.
#if defined(__SANITIZE_THREAD__)
extern "C" const char *__tsan_default_options()
{
    return "ignore_noninstrumented_modules=1";
}
#endif
