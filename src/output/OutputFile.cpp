// SPDX-FileCopyrightText: 2026 The trelvik developers
// SPDX-License-Identifier: GPL-2.0-or-later

#include "OutputFile.h"

#include <QFileInfo>
#include <QSaveFile>

OutputFile::OutputFile(const QString &path)
    : m_path(path)
{
}

OutputFile::~OutputFile()
{
    discard();
}

bool OutputFile::open()
{
    const QFileInfo target(m_path);
    m_direct = target.exists() && !target.isFile() && !target.isDir();
    if (m_direct)
        m_device = std::make_unique<QFile>(m_path);
    else
        m_device = std::make_unique<QSaveFile>(m_path);
    // Unbuffered: a write cut short (a full disk, a size limit) shows in the count
    // written, which a buffered flush would leave unnoticed.
    if (!m_device->open(QIODevice::WriteOnly | QIODevice::Unbuffered)) {
        fail(m_device->errorString());
        m_device.reset();
        return false;
    }
    return true;
}

bool OutputFile::write(const char *data, qint64 size)
{
    if (!m_device || failed())
        return false;
    while (size > 0) {
        // A short write is followed by another: the system then names its reason.
        const qint64 written = m_device->write(data, size);
        if (written <= 0) {
            fail(m_device->errorString());
            return false;
        }
        data += written;
        size -= written;
    }
    return true;
}

bool OutputFile::write(const QByteArray &bytes)
{
    return write(bytes.constData(), bytes.size());
}

bool OutputFile::commit()
{
    if (!m_device || failed()) {
        discard();
        return false;
    }
    bool done;
    if (m_direct) {
        m_device->close();
        done = m_device->error() == QFileDevice::NoError;
    } else {
        done = static_cast<QSaveFile *>(m_device.get())->commit();
    }
    if (!done)
        fail(m_device->errorString());
    m_device.reset();
    return done;
}

void OutputFile::discard()
{
    if (!m_device)
        return;
    if (!m_direct)
        static_cast<QSaveFile *>(m_device.get())->cancelWriting();
    m_device.reset();
}

void OutputFile::fail(const QString &reason)
{
    if (!m_failed)
        m_error = reason;
    m_failed = true;
}
