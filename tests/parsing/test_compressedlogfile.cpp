#include "CompressedLogFile.h"
#include "LogParser.h"
#include "ParsingFixture.h"

#include <KCompressionDevice>

#include <QDir>
#include <QTemporaryDir>

#include <sys/stat.h>

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

const QVector<std::tuple<C, KCompressionDevice::CompressionType, QString>> kKinds{
    {C::GZip, KCompressionDevice::GZip, ".gz"},
    {C::BZip2, KCompressionDevice::BZip2, ".bz2"},
    {C::Xz, KCompressionDevice::Xz, ".xz"},
    {C::Zstd, KCompressionDevice::Zstd, ".zst"}};
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
        QStringList valid;
        const QByteArray journal = fixture::journal(300, QStringLiteral("e"), &valid);
        // The last one is recognised by its content alone.
        auto kinds = kKinds;
        kinds.append({C::GZip, KCompressionDevice::GZip, ".1"});
        for (const auto &kind : kinds) {
            if (!CompressedLogFile::supports(std::get<0>(kind))) {
                qWarning("%s is not built in, not checked", qPrintable(std::get<2>(kind)));
                continue;
            }
            const QString path = dir + QStringLiteral("/events 1") + std::get<2>(kind);
            const QByteArray packed = compressed(journal, std::get<1>(kind));
            fixture::write(path, packed);
            QString copyPath;
            {
                CompressedLogFile file(path);
                QVERIFY(file.compression() == std::get<0>(kind) && file.isTemporary() && file.unpacked());
                copyPath = file.readablePath();
                const QFileInfo copy(copyPath);
                QCOMPARE(copy.absolutePath(), QFileInfo(QDir::tempPath()).absoluteFilePath());
                const QString stem = std::get<2>(kind) == ".1" ? "events 1.1." : "events 1.";
                QVERIFY2(copy.fileName().startsWith(stem), qPrintable(copy.fileName()));
                struct stat status;
                QVERIFY(::stat(QFile::encodeName(copyPath).constData(), &status) == 0 && (status.st_mode & 0777) == 0600u);
                QCOMPARE(contents(copyPath), journal);
                QCOMPARE(LogParser(copyPath).count(), valid.size());
                // Two owners of the same rotation never share a copy.
                QVERIFY(CompressedLogFile(path).readablePath() != copyPath);
            }
            QVERIFY(!QFile::exists(copyPath));
            QCOMPARE(contents(path), packed);
        }

        const QString plain = m_dir.filePath("events.1");
        fixture::write(plain, journal);
        const CompressedLogFile file(plain);
        QVERIFY(!file.isTemporary() && file.unpacked() && file.compression() == C::None && file.readablePath() == plain);
    }

    void brokenArchivesAreNoJournals()
    {
        const QByteArray journal = fixture::journal(2000);
        QVector<QPair<QString, QByteArray>> cases{{"plain.gz", journal}};
        for (const auto &kind : kKinds) {
            const QByteArray packed = compressed(journal, std::get<1>(kind));
            if (!CompressedLogFile::supports(std::get<0>(kind)) || packed.isEmpty())
                continue;
            QByteArray garbled = packed;
            for (int i = 20; i < garbled.size(); i += 7)
                garbled[i] = char(garbled[i] ^ 0x5a);
            cases.append({"garbled" + std::get<2>(kind), garbled});
            cases.append({"truncated" + std::get<2>(kind), packed.left(packed.size() / 2)});
        }
        for (const auto &entry : cases) {
            const QString path = m_dir.filePath(entry.first);
            fixture::write(path, entry.second);
            const CompressedLogFile file(path);
            QVERIFY2(!file.unpacked(), qPrintable(entry.first));
            QVERIFY2(!LogParser(file.readablePath()).isJournal(), qPrintable(entry.first));
            QCOMPARE(contents(path), entry.second);
        }
        const CompressedLogFile missing(m_dir.filePath("missing.gz"));
        QVERIFY(!missing.unpacked() && !LogParser(missing.readablePath()).isJournal());
    }
};

NIMB_PARSING_TEST_MAIN(TestCompressedLogFile)
#include "test_compressedlogfile.moc"
