// SPDX-FileCopyrightText: 2026 The trelvik developers
//
// SPDX-License-Identifier: GPL-2.0-or-later

#include "HelperPolicy.h"

#include <QDir>
#include <QFile>

#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace {
const char kPrefix[] = "mod-velmo-";
const char kSuffix[] = ".conf";

HelperPolicy::Outcome refuse(const QString &why)
{
    return {false, why};
}

QString systemError(int error)
{
    return QString::fromLocal8Bit(std::strerror(error));
}

// Closes a descriptor when the scope ends.
class FileDescriptor
{
public:
    explicit FileDescriptor(int fd) : m_fd(fd) {}
    ~FileDescriptor()
    {
        if (m_fd >= 0)
            ::close(m_fd);
    }
    FileDescriptor(const FileDescriptor &) = delete;
    FileDescriptor &operator=(const FileDescriptor &) = delete;
    int get() const { return m_fd; }

private:
    int m_fd;
};
}

HelperPolicy::HelperPolicy(QString ruleDirectory, QString systemctl)
    : m_ruleDirectory(QDir::cleanPath(ruleDirectory)), m_systemctl(std::move(systemctl))
{
}

bool HelperPolicy::isSafeId(const QString &id)
{
    if (id.isEmpty() || id.contains(QLatin1String("..")))
        return false;
    for (const QChar c : id) {
        const ushort u = c.unicode();
        const bool allowed = (u >= 'a' && u <= 'z') || (u >= 'A' && u <= 'Z') || (u >= '0' && u <= '9') || u == '-'
                             || u == '_' || u == '.';
        if (!allowed)
            return false;
    }
    return true;
}

HelperPolicy::Outcome HelperPolicy::removeConfig(const QVariantMap &request) const
{
    const QVariant fileValue = request.value(QStringLiteral("file"));
    if (fileValue.userType() != QMetaType::QString || fileValue.toString().isEmpty())
        return refuse(QStringLiteral("No rule file was named."));
    const QString path = fileValue.toString();
    if (!path.startsWith(QLatin1Char('/')))
        return refuse(QStringLiteral("The rule file must be named by an absolute path: %1").arg(path));
    if (path.split(QLatin1Char('/')).contains(QLatin1String("..")))
        return refuse(QStringLiteral("The rule file path must not contain \"..\": %1").arg(path));

    // Only the name is used from here on, relative to our own directory: the
    // caller's spelling of that directory merely has to agree with it.
    const int slash = path.lastIndexOf(QLatin1Char('/'));
    const QString directory = QDir::cleanPath(slash == 0 ? QStringLiteral("/") : path.left(slash));
    const QString name = path.mid(slash + 1);
    if (directory != m_ruleDirectory)
        return refuse(QStringLiteral("The file is not in the notification rule directory %1: %2")
                          .arg(m_ruleDirectory, path));

    const QString prefix = QLatin1String(kPrefix);
    const QString suffix = QLatin1String(kSuffix);
    if (!name.startsWith(prefix) || !name.endsWith(suffix) || name.size() < prefix.size() + suffix.size()
        || !isSafeId(name.mid(prefix.size(), name.size() - prefix.size() - suffix.size())))
        return refuse(QStringLiteral("Not a notification rule file name: %1").arg(name));

    const FileDescriptor directoryFd(::open(QFile::encodeName(m_ruleDirectory).constData(),
                                            O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    if (directoryFd.get() < 0)
        return refuse(QStringLiteral("Cannot open the notification rule directory %1: %2")
                          .arg(m_ruleDirectory, systemError(errno)));

    const QByteArray encodedName = QFile::encodeName(name);
    struct stat status {};
    if (::fstatat(directoryFd.get(), encodedName.constData(), &status, AT_SYMLINK_NOFOLLOW) != 0)
        return refuse(QStringLiteral("Cannot remove %1: %2").arg(path, systemError(errno)));
    if (!S_ISREG(status.st_mode))
        return refuse(QStringLiteral("Not a regular file, left alone: %1").arg(path));
    // unlinkat never follows a link and refuses a directory without AT_REMOVEDIR, so
    // an entry swapped in since the check cannot lead outside the directory either.
    if (::unlinkat(directoryFd.get(), encodedName.constData(), 0) != 0)
        return refuse(QStringLiteral("Cannot remove %1: %2").arg(path, systemError(errno)));
    return {true, QString()};
}

std::optional<HelperPolicy::Command> HelperPolicy::serviceCommand(const QVariantMap &request, QString *error) const
{
    const QVariant command = request.value(QStringLiteral("cmd"));
    if (command.userType() != QMetaType::QString || command.toString() != QLatin1String("restart")) {
        if (error)
            *error = QStringLiteral("Unsupported logging service command: %1").arg(command.toString());
        return std::nullopt;
    }
    return Command{m_systemctl, {QStringLiteral("restart"), serviceName()}};
}
