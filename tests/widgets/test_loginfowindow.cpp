// SPDX-FileCopyrightText: 2026 The trelvik developers
//
// SPDX-License-Identifier: GPL-2.0-or-later

#include "LogInfoWindow.h"
#include "NimbTestMain.h"
#include "NimbTranslator.h"

#include <QApplication>
#include <QDialogButtonBox>
#include <QDir>
#include <QFileInfo>
#include <QLabel>
#include <QPushButton>
#include <QTemporaryDir>
#include <QTranslator>

namespace
{
const QString kLog = QStringLiteral("/quorv/log/velmo/events");

bool writeFile(const QString &path, const QByteArray &content)
{
    QDir().mkpath(QFileInfo(path).absolutePath());
    QFile file(path);
    return file.open(QIODevice::WriteOnly) && file.write(content) == content.size();
}

QString labelText(const QDialog &dialog, const char *name)
{
    const auto *label = dialog.findChild<QLabel *>(QLatin1String(name));
    if (!label)
        qFatal("no label named %s", name);
    return label->text();
}

bool rowShown(const QDialog &dialog, const char *captionName, const char *valueName)
{
    const auto *caption = dialog.findChild<QLabel *>(QLatin1String(captionName));
    const auto *value = dialog.findChild<QLabel *>(QLatin1String(valueName));
    if (!caption || !value)
        qFatal("no row %s", valueName);
    if (caption->isVisibleTo(&dialog) != value->isVisibleTo(&dialog))
        qFatal("caption and value of %s disagree", valueName);
    return value->isVisibleTo(&dialog);
}

bool rotationShown(const QDialog &dialog)
{
    return rowShown(dialog, "labelRotation", "rotation");
}

// Words the dialog's texts as "[source|count]", so that a text that never reaches the
// catalogue, or reaches it without its count, stands out.
class MarkingTranslator : public QTranslator
{
public:
    QString translate(const char *context, const char *source, const char *, int n) const override
    {
        if (qstrcmp(context, "LogInfoWindow") != 0)
            return QString();
        // Not arg(): the source's own placeholders are the program's to fill.
        return QLatin1Char('[') + QString::fromUtf8(source) + QLatin1Char('|') + QString::number(n) + QLatin1Char(']');
    }
    bool isEmpty() const override { return false; }
};
}

class TestLogInfoWindow : public QObject
{
    Q_OBJECT

private slots:
    void sizeText_data()
    {
        QTest::addColumn<quint64>("bytes");
        QTest::addColumn<QString>("text");
        QTest::newRow("empty") << quint64(0) << "0 bytes";
        QTest::newRow("just below two kilobytes") << quint64(2047) << "2047 bytes";
        QTest::newRow("two kilobytes") << quint64(2048) << "2 kilobytes";
        QTest::newRow("kilobytes truncate") << quint64(5 * 1024 + 1023) << "5 kilobytes";
        QTest::newRow("exactly one mebibyte") << quint64(1048576) << "1024 kilobytes";
        QTest::newRow("one byte more") << quint64(1048577) << "1 megabytes";
        QTest::newRow("fractional megabytes") << quint64(3670016) << "3.5 megabytes";
        QTest::newRow("six significant digits") << quint64(1048576 * 100 + 1234567) << "101.177 megabytes";
        QTest::newRow("exactly one gibibyte") << quint64(1073741824) << "1024 megabytes";
        QTest::newRow("fractional gigabytes") << quint64(1073741824) * 3 / 2 << "1.5 gigabytes";
        QTest::newRow("terabytes stay gigabytes") << quint64(1073741824) * 5120 << "5120 gigabytes";
    }

    void sizeText()
    {
        QFETCH(quint64, bytes);
        QFETCH(QString, text);
        QCOMPARE(LogInfoWindow::sizeText(bytes), text);
    }

    void rotationScheme_data()
    {
        QTest::addColumn<QByteArray>("content");
        QTest::addColumn<QString>("text");
        const QByteArray path = kLog.toLatin1();
        QTest::newRow("megabytes") << path + "\n{\n    size 100M\n}\n" << "100 megabytes";
        QTest::newRow("plain bytes") << path + " \n{\n size 10\n}\n" << "10 bytes";
        QTest::newRow("kilobytes, small letter") << "\t" + path + "\n{\nsize 20k\n}\n" << "20 kilobytes";
        QTest::newRow("gigabytes, blanks inside") << path + "\n{\n\t size \t 2G  \n}\n" << "2 gigabytes";
        QTest::newRow("unit apart: three parts") << path + "\n{\nsize 5 G\n}\n" << "";
        QTest::newRow("not a number") << path + "\n{\nsize 10M\nsize abc\n}\n" << "";
        QTest::newRow("later size wins") << path + "\n{\nsize 10M\nsize 3K\n}\n" << "3 kilobytes";
        QTest::newRow("count beyond int") << path + "\n{\nsize 4000000021\n}\n" << "4000000021 bytes";
        QTest::newRow("period before the path") << "weekly\n" + path + "\n{\nmissingok\n}\n" << "";
        QTest::newRow("period ends the scan") << path + "\n{\nweekly\nsize 10M\n}\n" << "weekly";
        QTest::newRow("period replaces a size") << path + "\n{\nsize 10M\nmonthly\n}\n" << "monthly";
        QTest::newRow("daily") << path + "\n{\ndaily\n}\n" << "daily";
        QTest::newRow("yearly") << path + "\n{\nyearly\n}\n" << "yearly";
        QTest::newRow("words are case-sensitive") << path + "\n{\nWeekly\nSize 1M\n}\n" << "";
        QTest::newRow("another log") << QByteArray("/quorv/log/velmo/other\n{\ndaily\n}\n") << "";
        QTest::newRow("path among others") << "/quorv/log/velmo/other " + path + "\n{\ndaily\n}\n" << "";
        QTest::newRow("no rule") << path + "\n{\ncompress\n}\n" << "";
    }

