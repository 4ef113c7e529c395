#include "TestFiles.h"

#include <csignal>

#include <sys/resource.h>
#include <unistd.h>

namespace hazelmark {

using Reason = Failure::Reason;

class WriteFailures : public FolderTest, public testing::WithParamInterface<WriteFormat>
{
protected:
    static std::optional<Reason> reasonFor(const QString &path, QSize size = {90, 60})
    {
        const auto written = encodePicture(makePicture(size.width(), size.height(), QImage::Format_RGBX8888),
                                           optionsFor(GetParam()), path);
        return written ? std::nullopt : std::optional(written.failure().reason);
    }
};

TEST_P(WriteFailures, FullDiskIsTold)
{
    const bool isThreaded = GetParam() == WriteFormat::Jpeg; // where it is large
    EXPECT_EQ(reasonFor(QStringLiteral("/dev/full")), Reason::DiskFull);
    EXPECT_EQ(reasonFor(QStringLiteral("/dev/full"), isThreaded ? QSize(1100, 1000) : QSize(1, 1)), Reason::DiskFull);
}

TEST_P(WriteFailures, FileThatMayNotGrowIsToldWhereverItHappens)
{
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    const QString path = pathOf(QStringLiteral("picture"));
    ASSERT_EQ(reasonFor(path), std::nullopt);
    const qint64 whole = QFile(path).size();
    const auto writesWithin = [&path](qint64 limit) {
        std::signal(SIGXFSZ, SIG_IGN);
        const rlimit fileSize = {rlim_t(limit), rlim_t(limit)};
        setrlimit(RLIMIT_FSIZE, &fileSize);
        const std::optional<Reason> reason = reasonFor(path);
        std::_Exit(!reason ? 0 : *reason == Reason::WriteFailed ? 1 : 2);
    };
    for (const qint64 limit : {qint64(0), qint64(1), qint64(100), whole / 2, whole - 1})
        EXPECT_EXIT(writesWithin(limit), testing::ExitedWithCode(1), "") << limit << " of " << whole;
    EXPECT_EXIT(writesWithin(whole), testing::ExitedWithCode(0), "");
}

INSTANTIATE_TEST_SUITE_P(Formats, WriteFailures,
                         testing::Values(WriteFormat::Png, WriteFormat::Jpeg, WriteFormat::Bmp, WriteFormat::Tiff,
                                         WriteFormat::Gif));

} // namespace hazelmark
