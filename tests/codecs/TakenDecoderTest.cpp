// A decoder that does what it should not, or dies: there is a failure, and nothing else.
#include "DecodeScope.h"
#include "DecoderProcess.h"
#include "TestFiles.h"

#include <cerrno>
#include <future>
#include <thread>

#include <sys/wait.h>

namespace hazelmark {

class TakenDecoder : public FolderTest
{
protected:
    void SetUp() override
    {
        const QString folder = QFileInfo(QStringLiteral("/proc/self/exe")).symLinkTarget().section(u'/', 0, -2);
        DecoderProcess::setProgram(folder + QStringLiteral("/misbehaving-decoder"));
    }
    void TearDown() override { DecoderProcess::setProgram({}); }

    /// A file that is taken for HEIC, for the decoder to do this.
    QString fileFor(const char *deed) const
    {
        return write(QLatin1String(deed), QByteArray("\0\0\0\x18"
                                                     "ftypheic\0\0\0\0mif1heic",
                                                     24) +
                                              deed + '\0');
    }
    /// What people read; empty when there is a picture.
    std::string sentenceAfter(const char *deed) const
    {
        const auto picture = decodePicture(fileFor(deed));
        if (picture) {
            EXPECT_EQ(picture->pixels.size(), QSize(64, 48));
            EXPECT_EQ(qGreen(picture->pixels.pixel(63, 47)), 0x80);
        }
        return picture ? std::string() : picture.failure().sentence().toStdString();
    }
    /// Whether no process is left, be it only to be cleared away.
    static bool isAlone()
    {
        for (int look = 0; look < 500; ++look) {
            siginfo_t info = {};
            if (::waitid(P_ALL, 0, &info, WEXITED | WNOHANG | WNOWAIT) < 0 && errno == ECHILD)
                return true;
            std::this_thread::sleep_for(std::chrono::milliseconds(10));
        }
        return false;
    }
};

TEST_F(TakenDecoder, IsStoppedEachTime)
{
    EXPECT_EQ(sentenceAfter("decode"), "");
    EXPECT_EQ(sentenceAfter("leave at the end"), "");
    std::vector<std::pair<const char *, const char *>> deeds = {{"crash", "signal 11"},
                                                                {"stop", "stopped"},
                                                                {"hang", "hangs"},
                                                                {"leave", "too early"},
                                                                {"miss the library", "not installed"},
                                                                {"talk nonsense", "nonsense"},
                                                                {"progress without end", "too long"},
                                                                {"too many pixels", "megapixels"},
                                                                {"no frames", "cannot be"},
                                                                {"write beyond the memory", "ended"},
                                                                {"crash while decoding", "signal 11"},
                                                                {"stop while decoding", "stopped"},
                                                                {"say it again while decoding", "cannot be"},
                                                                {"leave while decoding", "too early"},
                                                                {"crash at the end", "signal 11"},
                                                                {"stop at the end", "stopped"},
                                                                {"hang at the end", "does not end"},
                                                                {"miss the library at the end", "not installed"}};
    if (sentenceAfter("open a file").find("refused") != std::string::npos) { // else this system has no such filter
        deeds.insert(deeds.end(), {{"write to the photo", "refused"},
                                   {"run code", "refused"},
                                   {"kill another", "refused"},
                                   {"shrink the memory while decoding", "refused"},
                                   {"take much memory", "not enough memory"},
                                   {"connect", "signal 31"},
                                   {"start a program", "signal 31"}});
    }
    std::vector<std::future<void>> all; // at once: most of the time passes with waiting
    for (const auto &row : deeds) {
        all.push_back(std::async(std::launch::async, [&] {
            const std::string sentence = sentenceAfter(row.first);
            EXPECT_NE(sentence.find(row.second), std::string::npos) << row.first << ": " << sentence;
        }));
    }
    all.clear();
    EXPECT_TRUE(isAlone());
}

TEST_F(TakenDecoder, EndsWhenNobodyWantsThePicture)
{
    int looks = 0;
    const DecodeScope scope([&] { return ++looks > 3; });
    EXPECT_NE(sentenceAfter("hang").find("nobody"), std::string::npos);
    EXPECT_TRUE(isAlone());
}

} // namespace hazelmark
