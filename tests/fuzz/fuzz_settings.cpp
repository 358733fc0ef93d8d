// SPDX-FileCopyrightText: 2026 The trelvik developers
//
// SPDX-License-Identifier: GPL-2.0-or-later

// The settings file as a user or an earlier version may have left it. Reading must
// keep the store within its rules, and what is written back reads back the same.

#include "FuzzTarget.h"

#include "ConfigHandler.h"
#include "ConfigStore.h"

#include <QDir>

NIMB_FUZZ_TARGET(settings)
{
    const QString root = fuzzsupport::setUp();
    const QString folder = root + QStringLiteral("/config/") + ConfigHandler::organizationName();
    QDir().mkpath(folder);
    const QString path = folder + QLatin1Char('/') + ConfigHandler::applicationName() + QStringLiteral(".conf");
    if (!fuzzsupport::writeFile(path, reinterpret_cast<const char *>(data), qint64(size)))
        return 0;
    fuzzsupport::touchUnique(path);

    ConfigStore read;
    ConfigHandler(read).readConfig();
    FUZZ_CHECK(read.messagesPerPage() >= ConfigStore::kMinMessagesPerPage);
    FUZZ_CHECK(read.messagesPerPage() <= ConfigStore::kMaxMessagesPerPage);
    FUZZ_CHECK(!read.mainLogPath().isEmpty());
    FUZZ_CHECK(read.recentFiles().size() <= 5);

    ConfigHandler(read).writeConfig();
    ConfigStore again;
    ConfigHandler(again).readConfig();
    FUZZ_CHECK(again.mainLogPath() == read.mainLogPath());
    FUZZ_CHECK(again.messagesPerPage() == read.messagesPerPage());
    FUZZ_CHECK(again.recentFiles() == read.recentFiles());
    FUZZ_CHECK(again.favoriteEvents() == read.favoriteEvents());
    FUZZ_CHECK(again.savedFilters().size() == read.savedFilters().size());
    for (int i = 0; i < read.savedFilters().size(); ++i) {
        FUZZ_CHECK(again.savedFilters().at(i).name == read.savedFilters().at(i).name);
        FUZZ_CHECK(again.savedFilters().at(i) == read.savedFilters().at(i));
    }
    return 0;
}
