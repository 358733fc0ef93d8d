// SPDX-FileCopyrightText: 2026 The trelvik developers
//
// SPDX-License-Identifier: GPL-2.0-or-later

#include "FuzzTarget.h"

#include <QByteArray>
#include <QDir>
#include <QFile>

#include <fcntl.h>
#include <sys/stat.h>

#include <cstdlib>

namespace fuzzsupport
{
QString setUp()
{
    static const QString directory = [] {
        if (qEnvironmentVariableIsEmpty("NIMB_EVENT_VIEWER_SYSROOT"))
            qputenv("NIMB_EVENT_VIEWER_SYSROOT", QByteArray(NIMB_TEST_DATA_DIR "/model/sysroot"));
        // Unpacked copies can be large: memory-backed when the machine has it.
        QByteArray base = qgetenv("NIMB_FUZZ_TMP");
        if (base.isEmpty())
            base = QDir(QStringLiteral("/dev/shm")).exists() ? QByteArray("/dev/shm") : QByteArray("/tmp");
        QByteArray pattern = base + "/nimb-fuzz-XXXXXX";
        const char *made = ::mkdtemp(pattern.data());
        if (!made) {
            std::perror("mkdtemp");
            std::abort();
        }
        const QString root = QFile::decodeName(made);
        QDir(root).mkpath(QStringLiteral("tmp"));
        QDir(root).mkpath(QStringLiteral("config"));
        qputenv("TMPDIR", QFile::encodeName(root + QStringLiteral("/tmp")));
        qputenv("HOME", QFile::encodeName(root));
        qputenv("XDG_CONFIG_HOME", QFile::encodeName(root + QStringLiteral("/config")));
        // Removed at exit; the process is the fuzzer itself, so nothing else uses it.
        static QByteArray cleanup = QFile::encodeName(root);
        std::atexit([] { QDir(QFile::decodeName(cleanup)).removeRecursively(); });
        return root;
    }();
    return directory;
}

bool writeFile(const QString &path, const char *data, qint64 size)
{
    QFile file(path);
    if (!file.open(QIODevice::WriteOnly | QIODevice::Truncate))
        return false;
    return size == 0 || file.write(data, size) == size;
}

void touchUnique(const QString &path)
{
    static qint64 generation = 1000000000;
    ++generation;
    const timespec times[2] = {{generation, 0}, {generation, 0}};
    ::utimensat(AT_FDCWD, QFile::encodeName(path).constData(), times, 0);
}
}