    void rotationScheme()
    {
        QFETCH(QByteArray, content);
        QFETCH(QString, text);
        QTemporaryDir dir;
        const QString file = dir.filePath("syslog-ng-mod-velmo");
        QVERIFY(writeFile(file, content));
        const LogInfoWindow::Rotation rotation = LogInfoWindow::readRotation(file, kLog);
        QCOMPARE(LogInfoWindow::rotationText(rotation), text);
        QCOMPARE(rotation.kind == LogInfoWindow::NoRotation, text.isEmpty());
    }

    void missingRotationFileMeansNoScheme()
    {
        const auto rotation = LogInfoWindow::readRotation(QStringLiteral("/nonexistent/logrotate"), kLog);
        QCOMPARE(rotation.kind, qint32(LogInfoWindow::NoRotation));
    }

    void dialogDescribesTheFile()
    {
        // A tree of its own: the rotation file is found through the system paths.
        // A short root, so that the whole path fits the dialog even on a small screen.
        QTemporaryDir root(QDir::tempPath() + QStringLiteral("/li-XXXXXX"));
        const QString log = root.path() + kLog;
        QVERIFY(writeFile(log, QByteArray(2048, 'x')));
        QVERIFY(writeFile(root.path() + "/etc/logrotate.d/syslog-ng-mod-velmo",
                          kLog.toLatin1() + "\n{\n    size 100M\n}\n"));
        const QByteArray previousRoot = qgetenv("NIMB_EVENT_VIEWER_SYSROOT");
        qputenv("NIMB_EVENT_VIEWER_SYSROOT", root.path().toLocal8Bit());
        const auto restore = qScopeGuard([&] { qputenv("NIMB_EVENT_VIEWER_SYSROOT", previousRoot); });

        LogInfoWindow dialog;
        QCOMPARE(dialog.windowTitle(), QStringLiteral("Log file information"));
        dialog.fill(log, true);
        dialog.show();
        QCOMPARE(labelText(dialog, "labelPath"), QStringLiteral("Log name:"));
        QCOMPARE(labelText(dialog, "path"), QFileInfo(log).absoluteFilePath());
        QCOMPARE(dialog.findChild<QLabel *>("path")->toolTip(), QFileInfo(log).absoluteFilePath());
        QCOMPARE(labelText(dialog, "size"), QStringLiteral("2 kilobytes"));
        const QFileInfo info(log);
        QCOMPARE(labelText(dialog, "modified"), info.lastModified().toString(Qt::TextDate));
        // Where the file system keeps no birth time the dialog says so instead of showing nothing.
        QCOMPARE(labelText(dialog, "birth"),
                 info.birthTime().isValid() ? info.birthTime().toString(Qt::TextDate) : QStringLiteral("unknown"));
        QVERIFY(!labelText(dialog, "modified").isEmpty());
        QVERIFY(rotationShown(dialog));
        QCOMPARE(labelText(dialog, "rotation"), QStringLiteral("100 megabytes"));

        // Opened files and filtered tabs are not rotated by the logging service's rule.
        dialog.fill(log, false);
        QVERIFY(!rotationShown(dialog));
        dialog.fill(log, true);
        QVERIFY(rotationShown(dialog));

        QVERIFY(writeFile(root.path() + "/etc/logrotate.d/syslog-ng-mod-velmo", "weekly\n" + kLog.toLatin1() + "\n"));
        dialog.fill(log, true);
        QVERIFY(!rotationShown(dialog));

        dialog.findChild<QDialogButtonBox *>("buttonBox")->button(QDialogButtonBox::Ok)->click();
        QVERIFY(!dialog.isVisible());
    }

    void longPathsAreShortenedInTheMiddle()
    {
        LogInfoWindow dialog;
        LogInfoWindow::LogFileInfo info;
        info.path = "/quorv/" + QString(400, QLatin1Char('d')) + "/events";
        dialog.fill(info);
        const QString shown = labelText(dialog, "path");
        QVERIFY(shown.size() < info.path.size());
        QVERIFY(shown.startsWith("/quorv/") && shown.endsWith("/events"));
        QCOMPARE(dialog.findChild<QLabel *>("path")->toolTip(), info.path);
        QCOMPARE(labelText(dialog, "modified"), QStringLiteral("unknown"));
    }

