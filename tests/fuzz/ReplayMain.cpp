// SPDX-FileCopyrightText: 2026 The trelvik developers
//
// SPDX-License-Identifier: GPL-2.0-or-later

// Runs every harness over the files of its corpus directories: the seeds and the
// inputs that once failed. A failing input aborts, like under the fuzzer, after its
// name was printed.

#include "FuzzTarget.h"

#include <QCoreApplication>
#include <QDir>
#include <QDirIterator>
#include <QFile>

#include <map>
#include <string>

namespace fuzzreplay
{
namespace
{
std::map<std::string, Entry> &targets()
{
    static std::map<std::string, Entry> registered;
    return registered;
}
}

bool registerTarget(const char *name, Entry entry)
{
    targets()[name] = entry;
    return true;
}
}

int main(int argc, char **argv)
{
    QCoreApplication app(argc, argv);
    fuzzsupport::setUp();
    // Directories holding one folder per harness: the arguments, else the corpus and
    // the findings kept in the source tree.
    QStringList roots;
    for (int i = 1; i < argc; ++i)
        roots.append(QFile::decodeName(argv[i]));
    if (roots.isEmpty())
        roots = QString::fromUtf8(NIMB_FUZZ_INPUTS).split(QLatin1Char(':'));
    int inputs = 0;
    for (const QString &directory : roots) {
        // Findings are kept only once there are some.
        const QDir root(directory);
        for (const auto &[name, entry] : fuzzreplay::targets()) {
            QDirIterator files(root.filePath(QString::fromStdString(name)), QDir::Files, QDirIterator::Subdirectories);
            while (files.hasNext()) {
                const QString path = files.next();
                QFile file(path);
                if (!file.open(QIODevice::ReadOnly)) {
                    std::fprintf(stderr, "cannot read %s\n", qPrintable(path));
                    return 1;
                }
                const QByteArray bytes = file.readAll();
                std::fprintf(stderr, "%s: %s\n", name.c_str(), qPrintable(path));
                entry(reinterpret_cast<const uint8_t *>(bytes.constData()), size_t(bytes.size()));
                ++inputs;
            }
        }
    }
    std::printf("replayed %d inputs through %zu harnesses\n", inputs, fuzzreplay::targets().size());
    return inputs > 0 ? 0 : 1;
}
