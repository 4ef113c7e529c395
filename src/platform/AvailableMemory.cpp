#include "AvailableMemory.h"

#include <QFile>
#include <QList>

#include <algorithm>
#include <atomic>
#include <limits>
#include <optional>

#include <sys/resource.h>
#include <unistd.h>

namespace hazelmark {

namespace {

constexpr qint64 kUnlimited = std::numeric_limits<qint64>::max();

std::atomic<qint64> s_cap = kUnlimited;

QByteArray contentOf(const QString &path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

/// The number behind `name` on a line of its own, 0 without one.
qint64 field(const QByteArray &table, const QByteArray &name)
{
    for (const QByteArray &line : table.split('\n')) {
        if (line.startsWith(name + ' ') || line.startsWith(name + ':'))
            return line.mid(name.size() + 1).simplified().split(' ').front().toLongLong();
    }
    return 0;
}

qint64 freeOfSystem(const QString &root)
{
    constexpr qint64 kKilobyte = 1024;
    const QByteArray table = contentOf(root + QStringLiteral("/proc/meminfo"));
    const qint64 available = field(table, "MemAvailable");
    return available > 0 ? (available + field(table, "SwapFree")) * kKilobyte : kUnlimited;
}

/// The names of what a version of the control groups tells of each.
struct GroupFiles
{
    QString base;
    QString limit;
    QString usage;
    QList<QByteArray> fileCache; ///< in memory.stat: counted as used, but freed on demand
};

/// The tightest of the limits of a group and those that it lies in.
qint64 freeOfGroup(const GroupFiles &files, QString group)
{
    qint64 least = kUnlimited;
    while (true) {
        const QString folder = files.base + group + QLatin1Char('/');
        bool isLimited = false;
        const qint64 limit = contentOf(folder + files.limit).trimmed().toLongLong(&isLimited); // else "max"
        if (isLimited) {
            qint64 used = contentOf(folder + files.usage).trimmed().toLongLong();
            const QByteArray table = contentOf(folder + QStringLiteral("memory.stat"));
            for (const QByteArray &name : files.fileCache)
                used -= field(table, name);
            least = std::min(least, std::max<qint64>(limit - std::max<qint64>(used, 0), 0));
        }
        if (group.isEmpty())
            return least;
        group.truncate(std::max<qsizetype>(group.lastIndexOf(QLatin1Char('/')), 0));
    }
}

qint64 freeOfGroups(const QString &root)
{
    const QString base = root + QStringLiteral("/sys/fs/cgroup");
    const GroupFiles second{
        base, QStringLiteral("memory.max"), QStringLiteral("memory.current"), {"inactive_file", "active_file"}};
    const GroupFiles first{base + QStringLiteral("/memory"),
                           QStringLiteral("memory.limit_in_bytes"),
                           QStringLiteral("memory.usage_in_bytes"),
                           {"total_inactive_file", "total_active_file"}};
    qint64 least = kUnlimited;
    // Number, controllers, and the group's path, which begins with a slash.
    for (const QByteArray &line : contentOf(root + QStringLiteral("/proc/self/cgroup")).split('\n')) {
        const QList<QByteArray> parts = line.split(':');
        if (parts.size() < 3)
            continue;
        const QString group = QFile::decodeName(line.mid(parts[0].size() + parts[1].size() + 2));
        if (parts[1].isEmpty())
            least = std::min(least, freeOfGroup(second, group));
        else if (parts[1].split(',').contains("memory"))
            least = std::min(least, freeOfGroup(first, group));
    }
    return least;
}

qint64 freeAddresses(const QString &root)
{
    rlimit limit = {};
    if (::getrlimit(RLIMIT_AS, &limit) != 0 || limit.rlim_cur == RLIM_INFINITY)
        return kUnlimited;
    const qint64 pages = contentOf(root + QStringLiteral("/proc/self/statm")).split(' ').front().toLongLong();
    return std::max<qint64>(qint64(limit.rlim_cur) - pages * ::sysconf(_SC_PAGESIZE), 0);
}

} // namespace

qint64 availableMemory(const QString &root)
{
    return std::min({s_cap.load(), freeOfSystem(root), freeOfGroups(root), freeAddresses(root)});
}

MemoryCap::MemoryCap(qint64 bytes)
{
    s_cap = bytes;
}

MemoryCap::~MemoryCap()
{
    s_cap = kUnlimited;
}

} // namespace hazelmark
