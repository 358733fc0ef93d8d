// SPDX-FileCopyrightText: 2026 The trelvik developers
// SPDX-License-Identifier: GPL-2.0-or-later

#pragma once

#include <QCryptographicHash>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QString>

#include <csignal>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/sysmacros.h>

// Targets on which writing fails, also for root, whom permission bits do not stop.
namespace failing
{
// While it lives, no file of the process grows beyond `bytes`: a write past that point
// fails as on a full disk. The signal the system sends for it is ignored, so that the
// write merely fails.
class FileSizeLimit
{
public:
    explicit FileSizeLimit(rlim_t bytes)
    {
        std::signal(SIGXFSZ, SIG_IGN);
        getrlimit(RLIMIT_FSIZE, &m_earlier);
        rlimit limit = m_earlier;
        limit.rlim_cur = bytes;
        setrlimit(RLIMIT_FSIZE, &limit);
    }
    ~FileSizeLimit() { setrlimit(RLIMIT_FSIZE, &m_earlier); }
    FileSizeLimit(const FileSizeLimit &) = delete;
    FileSizeLimit &operator=(const FileSizeLimit &) = delete;

private:
    rlimit m_earlier{};
};

// The system's full device, which takes no byte, as `name` in `folder`: a node of the
// test's own, so that a writer that renamed over it would replace this node and not
// /dev/full; a link to /dev/full where nodes cannot be made, which also means that
// /dev cannot be written.
inline QString fullDevice(const QString &folder, const QString &name)
{
    const QString node = folder + QLatin1Char('/') + name;
    QFile::remove(node);
    if (::mknod(QFile::encodeName(node).constData(), S_IFCHR | 0666, makedev(1, 7)) != 0)
        QFile::link(QStringLiteral("/dev/full"), node);
    return node;
}

// What a target is and holds: a device, a folder and its entries, or a file's bytes.
inline QByteArray stateOf(const QString &path)
{
    const QFileInfo info(path);
    if (!info.exists())
        return "missing";
    if (info.isDir())
        return "folder " + QDir(path).entryList(QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot).join('/').toUtf8();
    if (!info.isFile())
        return "device";
    QFile file(path);
    return file.open(QIODevice::ReadOnly)
        ? "file " + QCryptographicHash::hash(file.readAll(), QCryptographicHash::Sha256).toHex()
        : "unreadable";
}

// The names beside the target that begin with its name: a file written beside it on
// the way shows here.
inline QStringList besides(const QString &path)
{
    const QFileInfo info(path);
    return QDir(info.absolutePath())
        .entryList({info.fileName() + QLatin1Char('*')}, QDir::AllEntries | QDir::Hidden | QDir::System | QDir::NoDotAndDotDot);
}
}
