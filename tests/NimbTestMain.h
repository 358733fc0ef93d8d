// SPDX-FileCopyrightText: 2026 The trelvik developers
//
// SPDX-License-Identifier: GPL-2.0-or-later

#pragma once

#include <QtTest>

// The dictionary and the parameter registry read the system tree once, on first use,
// so the tree is redirected before anything else runs.
#define NIMB_TEST_MAIN_WITH(TestClass, Application, sysroot)                                                \
    int main(int argc, char **argv)                                                                         \
    {                                                                                                       \
        qputenv("NIMB_EVENT_VIEWER_SYSROOT", QByteArray(sysroot));                                           \
        Application app(argc, argv);                                                                        \
        TestClass test;                                                                                     \
        return QTest::qExec(&test, argc, argv);                                                             \
    }

#define NIMB_TEST_MAIN(TestClass) NIMB_TEST_MAIN_WITH(TestClass, QCoreApplication, NIMB_TEST_DATA_DIR "/model/sysroot")
