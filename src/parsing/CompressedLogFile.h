// SPDX-FileCopyrightText: 2026 The trelvik developers
//
// SPDX-License-Identifier: GPL-2.0-or-later

#pragma once

#include <QString>

#include <atomic>
#include <functional>
#include <memory>

class QFile;
class QTemporaryFile;

// A rotated journal made readable for the parsers, which need to seek. A compressed
// rotation is unpacked in-process into a private temporary file (mode 0600, unique
// name) that lives exactly as long as this object; anything else is read in place.
//
// Construction only names and creates the copy; unpack() fills it and may take long,
// so it can run on another thread, report progress and be stopped. A rotation that
// unpacks to more than the limits allow is not unpacked at all: a small damaged or
// hostile archive must never fill the disk. Whenever unpacking fails the copy is
// left empty, so the journal test on readablePath() fails as for any unreadable file.
class CompressedLogFile
{
public:
    enum class Compression { None, GZip, BZip2, Xz, Zstd };
    enum class State {
        Ready,    // plain, or unpacked completely
        Pending,  // compressed, unpack() not yet run
        Damaged,  // unreadable, unsupported, damaged or cut short
        TooLarge, // would unpack to more than Limits::maxBytes
        DiskFull, // would leave less than Limits::keepFree on the copy's file system
        Stopped,  // requestStop() ended it
    };

    struct Limits {
        qint64 maxBytes;
        qint64 keepFree;
    };
    // 64 GiB at most, and at least 1 GiB or a tenth of the file system (the smaller)
    // left free.
    static constexpr qint64 kMaxUnpacked = qint64(64) * 1024 * 1024 * 1024;
    static constexpr qint64 kKeepFree = qint64(1024) * 1024 * 1024;
    static Limits defaultLimits();

    explicit CompressedLogFile(const QString &path, Limits limits = defaultLimits());
    ~CompressedLogFile();
    CompressedLogFile(const CompressedLogFile &) = delete;
    CompressedLogFile &operator=(const CompressedLogFile &) = delete;

    QString originalPath() const { return m_originalPath; }
    // The path the parsers read: the temporary copy, or the original path itself.
    QString readablePath() const;
    // Whether readablePath() is a temporary copy.
    bool isTemporary() const { return m_copy != nullptr; }
    Compression compression() const { return m_compression; }
    Limits limits() const { return m_limits; }
    // Takes effect for an unpack() that has not yet begun.
    void setLimits(Limits limits) { m_limits = limits; }

    // Unpacks a compressed rotation into the copy, calling progress(percent of the
    // compressed file read) as it goes; true when the copy is complete. Runs once:
    // later calls only report the outcome. Any one thread may call it, but the object
    // must not be used otherwise meanwhile, except for state() and requestStop().
    bool unpack(const std::function<void(int)> &progress = {});
    // Ends a running unpack() soon after, from any thread; it fails with Stopped.
    void requestStop() { m_stop.store(true, std::memory_order_relaxed); }
    State state() const { return m_state.load(std::memory_order_acquire); }
    bool unpacked() const { return state() == State::Ready; }

    // By the leading magic bytes; by the name's suffix (.gz, .bz2, .xz, .zst) only
    // when the file cannot be read or is too short to tell.
    static Compression detect(const QString &path);
    // Whether this build can unpack that kind.
    static bool supports(Compression compression);

private:
    State unpackInto(const std::function<void(int)> &progress);
    bool gzipSizeMatches(QFile &source, qint64 written) const;

    QString m_originalPath;
    Compression m_compression = Compression::None;
    Limits m_limits;
    std::unique_ptr<QTemporaryFile> m_copy;
    std::atomic<State> m_state{State::Ready};
    std::atomic<bool> m_stop{false};
};
