#include "AvailableMemory.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>

#include <gtest/gtest.h>

namespace hazelmark {

namespace {

struct SystemFile
{
    const char *path;
    const char *content;
};

const SystemFile kMeminfo{"proc/meminfo", "MemTotal:       16000000 kB\nMemAvailable:    9000000 kB\n"
                                          "SwapTotal:       2000000 kB\nSwapFree:        1000000 kB\n"};

} // namespace

TEST(AvailableMemory, IsTheLeastOfWhatSystemAndGroupsLeave)
{
    constexpr qint64 kOfSystem = 10'000'000LL * 1024;
    constexpr qint64 kUnlimited = std::numeric_limits<qint64>::max();
    const struct
    {
        const char *what;
        std::vector<SystemFile> files;
        qint64 expected;
    } rows[] = {
        {"nothing is told", {}, kUnlimited},
        {"no groups", {kMeminfo}, kOfSystem},
        {"a group without a limit",
         {kMeminfo, {"proc/self/cgroup", "0::/app\n"}, {"sys/fs/cgroup/app/memory.max", "max\n"}},
         kOfSystem},
        {"a group of the second version, whose file cache can be freed",
         {kMeminfo,
          {"proc/self/cgroup", "0::/user/app\n"},
          {"sys/fs/cgroup/user/app/memory.max", "5000\n"},
          {"sys/fs/cgroup/user/app/memory.current", "3000\n"},
          {"sys/fs/cgroup/user/app/memory.stat", "anon 2000\nfile 900\ninactive_file 600\nactive_file 300\n"}},
         5000 - 3000 + 900},
        {"the tighter limit of a group that it lies in",
         {kMeminfo,
          {"proc/self/cgroup", "0::/user/app\n"},
          {"sys/fs/cgroup/user/app/memory.max", "5000\n"},
          {"sys/fs/cgroup/user/app/memory.current", "1000\n"},
          {"sys/fs/cgroup/user/memory.max", "3000\n"},
          {"sys/fs/cgroup/user/memory.current", "1500\n"}},
         1500},
        {"a group of the first version, used up",
         {kMeminfo,
          {"proc/self/cgroup", "5:devices:/\n4:cpu,memory:/box\n0::/\n"},
          {"sys/fs/cgroup/memory/box/memory.limit_in_bytes", "7000\n"},
          {"sys/fs/cgroup/memory/box/memory.usage_in_bytes", "9000\n"},
          {"sys/fs/cgroup/memory/box/memory.stat", "total_inactive_file 500\n"}},
         0},
        {"a container, which sees its own group at the root",
         {kMeminfo,
          {"proc/self/cgroup", "0::/far/outside\n"},
          {"sys/fs/cgroup/memory.max", "4000\n"},
          {"sys/fs/cgroup/memory.current", "1000\n"}},
         3000},
    };
    for (const auto &[what, files, expected] : rows) {
        const QTemporaryDir root;
        for (const auto &[path, content] : files) {
            QFile file(root.filePath(QString::fromLatin1(path)));
            ASSERT_TRUE(QDir().mkpath(QFileInfo(file).path()) && file.open(QIODevice::WriteOnly));
            file.write(content);
        }
        EXPECT_EQ(availableMemory(root.path()), expected) << what;
    }
}

TEST(AvailableMemory, OfThisMachineIsKnownAndCanBeCapped)
{
    const qint64 available = availableMemory();
    EXPECT_GT(available, 1 << 20);
    EXPECT_LT(available, qint64(1) << 50);
    {
        const MemoryCap cap(1000);
        EXPECT_EQ(availableMemory(), 1000);
    }
    EXPECT_GT(availableMemory(), 1000);
}

} // namespace hazelmark
