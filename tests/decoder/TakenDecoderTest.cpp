// A decoder that does what it should not, or dies: there is a failure, and nothing else.
#include "DecodeScope.h"
#include "DecoderProcess.h"
#include "TestFiles.h"

#include <atomic>
#include <cerrno>
#include <csignal>
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
        return write(QStringLiteral("photo"), QByteArray("\0\0\0\x18"
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
    const bool isConfined = sentenceAfter("open a file").find("refused") != std::string::npos;
    for (const auto &[deed, part] : {std::pair("write a file", "refused"),
                                     {"write to the photo", "refused"},
                                     {"fill the memory", "refused"},
                                     {"run code", "refused"},
                                     {"kill another", "refused"},
                                     {"shrink the memory", "refused"},
                                     {"grow the memory", "refused"},
                                     {"connect", "signal 31"},
                                     {"fork", "signal 31"},
                                     {"start a program", "signal 31"},
                                     {"trace", "signal 31"}}) {
        if (!isConfined)
            break; // this system has no such filter
        EXPECT_NE(sentenceAfter(deed).find(part), std::string::npos) << deed << ": " << sentenceAfter(deed);
    }
    for (const auto &[deed, part] : {std::pair("crash", "signal 11"),
                                     {"abort", "signal 6"},
                                     {"stop", "stopped"},
                                     {"hang", "hangs"},
                                     {"leave", "too early"},
                                     {"miss the library", "not installed"},
                                     {"talk nonsense", "nonsense"},
                                     {"talk without end", "nonsense"},
                                     {"half a message", "too early"},
                                     {"progress beyond the end", "nonsense"},
                                     {"progress without end", "too long"},
                                     {"no pixels", "no pixels"},
                                     {"too many pixels", "megapixels"},
                                     {"no frames", "cannot be"},
                                     {"wrong depth", "cannot be"},
                                     {"write beyond the memory", "ended"},
                                     {"crash while decoding", "signal 11"},
                                     {"stop while decoding", "stopped"},
                                     {"another message", "cannot be"},
                                     {"leave early", "too early"},
                                     {"stay", "does not end"}}) {
        const std::string sentence = sentenceAfter(deed);
        EXPECT_NE(sentence.find(part), std::string::npos) << deed << ": " << sentence;
    }
    EXPECT_TRUE(isAlone());
}

#if !defined(__SANITIZE_ADDRESS__)
TEST_F(TakenDecoder, GetsNoMoreMemoryThanItsPictureNeeds)
{
    EXPECT_NE(sentenceAfter("take much memory").find("not enough memory"), std::string::npos);
}
#endif

TEST_F(TakenDecoder, EndsWhenNobodyWantsThePicture)
{
    int looks = 0;
    const DecodeScope scope([&] { return ++looks > 3; });
    EXPECT_NE(sentenceAfter("hang").find("nobody"), std::string::npos);
    EXPECT_TRUE(isAlone());
}

/// Whenever it is killed or stopped there is the whole picture or none.
TEST_F(TakenDecoder, MayBeKilledAtAnyMoment)
{
    const QString file = fileFor("decode");
    const QByteArray children =
        QByteArray("/proc/self/task/") + QByteArray::number(qlonglong(::getpid())) + "/children";
    for (int moment = 0; moment < 100; ++moment) {
        std::atomic_bool isOver = false;
        std::thread killer([&] {
            while (!isOver) {
                QFile list(QString::fromLatin1(children));
                const pid_t child = list.open(QIODevice::ReadOnly) ? list.readAll().trimmed().toInt() : 0;
                if (child == 0)
                    continue;
                std::this_thread::sleep_for(std::chrono::microseconds(50 * moment));
                ::kill(child, moment % 2 ? SIGKILL : SIGSTOP);
                return;
            }
        });
        const auto picture = decodePicture(file);
        isOver = true;
        killer.join();
        if (picture) {
            EXPECT_EQ(qGreen(picture->pixels.pixel(63, 47)), 0x80) << moment;
        }
    }
    EXPECT_TRUE(isAlone());
}

} // namespace hazelmark