    void skippedLinesAreCounted()
    {
        LogInfoWindow dialog;
        LogInfoWindow::LogFileInfo info;
        info.path = QStringLiteral("/quorv/log/velmo/events");
        // Until the tab has read its file the number is not known, and no row claims one.
        dialog.fill(info);
        QVERIFY(!rowShown(dialog, "labelMalformed", "malformed"));
        QCOMPARE(labelText(dialog, "labelMalformed"), QStringLiteral("Malformed lines:"));
        for (const int lines : {0, 1, 1234}) {
            info.malformedLines = lines;
            dialog.fill(info);
            QVERIFY(rowShown(dialog, "labelMalformed", "malformed"));
            QCOMPARE(labelText(dialog, "malformed"), QStringLiteral("%1 skipped").arg(lines));
        }
        info.malformedLines = -1;
        dialog.fill(info);
        QVERIFY(!rowShown(dialog, "labelMalformed", "malformed"));
    }

    // Every text the dialog shows is one message of the catalogue, the rotation periods
    // included, and every whole count picks its plural form: a number and its unit word are
    // one message, so that a language may order and inflect them.
    void textsGoThroughTheCatalogue()
    {
        MarkingTranslator translator;
        QVERIFY(QCoreApplication::installTranslator(&translator));
        const auto remove = qScopeGuard([&] { QCoreApplication::removeTranslator(&translator); });
        LogInfoWindow dialog;
        LogInfoWindow::LogFileInfo info;
        info.malformedLines = 5;
        const QStringList periods{"daily", "weekly", "monthly", "yearly"};
        for (int i = 0; i < periods.size(); ++i) {
            info.rotation.kind = LogInfoWindow::Daily + i;
            dialog.fill(info);
            QCOMPARE(labelText(dialog, "rotation"), QStringLiteral("[%1|-1]").arg(periods[i]));
        }
        QCOMPARE(labelText(dialog, "malformed"), QStringLiteral("[5 skipped|5]"));
        QCOMPARE(labelText(dialog, "size"), QStringLiteral("[0 bytes|0]"));

        const QStringList units{"bytes", "kilobytes", "megabytes", "gigabytes"};
        for (int i = 0; i < units.size(); ++i) {
            info.rotation = {LogInfoWindow::SizeBytes + i, 1};
            dialog.fill(info);
            QCOMPARE(labelText(dialog, "rotation"), QStringLiteral("[1 %1|1]").arg(units[i]));
        }
        QCOMPARE(LogInfoWindow::sizeText(5 * 1024), QStringLiteral("[5 kilobytes|5]"));
        // A fraction is no count: its unit keeps the plural.
        QCOMPARE(LogInfoWindow::sizeText(1048577), QStringLiteral("[1 megabytes|-1]"));
        QCOMPARE(LogInfoWindow::sizeText(quint64(1073741824) * 3 / 2), QStringLiteral("[1.5 gigabytes|-1]"));
    }

    // Numbers are written the user's way, the times in the one fixed English form.
    void fractionsFollowTheLocale()
    {
        const QLocale previous;
        QLocale::setDefault(QLocale(QLocale::Russian, QLocale::Russia));
        const auto restore = qScopeGuard([&] { QLocale::setDefault(previous); });
        QCOMPARE(LogInfoWindow::sizeText(3670016), QStringLiteral("3,5 megabytes"));
        QCOMPARE(LogInfoWindow::sizeText(quint64(1073741824) * 5120), QStringLiteral("5120 gigabytes"));

        LogInfoWindow dialog;
        LogInfoWindow::LogFileInfo info;
        info.lastModified = QDateTime(QDate(2024, 3, 1), QTime(9, 5, 7));
        dialog.fill(info);
        QCOMPARE(labelText(dialog, "modified"), QStringLiteral("Fri Mar 1 09:05:07 2024"));
    }

    void demoTreeRotatesWeekly()
    {
        LogInfoWindow dialog;
        dialog.fill(QStringLiteral(NIMB_DEMO_DIR "/sysroot") + kLog, true);
        QCOMPARE(labelText(dialog, "rotation"), QStringLiteral("weekly"));
        QVERIFY(rotationShown(dialog));
    }

    // Last, as the program's catalogue stays installed: English is no translation, but its
    // counts need their singular.
    void englishCountsTakeTheirSingular()
    {
        QVERIFY(!nimbTranslatorInstall(QStringLiteral("nimb-event-viewer")));
        QCOMPARE(LogInfoWindow::rotationText({LogInfoWindow::SizeMegabytes, 1}), QStringLiteral("1 megabyte"));
        QCOMPARE(LogInfoWindow::rotationText({LogInfoWindow::SizeMegabytes, 21}), QStringLiteral("21 megabytes"));
        QCOMPARE(LogInfoWindow::sizeText(1), QStringLiteral("1 byte"));
        // A fraction is no count: its unit keeps the plural.
        QCOMPARE(LogInfoWindow::sizeText(1048577), QStringLiteral("1 megabytes"));
    }
};

NIMB_TEST_MAIN_WITH(TestLogInfoWindow, QApplication, NIMB_DEMO_DIR "/sysroot")

#include "test_loginfowindow.moc"
