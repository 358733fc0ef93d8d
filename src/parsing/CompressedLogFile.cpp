// SPDX-FileCopyrightText: 2026 The trelvik developers
//
// SPDX-License-Identifier: GPL-2.0-or-later

#include "CompressedLogFile.h"

#include "RegularFile.h"

#include <KCompressionDevice>

#include <QBuffer>
#include <QByteArray>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QStorageInfo>
#include <QTemporaryFile>

#include <algorithm>

namespace
{
constexpr qint64 kBlock = 1024 * 1024;
// Free space is asked for again after this much was written, and must exceed the
// reserve by as much, so that the copy never eats into the reserve in between.
constexpr qint64 kSpaceCheck = 64 * 1024 * 1024;
constexpr int kLongestMagic = 6;

struct Kind {
    CompressedLogFile::Compression compression;
    const char *suffix;
    QByteArray magic;
    KCompressionDevice::CompressionType deviceType;
};

const Kind kKinds[] = {
    {CompressedLogFile::Compression::GZip, ".gz", QByteArray("\x1f\x8b", 2), KCompressionDevice::GZip},
    {CompressedLogFile::Compression::BZip2, ".bz2", QByteArray("BZh", 3), KCompressionDevice::BZip2},
    {CompressedLogFile::Compression::Xz, ".xz", QByteArray("\xfd" "7zXZ\x00", 6), KCompressionDevice::Xz},
    {CompressedLogFile::Compression::Zstd, ".zst", QByteArray("\x28\xb5\x2f\xfd", 4), KCompressionDevice::Zstd},
};

const Kind *kindOf(CompressedLogFile::Compression compression)
{
    for (const Kind &kind : kKinds)
        if (kind.compression == compression)
            return &kind;
    return nullptr;
}

KCompressionDevice::CompressionType deviceType(CompressedLogFile::Compression compression)
{
    const Kind *kind = kindOf(compression);
    return kind ? kind->deviceType : KCompressionDevice::None;
}

QString suffixOf(CompressedLogFile::Compression compression)
{
    const Kind *kind = kindOf(compression);
    return kind ? QLatin1String(kind->suffix) : QString();
}
}

CompressedLogFile::Limits CompressedLogFile::defaultLimits()
{
    const QStorageInfo storage(QDir::tempPath());
    qint64 keepFree = kKeepFree;
    if (storage.isValid() && storage.bytesTotal() > 0)
        keepFree = std::min(keepFree, storage.bytesTotal() / 10);
    return {kMaxUnpacked, keepFree};
}

CompressedLogFile::Compression CompressedLogFile::detect(const QString &path)
{
    QFile file;
    if (RegularFile::open(file, path)) {
        const QByteArray head = file.read(8);
        for (const Kind &kind : kKinds)
            if (head.startsWith(kind.magic))
                return kind.compression;
        // Enough bytes to tell, and none of the kinds: a plain file, whatever its name.
        if (head.size() >= kLongestMagic)
            return Compression::None;
    }
    for (const Kind &kind : kKinds)
        if (path.endsWith(QLatin1String(kind.suffix)))
            return kind.compression;
    return Compression::None;
}

bool CompressedLogFile::supports(Compression compression)
{
    if (compression == Compression::None)
        return true;
    const KCompressionDevice::CompressionType type = deviceType(compression);
    // A device without the library for its kind silently falls back to no compression.
    QByteArray nothing;
    KCompressionDevice device(new QBuffer(&nothing), true, type);
    return device.compressionType() == type;
}

CompressedLogFile::CompressedLogFile(const QString &path, Limits limits)
    : m_originalPath(path)
    , m_compression(detect(path))
    , m_limits(limits)
{
    if (m_compression == Compression::None)
        return;

    QString stem = QFileInfo(path).fileName();
    const QString suffix = suffixOf(m_compression);
    if (stem.endsWith(suffix) && stem.size() > suffix.size())
        stem.chop(suffix.size());
    m_copy = std::make_unique<QTemporaryFile>(QDir(QDir::tempPath()).filePath(stem + QStringLiteral(".XXXXXX")));
    // QTemporaryFile creates the file for the owner alone (0600) under a fresh name.
    m_state.store(m_copy->open() ? State::Pending : State::Damaged, std::memory_order_release);
}

