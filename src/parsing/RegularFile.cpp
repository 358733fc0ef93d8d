// SPDX-FileCopyrightText: 2026 The trelvik developers
//
// SPDX-License-Identifier: GPL-2.0-or-later

#include "RegularFile.h"

#include <QFile>
#include <QString>

#include <cerrno>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

bool RegularFile::open(QFile &file, const QString &path, QIODevice::OpenMode mode)
{
    if (file.isOpen())
        file.close();
    file.setFileName(path);
    // Non-blocking only for the open itself: on a FIFO without a writer a blocking
    // open would wait for good.
    const int fd = ::open(QFile::encodeName(path).constData(), O_RDONLY | O_NONBLOCK | O_CLOEXEC | O_NOCTTY);
    if (fd < 0)
        return false;
    struct stat status;
    if (::fstat(fd, &status) != 0 || !S_ISREG(status.st_mode)) {
        ::close(fd);
        return false;
    }
    const int flags = ::fcntl(fd, F_GETFL);
    if (flags < 0 || ::fcntl(fd, F_SETFL, flags & ~O_NONBLOCK) != 0) {
        ::close(fd);
        return false;
    }
    // Whether a failed open() already closed the descriptor is Qt's business; closing
    // it here as well could close a descriptor another thread has just been given.
    return file.open(fd, (mode & ~QIODevice::WriteOnly) | QIODevice::ReadOnly, QFileDevice::AutoCloseHandle);
}

RegularFile::Problem RegularFile::problemWith(const QString &path)
{
    const QByteArray name = QFile::encodeName(path);
    struct stat status;
    if (::stat(name.constData(), &status) != 0)
        return errno == EACCES ? Problem::AccessDenied : Problem::Missing;
    if (S_ISDIR(status.st_mode))
        return Problem::Folder;
    if (!S_ISREG(status.st_mode))
        return Problem::NotRegularFile;
    // Opening is the only reliable test of read permission (ACLs, capabilities).
    const int fd = ::open(name.constData(), O_RDONLY | O_NONBLOCK | O_CLOEXEC | O_NOCTTY);
    if (fd < 0)
        return errno == ENOENT ? Problem::Missing : Problem::AccessDenied;
    ::close(fd);
    return Problem::None;
}
