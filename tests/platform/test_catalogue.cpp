// SPDX-FileCopyrightText: 2026 The trelvik developers
//
// SPDX-License-Identifier: GPL-2.0-or-later

#include <QFile>
#include <QFileInfo>
#include <QProcess>
#include <QRegularExpression>
#include <QSet>
#include <QTemporaryDir>
#include <QTranslator>
#include <QXmlStreamReader>
#include <QtTest>

namespace
{
const QString kRussian = QStringLiteral(NIMB_SOURCE_DIR "/translations/nimb-event-viewer_ru.ts");
// Only the English plural forms: the source texts are English already.
const QString kEnglish = QStringLiteral(NIMB_SOURCE_DIR "/translations/nimb-event-viewer_en.ts");

struct Message
{
    QString context;
    QString source;
    QString comment;
    bool numerus = false;
    bool unfinished = false;
    QStringList translations; // one text, or one per plural form
};

QString label(const Message &message)
{
    QString text = message.context + QStringLiteral(": \"") + message.source + QLatin1Char('"');
    if (!message.comment.isEmpty())
        text += QStringLiteral(" (") + message.comment + QLatin1Char(')');
    return text;
}

QVector<Message> readCatalogue(const QString &path, QString *error)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly)) {
        *error = file.errorString();
        return {};
    }
    QVector<Message> messages;
    QString context;
    QXmlStreamReader xml(&file);
    while (!xml.atEnd()) {
        xml.readNext();
        if (!xml.isStartElement())
            continue;
        if (xml.name() == QLatin1String("name")) {
            context = xml.readElementText();
            continue;
        }
        if (xml.name() != QLatin1String("message"))
            continue;
        Message message;
        message.context = context;
        message.numerus = xml.attributes().value(QLatin1String("numerus")) == QLatin1String("yes");
        while (xml.readNextStartElement()) {
            if (xml.name() == QLatin1String("source")) {
                message.source = xml.readElementText();
            } else if (xml.name() == QLatin1String("comment")) {
                message.comment = xml.readElementText();
            } else if (xml.name() == QLatin1String("translation")) {
                message.unfinished = !xml.attributes().value(QLatin1String("type")).isEmpty();
                if (message.numerus) {
                    while (xml.readNextStartElement())
                        message.translations << xml.readElementText();
                } else {
                    message.translations << xml.readElementText();
                }
            } else {
                xml.skipCurrentElement();
            }
        }
        messages << message;
    }
    if (xml.hasError())
        *error = xml.errorString();
    return messages;
}

QSet<QString> placeholders(const QString &text)
{
    static const QRegularExpression marker(QStringLiteral("%(\\d+|n)"));
    QSet<QString> found;
    for (auto it = marker.globalMatch(text); it.hasNext();)
        found << it.next().captured();
    return found;
}

bool hasAccelerator(const QString &text)
{
    return QString(text).remove(QStringLiteral("&&")).contains(QLatin1Char('&'));
}

QString edgeSpace(const QString &text)
{
    static const QRegularExpression edges(QStringLiteral("^(\\s*).*?(\\s*)$"),
                                          QRegularExpression::DotMatchesEverythingOption);
    const QRegularExpressionMatch match = edges.match(text);
    return match.captured(1) + QLatin1Char('|') + match.captured(2);
}

// The Qt tool of that name beside the lupdate found at configuration.
QString linguistTool(const QString &name)
{
    const QFileInfo lupdate(QStringLiteral(NIMB_LUPDATE));
    return lupdate.absolutePath() + QLatin1Char('/') + lupdate.fileName().replace(QStringLiteral("lupdate"), name);
}

QString run(const QString &program, const QStringList &arguments)
{
    QProcess process;
    process.setProcessChannelMode(QProcess::MergedChannels);
    process.start(program, arguments);
    if (!process.waitForFinished(60000))
        return program + QStringLiteral(": ") + process.errorString();
    if (process.exitStatus() != QProcess::NormalExit || process.exitCode() != 0)
        return program + QStringLiteral(": ") + QString::fromLocal8Bit(process.readAll());
    return QString();
}

// Which plural form, by its place in the catalogue, a count must show.
using FormOfCount = QVector<QPair<int, int>>;

QString withCount(QString text, int n)
{
    return text.replace(QStringLiteral("%n"), QString::number(n));
}
}

class TestCatalogue : public QObject
{
    Q_OBJECT

    QTemporaryDir m_dir;
    // Every text of the sources, found by the same lupdate a translator runs.
    QVector<Message> m_sources;

