// SPDX-FileCopyrightText: 2026 The trelvik developers
//
// SPDX-License-Identifier: GPL-2.0-or-later

#include "DesktopNotificationEnvironment.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QImage>
#include <QProcess>
#include <QSettings>
#include <QTemporaryDir>
#include <QTranslator>
#include <QXmlStreamReader>
#include <QtTest>

#include <map>

namespace
{
struct Run {
    int exitCode = -1;
    QString output;
};

Run run(const QString &program, const QStringList &arguments, const QProcessEnvironment &environment = QProcessEnvironment::systemEnvironment())
{
    QProcess process;
    process.setProcessEnvironment(environment);
    process.setProcessChannelMode(QProcess::MergedChannels);
    process.start(program, arguments);
    Run result;
    if (!process.waitForStarted()) {
        result.output = process.errorString();
        return result;
    }
    process.waitForFinished(120 * 1000);
    result.output = QString::fromLocal8Bit(process.readAll());
    result.exitCode = process.exitStatus() == QProcess::NormalExit ? process.exitCode() : -1;
    return result;
}

QString text(const QString &path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? QString::fromUtf8(file.readAll()) : QString();
}

bool isExecutableFile(const QString &path)
{
    const QFileInfo info(path);
    return info.isFile() && info.isExecutable();
}
}

// Installs the build tree as a package would, into a private root, and checks what
// the desktop and the privileged side will find there.
class TestInstall : public QObject
{
    Q_OBJECT

private:
    QTemporaryDir m_destdir;
    QString m_usr;

private slots:
    void initTestCase()
    {
        QVERIFY(m_destdir.isValid());
        QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
        environment.insert(QStringLiteral("DESTDIR"), m_destdir.path());
        const Run install = run(QStringLiteral(NIMB_CMAKE_COMMAND),
                                {QStringLiteral("--install"), QStringLiteral(NIMB_BUILD_DIR), QStringLiteral("--prefix"),
                                 QStringLiteral("/usr")},
                                environment);
        QVERIFY2(install.exitCode == 0, qPrintable(install.output));
        m_usr = m_destdir.path() + QStringLiteral("/usr");
    }

    void programsAreInstalled()
    {
        for (const char *program : {"nimb-event-viewer", "nimb-events"})
            QVERIFY2(isExecutableFile(m_usr + QStringLiteral("/" NIMB_BINDIR "/") + QLatin1String(program)), program);
    }

    void desktopEntryIsValidAndComplete()
    {
        const QString desktop = m_usr + QStringLiteral("/" NIMB_APPDIR "/nimb-event-viewer.desktop");
        const Run validate = run(QStringLiteral("desktop-file-validate"), {desktop});
        QVERIFY2(validate.exitCode == 0 && validate.output.trimmed().isEmpty(), qPrintable(validate.output));

        QSettings entry(desktop, QSettings::IniFormat);
        entry.beginGroup(QStringLiteral("Desktop Entry"));
        QVERIFY(isExecutableFile(m_usr + QStringLiteral("/" NIMB_BINDIR "/") + entry.value(QStringLiteral("Exec")).toString()));
        const QString icon = entry.value(QStringLiteral("Icon")).toString();
        const QString hicolor = m_usr + QStringLiteral("/" NIMB_ICONDIR "/hicolor/");
        QVERIFY(QFile::exists(hicolor + QStringLiteral("scalable/apps/") + icon + QStringLiteral(".svg")));
        const QImage pixels(hicolor + QStringLiteral("48x48/apps/") + icon + QStringLiteral(".png"));
        QCOMPARE(pixels.size(), QSize(48, 48));
    }

