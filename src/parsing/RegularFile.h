// SPDX-FileCopyrightText: 2026 The trelvik developers
//
// SPDX-License-Identifier: GPL-2.0-or-later

#pragma once

#include <QIODevice>

class QFile;
class QString;

// Opens journals for reading, refusing anything but a regular file. A plain open()
// of a FIFO blocks until some writer appears, and a device or socket never ends:
// either would hang the thread that asked. The test is made on the opened descriptor,
// so a file replaced between a check and the open cannot slip through.
class RegularFile
{
public:
    // Opens `path` read-only into `file` (whose name is set to `path`); false, with
    // the file closed, for a missing or unreadable path or one that is not a regular file.
    static bool open(QFile &file, const QString &path, QIODevice::OpenMode mode = QIODevice::ReadOnly);

    // Why open() refuses `path`, told apart so that the user learns what to change.
    enum class Problem {
        None,           // it would open (or the obstacle has just gone)
        Missing,        // no such file, or a folder on the way is missing
        AccessDenied,   // it exists but may not be read
        Folder,
        NotRegularFile, // a pipe, socket or device
    };
    static Problem problemWith(const QString &path);
};