CompressedLogFile::~CompressedLogFile() = default;

QString CompressedLogFile::readablePath() const
{
    return m_copy ? m_copy->fileName() : m_originalPath;
}

bool CompressedLogFile::unpack(const std::function<void(int)> &progress)
{
    if (state() != State::Pending)
        return unpacked();
    const State outcome = unpackInto(progress);
    if (outcome != State::Ready)
        m_copy->resize(0);
    m_copy->close();
    m_state.store(outcome, std::memory_order_release);
    return outcome == State::Ready;
}

CompressedLogFile::State CompressedLogFile::unpackInto(const std::function<void(int)> &progress)
{
    const Kind *kind = kindOf(m_compression);
    auto source = std::make_unique<QFile>();
    if (!supports(m_compression) || !RegularFile::open(*source, m_originalPath) ||
        !source->read(kind->magic.size()).startsWith(kind->magic) || !source->seek(0))
        return State::Damaged;
    QFile &packed = *source;
    const qint64 packedSize = std::max<qint64>(1, packed.size());

    const KCompressionDevice::CompressionType type = deviceType(m_compression);
    KCompressionDevice device(source.release(), true, type);
    if (device.compressionType() != type || !device.open(QIODevice::ReadOnly))
        return State::Damaged;
    const QString copyDirectory = QFileInfo(m_copy->fileName()).absolutePath();
    QByteArray block(static_cast<int>(kBlock), Qt::Uninitialized);
    qint64 written = 0;
    qint64 nextSpaceCheck = 0;
    int lastPercent = -1;
    for (;;) {
        if (m_stop.load(std::memory_order_relaxed))
            return State::Stopped;
        const qint64 got = device.read(block.data(), kBlock);
        if (got < 0)
            return State::Damaged;
        if (got == 0)
            break;
        if (got > m_limits.maxBytes - written)
            return State::TooLarge;
        if (written + got > nextSpaceCheck) {
            const QStorageInfo storage(copyDirectory);
            if (storage.isValid() && storage.bytesAvailable() - kSpaceCheck < m_limits.keepFree)
                return State::DiskFull;
            nextSpaceCheck = written + kSpaceCheck;
        }
        if (m_copy->write(block.constData(), got) != got)
            return m_copy->error() == QFileDevice::ResourceError ? State::DiskFull : State::Damaged;
        written += got;
        const int percent = static_cast<int>(std::min<qint64>(100, packed.pos() * 100 / packedSize));
        if (progress && percent != lastPercent) {
            lastPercent = percent;
            progress(percent);
        }
    }
    // A damaged or cut stream also ends in a read of 0; only a stream that reached its
    // proper end leaves the device at its end.
    if (!device.atEnd() || device.error() != QFileDevice::NoError)
        return State::Damaged;
    if (m_compression == Compression::GZip && !gzipSizeMatches(packed, written))
        return State::Damaged;
    if (!m_copy->flush())
        return m_copy->error() == QFileDevice::ResourceError ? State::DiskFull : State::Damaged;
    return State::Ready;
}

bool CompressedLogFile::gzipSizeMatches(QFile &source, qint64 written) const
{
    // The trailer's last four bytes hold the unpacked size modulo 2^32, little-endian.
    // The device has finished with the file, so it may be repositioned.
    if (source.size() < 4 || !source.seek(source.size() - 4))
        return false;
    const QByteArray trailer = source.read(4);
    if (trailer.size() != 4)
        return false;
    quint32 size = 0;
    for (int i = 3; i >= 0; --i)
        size = (size << 8) | quint8(trailer[i]);
    return size == quint32(quint64(written) & 0xffffffffu);
}