    QVector<Message> catalogue(const QString &path)
    {
        QString error;
        const QVector<Message> messages = readCatalogue(path, &error);
        if (!error.isEmpty())
            qWarning("%s: %s", qPrintable(path), qPrintable(error));
        return messages;
    }

private slots:
    void initTestCase()
    {
        QVERIFY(m_dir.isValid());
        const QString scanned = m_dir.filePath(QStringLiteral("sources.ts"));
        const QString failure = run(QStringLiteral(NIMB_LUPDATE),
                                    {QStringLiteral("-extensions"), QStringLiteral("cpp,h,ui,def"), QStringLiteral("-locations"),
                                     QStringLiteral("none"), QStringLiteral(NIMB_SOURCE_DIR "/src"), QStringLiteral("-ts"), scanned});
        QVERIFY2(failure.isEmpty(), qPrintable(failure));
        m_sources = catalogue(scanned);
        QSet<QString> found;
        for (const Message &message : qAsConst(m_sources))
            found << label(message);
        // Scanning must have reached the forms, the parameter table and the counted texts, or
        // nothing below is checked.
        for (const QString &expected : {QStringLiteral("QObject: \"Account type\""), QStringLiteral("PageWidget: \"of 1\""),
                                        QStringLiteral("MainWindow: \"System events journal\""),
                                        QStringLiteral("MainWindow: \"Printed %n events.\"")})
            QVERIFY2(found.contains(expected), qPrintable(expected));
    }

    void everySourceTextIsTranslated_data()
    {
        QTest::addColumn<QString>("path");
        QTest::addColumn<bool>("pluralOnly");
        QTest::newRow("Russian") << kRussian << false;
        QTest::newRow("English plural forms") << kEnglish << true;
    }

    // A catalogue holds every text of the sources (the English one every counted text), and only
    // those, each with a finished translation.
    void everySourceTextIsTranslated()
    {
        QFETCH(QString, path);
        QFETCH(bool, pluralOnly);
        const QVector<Message> messages = catalogue(path);
        QVERIFY(!messages.isEmpty());

        QHash<QString, bool> known; // whether counted
        QSet<QString> current;
        QStringList problems;
        for (const Message &message : messages) {
            known.insert(label(message), message.numerus);
            if (message.unfinished || message.translations.isEmpty() || message.translations.contains(QString()))
                problems << QStringLiteral("untranslated: ") + label(message);
            if (pluralOnly && !message.numerus)
                problems << QStringLiteral("not counted: ") + label(message);
        }
        for (const Message &message : qAsConst(m_sources)) {
            if (pluralOnly && !message.numerus)
                continue;
            current << label(message);
            if (!known.contains(label(message)))
                problems << QStringLiteral("not in the catalogue: ") + label(message);
            else if (known.value(label(message)) != message.numerus)
                problems << QStringLiteral("counted in one of catalogue and sources only: ") + label(message);
        }
        const QList<QString> catalogued = known.keys();
        for (const QString &stale : QSet<QString>(catalogued.cbegin(), catalogued.cend()) - current)
            problems << QStringLiteral("no longer in the sources: ") + stale;
        QVERIFY2(problems.isEmpty(), qPrintable(problems.join(QLatin1Char('\n'))));
    }

    void translationsKeepWhatTheProgramRelies_data()
    {
        QTest::addColumn<QString>("path");
        QTest::addColumn<int>("pluralForms");
        QTest::newRow("Russian") << kRussian << 3;
        QTest::newRow("English plural forms") << kEnglish << 2;
    }

    // A translation that drops a placeholder breaks arg(); one that drops the ampersand leaves a
    // menu without its key; spaces at the edges are where the program joins texts together.
    void translationsKeepWhatTheProgramRelies()
    {
        QFETCH(QString, path);
        QFETCH(int, pluralForms);
        const QVector<Message> messages = catalogue(path);
        QVERIFY(!messages.isEmpty());
        QStringList problems;
        for (const Message &message : messages) {
            if (message.numerus && message.translations.size() != pluralForms)
                problems << QStringLiteral("not %1 plural forms: ").arg(pluralForms) + label(message);
            for (const QString &translation : message.translations) {
                if (translation.isEmpty())
                    continue; // reported by the other check
                if (placeholders(translation) != placeholders(message.source))
                    problems << QStringLiteral("placeholders differ: ") + label(message);
                if (hasAccelerator(translation) != hasAccelerator(message.source))
                    problems << QStringLiteral("accelerator differs: ") + label(message);
                if (edgeSpace(translation) != edgeSpace(message.source))
                    problems << QStringLiteral("leading or trailing space differs: ") + label(message);
            }
        }
        QVERIFY2(problems.isEmpty(), qPrintable(problems.join(QLatin1Char('\n'))));
    }

