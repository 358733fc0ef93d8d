// SPDX-FileCopyrightText: 2026 The trelvik developers
//
// SPDX-License-Identifier: GPL-2.0-or-later

// The log-rotation configuration that names the main journal. Whatever the file
// holds, the scheme read from it is one the information window can word.

#include "FuzzTarget.h"

#include "LogInfoWindow.h"

NIMB_FUZZ_TARGET(logrotate)
{
    const QString root = fuzzsupport::setUp();
    const QString path = root + QStringLiteral("/logrotate.conf");
    if (!fuzzsupport::writeFile(path, reinterpret_cast<const char *>(data), qint64(size)))
        return 0;
    const LogInfoWindow::Rotation rotation =
        LogInfoWindow::readRotation(path, QStringLiteral("/quorv/log/velmo/events"));
    FUZZ_CHECK(rotation.kind >= LogInfoWindow::NoRotation && rotation.kind <= LogInfoWindow::Yearly);
    FUZZ_CHECK(LogInfoWindow::rotationText(rotation).isEmpty() == (rotation.kind == LogInfoWindow::NoRotation));
    // The size of a file with these bytes, worded as the window shows it.
    quint64 bytes = 0;
    for (size_t i = 0; i < size && i < 8; ++i)
        bytes = (bytes << 8) | data[i];
    FUZZ_CHECK(!LogInfoWindow::sizeText(bytes).isEmpty());
    return 0;
}
