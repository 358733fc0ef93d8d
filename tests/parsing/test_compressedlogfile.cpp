// SPDX-FileCopyrightText: 2026 The trelvik developers
//
// SPDX-License-Identifier: GPL-2.0-or-later

#include "CompressedLogFile.h"
#include "ParsingFixture.h"

#include <KCompressionDevice>

#include <atomic>

#include <QDir>
#include <QFileInfo>
#include <QStorageInfo>
#include <QThread>
#include <QTemporaryDir>

namespace
{
using C = CompressedLogFile::Compression;

QByteArray contents(const QString &path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

QByteArray compressed(const QByteArray &data, KCompressionDevice::CompressionType type)
{
    QByteArray packed;
    KCompressionDevice device(new QBuffer(&packed), true, type);
    const bool written = device.open(QIODevice::WriteOnly) && device.write(data) == data.size();
    device.close();
    return written ? packed : QByteArray();
}
}

class TestCompressedLogFile : public QObject
{
    Q_OBJECT

    QTemporaryDir m_dir;

private slots:
    void rotationsAreUnpackedIntoPrivateCopies()
    {
        QVERIFY(CompressedLogFile::supports(C::GZip));
        // Blanks and quotes: nothing here may pass through a shell.
        const QString dir = m_dir.filePath("rotated logs/it's \"old\"");
        QVERIFY(QDir().mkpath(dir));
        const QByteArray journal = fixture::journal(2000);
        // The last one is recognised by its content alone.
        const QVector<std::tuple<C, KCompressionDevice::CompressionType, QString>> kinds{
            {C::GZip, KCompressionDevice::GZip, ".gz"}, {C::BZip2, KCompressionDevice::BZip2, ".bz2"},
            {C::Xz, KCompressionDevice::Xz, ".xz"},     {C::Zstd, KCompressionDevice::Zstd, ".zst"},
            {C::GZip, KCompressionDevice::GZip, ".1"}};
        for (const auto &[compression, type, suffix] : kinds) {
            const QByteArray packed = compressed(journal, type);
            if (!CompressedLogFile::supports(compression) || packed.isEmpty())
                continue;
            const QString path = dir + QStringLiteral("/events 1") + suffix;
            fixture::write(path, packed);
            QString copyPath;
            {
                CompressedLogFile file(path);
                QVERIFY(file.compression() == compression && file.isTemporary() && file.unpack());
                copyPath = file.readablePath();
                QVERIFY(!(QFile::permissions(copyPath) & (QFileDevice::ReadGroup | QFileDevice::ReadOther)));
                QCOMPARE(contents(copyPath), journal);
                // Two owners of the same rotation never share a copy.
                QVERIFY(CompressedLogFile(path).readablePath() != copyPath);
            }
            QVERIFY(!QFile::exists(copyPath));
            QCOMPARE(contents(path), packed);

            // Damaged archives are not read.
            QByteArray garbled = packed;
            for (int i = 20; i < garbled.size(); i += 7)
                garbled[i] = char(garbled[i] ^ 0x5a);
            for (const QByteArray &damaged : {garbled, packed.left(packed.size() / 2)}) {
                fixture::write(path, damaged);
                CompressedLogFile file(path);
                QVERIFY2(!file.unpack() && file.state() == CompressedLogFile::State::Damaged, qPrintable(suffix));
                QCOMPARE(QFileInfo(file.readablePath()).size(), 0);
            }
        }

        // A plain rotation is read in place, whatever its name says; a missing one is not read.
        const QString plain = m_dir.filePath("events.1");
        fixture::write(plain, journal);
        fixture::write(m_dir.filePath("plain.gz"), journal);
        for (const QString &path : {plain, m_dir.filePath("plain.gz")}) {
            CompressedLogFile file(path);
            QVERIFY(!file.isTemporary() && file.unpack() && file.compression() == C::None);
            QCOMPARE(file.readablePath(), path);
        }
        CompressedLogFile missing(m_dir.filePath("missing.gz"));
        QVERIFY(!missing.unpack());
        QVERIFY(missing.state() == CompressedLogFile::State::Damaged);
    }

    // A small archive of a huge output (a zip bomb of sorts) stops at the size limit or
    // at the free-space reserve, leaves an empty copy behind and never more than the
    // limit on disk; so does a stop asked for by another thread.
    void unpackingStaysWithinItsLimits()
    {
        const qint64 mib = 1024 * 1024;
        // 40 MiB of one repeated line packs into a few tens of kilobytes.
        QByteArray line = fixture::journal(1).trimmed() + '\n';
        QByteArray huge;
        huge.reserve(int(40 * mib + line.size()));
        while (huge.size() < 40 * mib)
            huge.append(line);
        const QByteArray packed = compressed(huge, KCompressionDevice::GZip);
        QVERIFY(packed.size() < huge.size() / 100);
        const QString path = m_dir.filePath("bomb.gz");
        fixture::write(path, packed);

        struct Case {
            const char *name;
            CompressedLogFile::Limits limits;
            CompressedLogFile::State expected;
        };
        const qint64 free = QStorageInfo(QDir::tempPath()).bytesAvailable();
        QVERIFY(free > 0);
        const Case cases[] = {
            {"under the size limit", {41 * mib, 0}, CompressedLogFile::State::Ready},
            {"over the size limit", {8 * mib, 0}, CompressedLogFile::State::TooLarge},
            {"a byte over the limit", {qint64(huge.size()) - 1, 0}, CompressedLogFile::State::TooLarge},
            {"reserve larger than the free space", {CompressedLogFile::kMaxUnpacked, free + 1},
             CompressedLogFile::State::DiskFull},
        };
        for (const Case &c : cases) {
            CompressedLogFile file(path, c.limits);
            QVERIFY(file.state() == CompressedLogFile::State::Pending);
            int lastPercent = -1;
            bool rising = true;
            const bool ok = file.unpack([&](int percent) {
                rising = rising && percent > lastPercent && percent <= 100;
                lastPercent = percent;
            });
            QVERIFY2(file.state() == c.expected, c.name);
            QCOMPARE(ok, c.expected == CompressedLogFile::State::Ready);
            QVERIFY2(rising, c.name);
            const qint64 left = QFileInfo(file.readablePath()).size();
            QCOMPARE(left, ok ? qint64(huge.size()) : qint64(0));
            if (ok)
                QCOMPARE(lastPercent, 100);
            // Once decided, the outcome stands.
            QCOMPARE(file.unpack(), ok);
        }

        CompressedLogFile stopped(path);
        std::atomic<int> calls{0};
        QThread *other = QThread::create([&stopped] { stopped.requestStop(); });
        other->start();
        QVERIFY(other->wait(10000));
        delete other;
        QVERIFY(!stopped.unpack([&calls](int) { ++calls; }));
        QVERIFY(stopped.state() == CompressedLogFile::State::Stopped);
        QCOMPARE(calls.load(), 0);
        QCOMPARE(QFileInfo(stopped.readablePath()).size(), 0);
    }
};

NIMB_PARSING_TEST_MAIN(TestCompressedLogFile)
#include "test_compressedlogfile.moc"