    // A message glued from translated pieces fixes the order of its words for every language.
    // Such pieces betray themselves by a blank at an edge; the messages that replaced them must
    // stay whole, with their placeholders.
    void messagesAreWholeSentences()
    {
        // " of %1" stands beside a spin box, which is no text a translator could reorder.
        const QSet<QString> joints{QStringLiteral("PageWidget: \" of %1\"")};
        QSet<QString> found;
        QStringList problems;
        for (const Message &message : qAsConst(m_sources)) {
            found << label(message);
            if (edgeSpace(message.source) != QStringLiteral("|") && !joints.contains(label(message)))
                problems << QStringLiteral("a piece of a sentence: ") + label(message);
        }
        for (const char *whole :
             {"LogWidget: \"Events: %1\"", "FilterWindow: \"\"%1\" is empty.\" (a field's value)",
              "FilterWindow: \"\"%1\" is a part of \"%2\".\" (the first field's text occurs in the second's)",
              "FilterWindow: \"Event_Log_Filter_%1\" (proposed name of a saved filter)",
              "BottomWidget: \"%1 (case sensitive, only whole words)\" (searched keyword)",
              "LogInfoWindow: \"%1 megabytes\" (a size, possibly fractional)", "LogInfoWindow: \"%n bytes\"",
              "MainWindow: \"%1 (filtered)\" (title of a tab that filters another tab's events)"}) {
            if (!found.contains(QString::fromUtf8(whole)))
                problems << QStringLiteral("not a whole message in the sources: ") + QString::fromUtf8(whole);
        }
        QVERIFY2(problems.isEmpty(), qPrintable(problems.join(QLatin1Char('\n'))));
    }

    // The catalogues as the program loads them: every count picks the form its language's
    // rules give it, in the order the catalogue lists the forms.
    void countsTakeTheirLanguagesPluralForms_data()
    {
        QTest::addColumn<QString>("path");
        QTest::addColumn<FormOfCount>("formOfCount");
        QTest::addColumn<QStringList>("shown"); // events printed, then bytes, for 1, 2 and 5
        QTest::newRow("Russian") << kRussian << FormOfCount{{1, 0}, {2, 1}, {5, 2}, {11, 2}, {21, 0}, {22, 1}, {0, 2}}
                                 << QStringList{QStringLiteral("Напечатано 1 событие."), QStringLiteral("Напечатано 2 события."),
                                                QStringLiteral("Напечатано 5 событий."), QStringLiteral("1 байт"),
                                                QStringLiteral("2 байта"), QStringLiteral("5 байт")};
        QTest::newRow("English") << kEnglish << FormOfCount{{1, 0}, {2, 1}, {5, 1}, {0, 1}, {21, 1}}
                                 << QStringList{QStringLiteral("Printed 1 event."), QStringLiteral("Printed 2 events."),
                                                QStringLiteral("Printed 5 events."), QStringLiteral("1 byte"),
                                                QStringLiteral("2 bytes"), QStringLiteral("5 bytes")};
    }

    void countsTakeTheirLanguagesPluralForms()
    {
        QFETCH(QString, path);
        QFETCH(FormOfCount, formOfCount);
        QFETCH(QStringList, shown);
        const QString compiled = m_dir.filePath(QFileInfo(path).completeBaseName() + QStringLiteral(".qm"));
        const QString failure = run(linguistTool(QStringLiteral("lrelease")), {QStringLiteral("-silent"), path,
                                                                               QStringLiteral("-qm"), compiled});
        QVERIFY2(failure.isEmpty(), qPrintable(failure));
        QTranslator translator;
        QVERIFY(translator.load(compiled));
        QVERIFY(QCoreApplication::installTranslator(&translator));
        const auto remove = qScopeGuard([&] { QCoreApplication::removeTranslator(&translator); });

        QStringList translated;
        for (int n : {1, 2, 5})
            translated << QCoreApplication::translate("MainWindow", "Printed %n events.", nullptr, n);
        for (int n : {1, 2, 5})
            translated << QCoreApplication::translate("LogInfoWindow", "%n bytes", nullptr, n);
        QCOMPARE(translated, shown);
        QStringList problems;
        for (const Message &message : catalogue(path)) {
            if (!message.numerus)
                continue;
            const QByteArray context = message.context.toUtf8(), source = message.source.toUtf8(),
                             comment = message.comment.toUtf8();
            for (const QPair<int, int> &count : qAsConst(formOfCount)) {
                const int n = count.first;
                const QString text = QCoreApplication::translate(context.constData(), source.constData(),
                                                                 comment.isEmpty() ? nullptr : comment.constData(), n);
                if (text != withCount(message.translations.value(count.second), n))
                    problems << QStringLiteral("%1 shows %2: ").arg(n).arg(text) + label(message);
            }
        }
        QVERIFY2(problems.isEmpty(), qPrintable(problems.join(QLatin1Char('\n'))));
    }
};

QTEST_GUILESS_MAIN(TestCatalogue)
#include "test_catalogue.moc"
