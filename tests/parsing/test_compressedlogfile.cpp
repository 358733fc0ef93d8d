#include "CompressedLogFile.h"
#include "ParsingFixture.h"

#include <KCompressionDevice>

#include <QDir>
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
                QVERIFY(file.compression() == compression && file.isTemporary() && file.unpacked());
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
                QVERIFY2(!CompressedLogFile(path).unpacked(), qPrintable(suffix));
            }
        }

        // A plain rotation is read in place; one named as compressed is not read, nor is a missing one.
        const QString plain = m_dir.filePath("events.1");
        fixture::write(plain, journal);
        fixture::write(m_dir.filePath("plain.gz"), journal);
        const CompressedLogFile file(plain);
        QVERIFY(!file.isTemporary() && file.unpacked() && file.compression() == C::None && file.readablePath() == plain);
        QVERIFY(!CompressedLogFile(m_dir.filePath("plain.gz")).unpacked());
        QVERIFY(!CompressedLogFile(m_dir.filePath("missing.gz")).unpacked());
    }
};

NIMB_PARSING_TEST_MAIN(TestCompressedLogFile)
#include "test_compressedlogfile.moc"
