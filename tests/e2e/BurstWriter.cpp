// SPDX-FileCopyrightText: 2026 The trelvik developers
//
// SPDX-License-Identifier: GPL-2.0-or-later

#include "BurstWriter.h"

#include <QFile>

#include <algorithm>
#include <cerrno>
#include <chrono>
#include <cstring>

#include <sys/socket.h>
#include <sys/time.h>
#include <sys/un.h>
#include <unistd.h>

BurstWriter::BurstWriter(std::vector<QByteArray> bursts)
    : m_bursts(std::move(bursts))
    , m_pace(m_bursts.size(), 0)
{
}

BurstWriter::~BurstWriter()
{
    finish();
}

bool BurstWriter::connectTo(const QString &socketPath)
{
    if (m_fd >= 0)
        return true;
    const QByteArray path = QFile::encodeName(socketPath);
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    if (path.size() >= int(sizeof(address.sun_path)))
        return false;
    std::memcpy(address.sun_path, path.constData(), size_t(path.size()));
    const int fd = ::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0);
    if (fd < 0)
        return false;
    if (::connect(fd, reinterpret_cast<const sockaddr *>(&address), sizeof(address)) != 0) {
        ::close(fd);
        return false;
    }
    // A logger that stops reading altogether must not hang the test for good.
    timeval timeout{30, 0};
    ::setsockopt(fd, SOL_SOCKET, SO_SNDTIMEO, &timeout, sizeof(timeout));
    m_fd = fd;
    m_thread = std::thread([this] { run(); });
    return true;
}

void BurstWriter::release(int count)
{
    {
        std::lock_guard<std::mutex> lock(m_mutex);
        m_released = std::max(m_released, std::min(count, burstCount()));
    }
    m_wake.notify_one();
}

void BurstWriter::pace(int burst, int linesPerMillisecond)
{
    std::lock_guard<std::mutex> lock(m_mutex);
    if (burst >= 0 && burst < burstCount())
        m_pace[size_t(burst)] = linesPerMillisecond;
}

QString BurstWriter::error() const
{
    std::lock_guard<std::mutex> lock(m_mutex);
    return m_error;
}

void BurstWriter::finish()
{
    {
        std::lock_guard<std::mutex> lock(m_mutex);
        m_stop = true;
    }
    m_wake.notify_one();
    if (m_fd >= 0)
        ::shutdown(m_fd, SHUT_RDWR);
    if (m_thread.joinable())
        m_thread.join();
    if (m_fd >= 0)
        ::close(m_fd);
    m_fd = -1;
}

void BurstWriter::run()
{
    for (int next = 0; next < burstCount(); ++next) {
        int pace = 0;
        {
            std::unique_lock<std::mutex> lock(m_mutex);
            m_wake.wait(lock, [&] { return m_stop || next < m_released; });
            if (m_stop)
                return;
            pace = m_pace[size_t(next)];
        }
        const QByteArray &burst = m_bursts[size_t(next)];
        if (!(pace > 0 ? sendPaced(burst, pace) : sendAll(burst.constData(), burst.size())))
            return;
        m_sent.store(next + 1);
    }
}

bool BurstWriter::sendPaced(const QByteArray &bytes, int linesPerMillisecond)
{
    qint64 from = 0;
    while (from < bytes.size()) {
        qint64 to = from;
        for (int lines = 0; lines < linesPerMillisecond && to < bytes.size(); ++lines) {
            const qint64 feed = bytes.indexOf('\n', int(to));
            to = feed < 0 ? bytes.size() : feed + 1;
        }
        if (!sendAll(bytes.constData() + from, to - from))
            return false;
        from = to;
        {
            std::unique_lock<std::mutex> lock(m_mutex);
            if (m_wake.wait_for(lock, std::chrono::milliseconds(1), [this] { return m_stop; }))
                return false;
        }
    }
    return true;
}

bool BurstWriter::sendAll(const char *data, qint64 size)
{
    qint64 left = size;
    while (left > 0) {
        const ssize_t written = ::send(m_fd, data, size_t(left), MSG_NOSIGNAL);
        if (written < 0 && errno == EINTR)
            continue;
        if (written <= 0) {
            std::lock_guard<std::mutex> lock(m_mutex);
            m_error = QString::fromLocal8Bit(std::strerror(errno));
            m_failed.store(true);
            return false;
        }
        data += written;
        left -= written;
    }
    return true;
}
