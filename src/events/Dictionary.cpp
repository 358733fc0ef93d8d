// SPDX-FileCopyrightText: 2026 The trelvik developers
//
// SPDX-License-Identifier: GPL-2.0-or-later

#include "Dictionary.h"

#include "Language.h"
#include "SystemPaths.h"

#include <QDir>
#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

namespace
{
QByteArray readWhole(const QString &path, bool *ok)
{
    QFile file(path);
    *ok = file.open(QIODevice::ReadOnly);
    return *ok ? file.readAll() : QByteArray();
}
}

const Dictionary &Dictionary::instance()
{
    static const Dictionary dictionary(SystemPaths::eventSettingsDir(), SystemPaths::sourcesDir());
    return dictionary;
}

Dictionary::Dictionary(const QString &eventSettingsDir, const QString &sourcesDir, QObject *parent)
    : QObject(parent)
{
    fillPriorities();
    fillMonths();
    fillSignals();
    const QString languageKey = Language::isRussian() ? QStringLiteral("name_ru") : QStringLiteral("name_en");
    readEventTypes(eventSettingsDir, languageKey);
    m_eventTypes.insert(QStringLiteral("custom-events"), QString());
    readSources(sourcesDir);
}

QString Dictionary::unrecognizedSourceText() const
{
    return m_sources.value(unrecognizedSource(), tr("unrecognized"));
}

void Dictionary::fillPriorities()
{
    m_priorities.insert(Event::Emergency, tr("emergency"));
    m_priorities.insert(Event::Alert, tr("alert"));
    m_priorities.insert(Event::Critical, tr("critical"));
    m_priorities.insert(Event::Error, tr("error"));
    m_priorities.insert(Event::Warning, tr("warning"));
    m_priorities.insert(Event::Notice, tr("notice"));
    m_priorities.insert(Event::Info, tr("info"));
    m_priorities.insert(Event::Debug, tr("debug"));
}

void Dictionary::fillMonths()
{
    static const char *const names[] = {"Jan", "Feb", "Mar", "Apr", "May", "Jun",
                                        "Jul", "Aug", "Sep", "Oct", "Nov", "Dec"};
    for (int i = 0; i < 12; ++i)
        m_months.insert(QLatin1String(names[i]), i + 1);
}

void Dictionary::fillSignals()
{
    static const char *const classic[] = {
        "SIGHUP", "SIGINT", "SIGQUIT", "SIGILL", "SIGTRAP", "SIGABRT", "SIGBUS", "SIGFPE",
        "SIGKILL", "SIGUSR1", "SIGSEGV", "SIGUSR2", "SIGPIPE", "SIGALRM", "SIGTERM", "SIGSTKFLT",
        "SIGCHLD", "SIGCONT", "SIGSTOP", "SIGTSTP", "SIGTTIN", "SIGTTOU", "SIGURG", "SIGXCPU",
        "SIGXFSZ", "SIGVTALRM", "SIGPROF", "SIGWINCH", "SIGIO", "SIGPWR", "SIGSYS"};
    for (int i = 0; i < 31; ++i)
        m_signals.insert(i + 1, QLatin1String(classic[i]));
    // 32 and 33 are taken by the threading library and have no name of their own.
    m_signals.insert(34, QStringLiteral("SIGRTMIN"));
    for (int i = 1; i <= 15; ++i)
        m_signals.insert(34 + i, QStringLiteral("SIGRTMIN+%1").arg(i));
    for (int i = 14; i >= 1; --i)
        m_signals.insert(64 - i, QStringLiteral("SIGRTMAX-%1").arg(i));
    m_signals.insert(64, QStringLiteral("SIGRTMAX"));
}

void Dictionary::readEventTypes(const QString &dirPath, const QString &languageKey)
{
    const QDir dir(dirPath);
    const QStringList groups = dir.entryList(QDir::Dirs | QDir::NoDotAndDotDot, QDir::Name);
    for (const QString &group : groups) {
        const QDir groupDir(dir.filePath(group));
        // The description lies beside other files under the group's own name.
        const QStringList files = groupDir.entryList(QDir::Files, QDir::Name);
        if (!files.contains(group))
            continue;
        bool ok = false;
        const QByteArray content = readWhole(groupDir.filePath(group), &ok);
        if (!ok)
            continue;
        const QJsonObject root = QJsonDocument::fromJson(content).object();
        const QString name = root.value(QLatin1String("group-params")).toObject().value(languageKey).toString();
        m_eventTypes.insert(group, name);
    }
}

void Dictionary::readSources(const QString &dirPath)
{
    const QDir dir(dirPath);
    if (!dir.exists())
        return;
    const QString language = Language::textLanguageName();
    const QStringList files = dir.entryList(QDir::Files, QDir::Name);
    for (const QString &fileName : files) {
        bool ok = false;
        const QByteArray content = readWhole(dir.filePath(fileName), &ok);
        if (!ok)
            continue;
        const QJsonArray array = QJsonDocument::fromJson(content).array();
        for (const QJsonValue &element : array) {
            const QJsonObject object = element.toObject();
            if (object.isEmpty() || !object.contains(QLatin1String("name")) || !object.contains(language))
                continue;
            m_sources.insert(object.value(QLatin1String("name")).toString(), object.value(language).toString());
        }
    }
}
