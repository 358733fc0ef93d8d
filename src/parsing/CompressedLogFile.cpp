#include "CompressedLogFile.h"

#include <KCompressionDevice>

#include <QBuffer>
#include <QByteArray>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QTemporaryFile>

namespace
{
constexpr qint64 kBlock = 1024 * 1024;

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

CompressedLogFile::Compression CompressedLogFile::detect(const QString &path)
{
    QFile file(path);
    if (file.open(QIODevice::ReadOnly)) {
        const QByteArray head = file.read(8);
        for (const Kind &kind : kKinds)
            if (head.startsWith(kind.magic))
                return kind.compression;
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

CompressedLogFile::CompressedLogFile(const QString &path)
    : m_originalPath(path)
    , m_compression(detect(path))
{
    if (m_compression == Compression::None)
        return;

    QString stem = QFileInfo(path).fileName();
    const QString suffix = suffixOf(m_compression);
    if (stem.endsWith(suffix) && stem.size() > suffix.size())
        stem.chop(suffix.size());
    m_copy = std::make_unique<QTemporaryFile>(QDir(QDir::tempPath()).filePath(stem + QStringLiteral(".XXXXXX")));
    // QTemporaryFile creates the file for the owner alone (0600) under a fresh name.
    if (!m_copy->open()) {
        m_unpacked = false;
        return;
    }
    m_unpacked = unpack();
    if (!m_unpacked)
        m_copy->resize(0);
    m_copy->close();
}

CompressedLogFile::~CompressedLogFile() = default;

QString CompressedLogFile::readablePath() const
{
    return m_copy ? m_copy->fileName() : m_originalPath;
}

bool CompressedLogFile::unpack()
{
    const Kind *kind = kindOf(m_compression);
    QFile probe(m_originalPath);
    if (!probe.open(QIODevice::ReadOnly) || !probe.read(kind->magic.size()).startsWith(kind->magic))
        return false;
    probe.close();

    const KCompressionDevice::CompressionType type = deviceType(m_compression);
    KCompressionDevice device(m_originalPath, type);
    if (device.compressionType() != type || !device.open(QIODevice::ReadOnly))
        return false;
    QByteArray block(static_cast<int>(kBlock), Qt::Uninitialized);
    qint64 written = 0;
    for (;;) {
        const qint64 got = device.read(block.data(), kBlock);
        if (got < 0)
            return false;
        if (got == 0)
            break;
        if (m_copy->write(block.constData(), got) != got)
            return false;
        written += got;
    }
    // A damaged or cut stream also ends in a read of 0; only a stream that reached its
    // proper end leaves the device at its end.
    if (!device.atEnd() || device.error() != QFileDevice::NoError)
        return false;
    if (m_compression == Compression::GZip && !gzipSizeMatches(written))
        return false;
    return m_copy->flush();
}

bool CompressedLogFile::gzipSizeMatches(qint64 written) const
{
    // The trailer's last four bytes hold the unpacked size modulo 2^32, little-endian.
    QFile file(m_originalPath);
    if (!file.open(QIODevice::ReadOnly) || file.size() < 4 || !file.seek(file.size() - 4))
        return false;
    const QByteArray trailer = file.read(4);
    if (trailer.size() != 4)
        return false;
    quint32 size = 0;
    for (int i = 3; i >= 0; --i)
        size = (size << 8) | quint8(trailer[i]);
    return size == quint32(quint64(written) & 0xffffffffu);
}