    void metainfoIsValidAndNamesTheDesktopEntry()
    {
        const QDir metainfo(m_usr + QStringLiteral("/" NIMB_METAINFODIR));
        const QStringList files = metainfo.entryList({QStringLiteral("*.metainfo.xml")}, QDir::Files);
        QCOMPARE(files.size(), 1);
        const QString path = metainfo.filePath(files.first());
        const Run validate = run(QStringLiteral("appstreamcli"), {QStringLiteral("validate"), QStringLiteral("--no-net"), path});
        QVERIFY2(validate.exitCode == 0, qPrintable(validate.output));
        // The tree as a whole: the component, its desktop entry and its icon agree.
        const Run tree = run(QStringLiteral("appstreamcli"), {QStringLiteral("validate-tree"), QStringLiteral("--no-net"), m_destdir.path()});
        QVERIFY2(tree.exitCode == 0, qPrintable(tree.output));

        std::map<QString, QString> fields;
        QString release;
        bool screenshot = false;
        QXmlStreamReader xml(text(path));
        while (!xml.atEnd()) {
            xml.readNext();
            if (!xml.isStartElement())
                continue;
            const QString name = xml.name().toString();
            if (name == QLatin1String("release"))
                release = xml.attributes().value(QStringLiteral("version")).toString();
            else if (name == QLatin1String("image"))
                screenshot = screenshot || !xml.readElementText().isEmpty();
            else if (xml.attributes().value(QStringLiteral("xml:lang")).isEmpty()
                     && (name == QLatin1String("id") || name == QLatin1String("summary") || name == QLatin1String("launchable")))
                fields[name] = xml.readElementText();
        }
        QVERIFY(!xml.hasError());
        QCOMPARE(files.first(), fields[QStringLiteral("id")] + QStringLiteral(".metainfo.xml"));
        QVERIFY(!fields[QStringLiteral("summary")].isEmpty());
        QVERIFY(screenshot);
        QCOMPARE(release, QStringLiteral("1.0.0"));
        QVERIFY(QFile::exists(m_usr + QStringLiteral("/" NIMB_APPDIR "/") + fields[QStringLiteral("launchable")]));
    }

    void privilegedHelperIsRegistered()
    {
        const QString id = DesktopNotificationEnvironment::helperId();
        const QString policy = m_destdir.path() + QStringLiteral(NIMB_POLKIT_DIR "/") + id + QStringLiteral(".policy");
        QXmlStreamReader xml(text(policy));
        std::map<QString, std::map<QString, QString>> actions;
        QString action;
        while (!xml.atEnd()) {
            xml.readNext();
            if (!xml.isStartElement())
                continue;
            if (xml.name() == QLatin1String("action"))
                action = xml.attributes().value(QStringLiteral("id")).toString();
            else if (xml.name().startsWith(QLatin1String("allow_")))
                actions[action][xml.name().toString()] = xml.readElementText();
        }
        QVERIFY2(!xml.hasError(), qPrintable(xml.errorString()));
        QCOMPARE(actions.size(), std::size_t(2));
        for (const char *name : {".removeconfig", ".loggingservicectl"}) {
            auto defaults = actions[id + QLatin1String(name)];
            QVERIFY2(defaults.size() >= 2, name);
            QCOMPARE(defaults[QStringLiteral("allow_active")], QStringLiteral("auth_admin"));
            QCOMPARE(defaults[QStringLiteral("allow_inactive")], QStringLiteral("auth_admin"));
            // Absent means "no" to polkit.
            const QString any = defaults[QStringLiteral("allow_any")];
            QVERIFY(any.isEmpty() || any == QLatin1String("no") || any == QLatin1String("auth_admin"));
        }

        // The bus starts the installed helper for the name the viewer calls, and lets it own that name.
        QSettings service(m_usr + QStringLiteral("/" NIMB_DBUS_SERVICES_DIR "/") + id + QStringLiteral(".service"),
                          QSettings::IniFormat);
        service.beginGroup(QStringLiteral("D-BUS Service"));
        QCOMPARE(service.value(QStringLiteral("Name")).toString(), id);
        QCOMPARE(service.value(QStringLiteral("User")).toString(), QStringLiteral("root"));
        QVERIFY(isExecutableFile(m_destdir.path() + service.value(QStringLiteral("Exec")).toString()));
        QVERIFY(text(m_usr + QStringLiteral("/" NIMB_DBUS_DIR "/system.d/") + id + QStringLiteral(".conf"))
                    .contains(QStringLiteral("<allow own=\"%1\"/>").arg(id)));
    }

    void russianCatalogueLoads()
    {
        QTranslator translator;
        QVERIFY(translator.load(m_usr + QStringLiteral("/" NIMB_DATADIR "/nimb-event-viewer/translations/nimb-event-viewer_ru.qm")));
        QVERIFY(!translator.isEmpty());
    }
};

QTEST_GUILESS_MAIN(TestInstall)
#include "test_install.moc"
