#pragma once

#include <QString>

#include <memory>

class QTemporaryFile;

// A rotated journal made readable for the parsers, which need to seek. A compressed
// rotation is unpacked in-process into a private temporary file (mode 0600, unique
// name) that lives exactly as long as this object; anything else is read in place.
//
// When unpacking fails the copy is left empty, so the journal test on readablePath()
// fails as it does for any unreadable journal.
class CompressedLogFile
{
public:
    enum class Compression { None, GZip, BZip2, Xz, Zstd };

    explicit CompressedLogFile(const QString &path);
    ~CompressedLogFile();
    CompressedLogFile(const CompressedLogFile &) = delete;
    CompressedLogFile &operator=(const CompressedLogFile &) = delete;

    QString originalPath() const { return m_originalPath; }
    // The path the parsers read: the temporary copy, or the original path itself.
    QString readablePath() const;
    // Whether readablePath() is a temporary copy.
    bool isTemporary() const { return m_copy != nullptr; }
    Compression compression() const { return m_compression; }
    // False only when a compressed file could not be unpacked completely.
    bool unpacked() const { return m_unpacked; }

    // By the leading magic bytes, else by the name's suffix (.gz, .bz2, .xz, .zst).
    static Compression detect(const QString &path);
    // Whether this build can unpack that kind.
    static bool supports(Compression compression);

private:
    bool unpack();
    bool gzipSizeMatches(qint64 written) const;

    QString m_originalPath;
    Compression m_compression = Compression::None;
    std::unique_ptr<QTemporaryFile> m_copy;
    bool m_unpacked = true;
};
