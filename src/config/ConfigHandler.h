// SPDX-FileCopyrightText: 2026 The trelvik developers
//
// SPDX-License-Identifier: GPL-2.0-or-later

#pragma once

#include "ConfigStore.h"

#include <QObject>
#include <QString>

class QSettings;

// Reads the settings file into a ConfigStore and writes the store back as a whole.
// The file is the user's native settings file of "trelvik" / "nimb-event-viewer".
class ConfigHandler : public QObject
{
    Q_OBJECT
public:
    // Works on the process-wide store.
    explicit ConfigHandler(QObject *parent = nullptr);
    // Works on the given store, which must outlive the handler.
    explicit ConfigHandler(ConfigStore &store, QObject *parent = nullptr);

    ConfigStore &store() { return m_store; }
    const ConfigStore &store() const { return m_store; }

    // Replaces the store's contents with what the settings file holds; anything
    // missing or unusable takes the value a fresh user starts with.
    void readConfig();
    // Writes every field and emits configWritten(), also after a failure, so that
    // what shows the store stays current. Keys that the store no longer accounts for
    // (a longer list of an earlier run) stay in the file. The new file takes the
    // earlier one's place only once complete: on failure the earlier file stays whole,
    // writeFailed() says why, and false is returned.
    bool writeConfig();

    void addRecentFile(const QString &path) { m_store.addRecentFile(path); }

    static QString organizationName() { return QStringLiteral("trelvik"); }
    static QString applicationName() { return QStringLiteral("nimb-event-viewer"); }
    // Where QSettings keeps the user's file for these names.
    static QString settingsFilePath();

signals:
    void configWritten();
    void writeFailed(const QString &path, const QString &reason);

private:
    void readWindow(QSettings &settings);
    void readVisibleColumns(QSettings &settings);
    void readApplicationSettings(QSettings &settings);
    void readRecentFiles(QSettings &settings);
    void readFavorites(QSettings &settings);
    void readFilters(QSettings &settings);

    void writeWindow(QSettings &settings) const;
    void writeVisibleColumns(QSettings &settings) const;
    void writeApplicationSettings(QSettings &settings) const;
    void writeRecentFiles(QSettings &settings) const;
    void writeFavorites(QSettings &settings) const;
    void writeFilters(QSettings &settings) const;
    // The settings file's new content, made by Qt from the earlier content and the store.
    bool draftFile(const QByteArray &earlier, QByteArray *content, QString *error) const;

    ConfigStore &m_store;
};
