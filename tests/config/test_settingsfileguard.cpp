// SPDX-FileCopyrightText: 2026 The trelvik developers
//
// SPDX-License-Identifier: GPL-2.0-or-later

#include "ConfigHandler.h"
#include "NimbTestMain.h"
#include "SettingsFileGuard.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>

namespace
{
QByteArray contents(const QString &path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

void writeFile(const QString &path, const QByteArray &bytes)
{
    QVERIFY(QDir().mkpath(QFileInfo(path).absolutePath()));
    QFile file(path);
    QVERIFY(file.open(QIODevice::WriteOnly | QIODevice::Truncate));
    QCOMPARE(file.write(bytes), qint64(bytes.size()));
}

// Values Qt would turn into lists of impossible length and into pictures, reached
// directly, through escapes, quotes, list elements and continued lines.
const QList<QByteArray> kHostileLines = {
    "Main%20log=@Variant(\\0\\0\\0\\t\\xff\\xff\\xff\\xf0)",
    "Main%20log=@Variant(\\0\\0\\0\\x45\\0\\0\\0\\x1)",
    "Main%20log=@Variant(\\0\\0\\0\\x100\\0)",
    "From%200=@DateTime(\\0\\0\\0\\t\\xff\\xff\\xff\\xf0)",
    "From%200=@DateTime(\\0\\0\\0\\x10a)",
    "Main%20log=\\x40Variant(\\0\\0\\0\\t\\xff\\xff\\xff\\xf0)",
    "Main%20log=\\100Variant(\\0\\0\\0\\t\\xff\\xff\\xff\\xf0)",
    "Main%20log=\\x10040Variant(\\0\\0\\0\\t\\xff\\xff\\xff\\xf0)",
    "Main%20log=\"@Variant(\\0\\0\\0\\t\\xff\\xff\\xff\\xf0)\"",
    "Main%20log=  \" @Variant(\\0\\0\\0\\t\\xff\\xff\\xff\\xf0)\"",
    "Main%20log=/a, @Variant(\\0\\0\\0\\t\\xff\\xff\\xff\\xf0)",
    "@Variant(\\0\\0\\0\\t\\xff\\xff\\xff\\xf0)",
    "Main%20log=@Vari\\",
    "Main%20log=/a,\\",
};
}

class TestSettingsFileGuard : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init()
    {
        QFile::remove(ConfigHandler::settingsFilePath());
    }

    // Whatever the store writes, with date-times of every kind and texts full of the
    // characters the file format treats specially, passes untouched.
    void whatTheStoreWritesIsKept()
    {
        ConfigStore store;
        store.messagesPerPage() = 321;
        store.addRecentFile(QStringLiteral("@/odd, \"quoted\" path\\with=signs;"));
        // Text beyond ASCII is written as escapes, also at the start of a value.
        store.addRecentFile(QStringLiteral("/журнал/events"));
        store.mainLogPath() = QStringLiteral("ÿ/events");
        store.favoriteEvents() = {QStringLiteral("@Variant(x)"), QStringLiteral("a,b")};
        const QDateTime base(QDate(1970, 1, 1), QTime(0, 0), Qt::UTC);
        for (int i = 0; i < 400; ++i) {
            FilterPack filter;
            const QString names[] = {QStringLiteral("@Variant(%1), \"q\""), QStringLiteral("f%1"),
                                     QStringLiteral("Вход пользователя %1"), QStringLiteral("ÿ %1")};
            filter.name = names[i % 4].arg(i);
            filter.checkFrom = filter.checkTo = true;
            // Days and milliseconds spread so that the packed bytes take every value.
            filter.from = base.addDays(i * 977).addMSecs(qint64(i) * 7919 * 1013);
            filter.to = QDateTime(QDate(2024, 3, 1), QTime(10, 0), Qt::OffsetFromUTC, (i % 27 - 13) * 3600)
                            .addMSecs(qint64(i) * 104729);
            store.savedFilters().append(filter);
        }
        ConfigHandler(store).writeConfig();
        const QByteArray written = contents(ConfigHandler::settingsFilePath());
        QVERIFY(written.contains("@Variant("));
        QCOMPARE(SettingsFileGuard::safeContent(written), written);
        QVERIFY(!SettingsFileGuard::dropUnsafeLines(ConfigHandler::settingsFilePath()));

        ConfigStore read;
        ConfigHandler(read).readConfig();
        QCOMPARE(read.messagesPerPage(), 321);
        QCOMPARE(read.mainLogPath(), store.mainLogPath());
        QCOMPARE(read.recentFiles(), store.recentFiles());
        QCOMPARE(read.favoriteEvents(), store.favoriteEvents());
        QCOMPARE(read.savedFilters().size(), store.savedFilters().size());
        for (int i = 0; i < store.savedFilters().size(); ++i)
            QVERIFY2(read.savedFilters().at(i) == store.savedFilters().at(i), qPrintable(QString::number(i)));
    }

    // Each hostile line goes, with nothing else: reading and saving then neither end
    // the process nor lose the settings around it.
    void unsafeValuesAreDroppedBeforeTheyAreRead()
    {
        for (const QByteArray &line : kHostileLines)
            QVERIFY2(SettingsFileGuard::isUnsafeLine(line), line.constData());

        const QString path = ConfigHandler::settingsFilePath();
        for (const QByteArray &line : kHostileLines) {
            // Continued lines take the next line with them into the value.
            const QByteArray next = line.endsWith('\\') ? "ant(\\0\\0\\0\\t\\xff\\xff\\xff\\xf0)\n" : "";
            const QByteArray before = "[Application%20settings]\nMessages%20per%20page=222\n";
            writeFile(path, before + line + "\r\n" + next + "Recent%20file%200=/kept\n");
            ConfigStore read;
            ConfigHandler(read).readConfig();
            QCOMPARE(read.messagesPerPage(), 222);
            QVERIFY2(!contents(path).contains(line), line.constData());
            ConfigHandler(read).writeConfig();
            ConfigStore again;
            ConfigHandler(again).readConfig();
            QCOMPARE(again.messagesPerPage(), 222);
        }
    }
};

NIMB_TEST_MAIN_WITH(TestSettingsFileGuard, QCoreApplication, NIMB_TEST_DATA_DIR "/config-sysroot")
#include "test_settingsfileguard.moc"
