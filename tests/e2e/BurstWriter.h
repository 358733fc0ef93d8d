// SPDX-FileCopyrightText: 2026 The trelvik developers
//
// SPDX-License-Identifier: GPL-2.0-or-later

#pragma once

#include <QByteArray>
#include <QString>

#include <atomic>
#include <condition_variable>
#include <mutex>
#include <thread>
#include <vector>

// Sends prepared bursts of log lines to a local stream socket on a thread of its own,
// one burst each time the test releases one. A logger under flow control may keep a
// send waiting for a long time; the test's event loop must go on meanwhile.
class BurstWriter
{
public:
    explicit BurstWriter(std::vector<QByteArray> bursts);
    ~BurstWriter();
    BurstWriter(const BurstWriter &) = delete;
    BurstWriter &operator=(const BurstWriter &) = delete;

    // One attempt to connect; false while the logger is not listening yet.
    bool connectTo(const QString &socketPath);
    // Bursts [0, count) may be sent, in order.
    void release(int count);
    // Sends that burst at about this many lines per millisecond instead of at once, so
    // that something else can happen in the middle of it. Before release() only.
    void pace(int burst, int linesPerMillisecond);
    // Bursts handed to the socket completely.
    int sent() const { return m_sent.load(); }
    int burstCount() const { return static_cast<int>(m_bursts.size()); }
    bool failed() const { return m_failed.load(); }
    QString error() const;
    // Stops after the current send (cut short when the socket is shut down) and joins.
    void finish();

private:
    void run();
    bool sendAll(const char *data, qint64 size);
    bool sendPaced(const QByteArray &bytes, int linesPerMillisecond);

    std::vector<QByteArray> m_bursts;
    std::vector<int> m_pace;
    int m_fd = -1;
    std::thread m_thread;
    mutable std::mutex m_mutex;
    std::condition_variable m_wake;
    int m_released = 0;
    bool m_stop = false;
    QString m_error;
    std::atomic<int> m_sent{0};
    std::atomic<bool> m_failed{false};
};
