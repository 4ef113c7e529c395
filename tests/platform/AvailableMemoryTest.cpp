#include "AvailableMemory.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>

#include <gtest/gtest.h>

#include <sys/resource.h>
#include <unistd.h>

namespace hazelmark {

static void write(const QTemporaryDir &root, const QString &path, const char *content)
{
    QFile file(root.path() + path);
    ASSERT_TRUE(QDir().mkpath(QFileInfo(file).path()) && file.open(QIODevice::WriteOnly));
    file.write(content);
}

TEST(AvailableMemory, IsTheLeastOfWhatSystemAndGroupsLeave)
{
    constexpr qint64 kOfSystem = 10'000'000LL * 1024;
    struct SystemFile
    {
        const char *path; // of a control group: below the folder of them all
        const char *content;
    };
    const struct
    {
        const char *what, *ofProcess;
        std::vector<SystemFile> groups;
        qint64 expected;
    } rows[] = {
        {"a group without a limit", "0::/app\n", {{"/app/memory.max", "max\n"}}, kOfSystem},
        {"the tighter limit of a group that it lies in, whose file cache can be freed",
         "0::/user/app\n",
         {{"/user/app/memory.max", "5000\n"},
          {"/user/app/memory.current", "1000\n"},
          {"/user/memory.max", "3000\n"},
          {"/user/memory.current", "2400\n"},
          {"/user/memory.stat", "anon 2000\nfile 900\ninactive_file 600\nactive_file 300\n"}},
         1500},
        {"a group of the first version, used up",
         "5:devices:/\n4:cpu,memory:/box\n0::/\n",
         {{"/memory/box/memory.limit_in_bytes", "7000\n"},
          {"/memory/box/memory.usage_in_bytes", "9000\n"},
          {"/memory/box/memory.stat", "total_inactive_file 500\n"}},
         0},
        {"a container, which sees its own group at the root",
         "0::/far/outside\n",
         {{"/memory.max", "4000\n"}, {"/memory.current", "1000\n"}},
         3000},
    };
    for (const auto &[what, ofProcess, groups, expected] : rows) {
        const QTemporaryDir root;
        EXPECT_EQ(availableMemory(root.path()), std::numeric_limits<qint64>::max()) << "nothing is told";
        write(root, QStringLiteral("/proc/meminfo"),
              "MemTotal: 16000000 kB\nMemAvailable: 9000000 kB\nSwapFree: 1000000 kB\n");
        write(root, QStringLiteral("/proc/self/cgroup"), ofProcess);
        for (const auto &[path, content] : groups)
            write(root, QStringLiteral("/sys/fs/cgroup") + QLatin1String(path), content);
        EXPECT_EQ(availableMemory(root.path()), expected) << what;
    }
}

TEST(AvailableMemory, IsNoMoreThanTheAddressesThatAreLeft)
{
    rlimit before = {};
    ASSERT_EQ(::getrlimit(RLIMIT_AS, &before), 0);
    const rlimit limit{std::min(rlim_t(1) << 60, before.rlim_max), before.rlim_max};
    ASSERT_EQ(::setrlimit(RLIMIT_AS, &limit), 0);
    const QTemporaryDir root;
    write(root, QStringLiteral("/proc/self/statm"), "1000 17 3\n");
    EXPECT_EQ(availableMemory(root.path()), qint64(limit.rlim_cur) - 1000 * ::sysconf(_SC_PAGESIZE));
    ::setrlimit(RLIMIT_AS, &before);
}

} // namespace hazelmark
