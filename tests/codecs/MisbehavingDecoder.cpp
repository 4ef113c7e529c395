// The decoder program with a library that has been taken over: what it tries to do stands in the file.
#include "DecoderMain.h"
#include "Sandbox.h"

#include <csignal>
#include <cstring>
#include <map>
#include <string_view>
#include <thread>
#include <vector>

#include <fcntl.h>
#include <sys/mman.h>
#include <sys/prctl.h>
#include <sys/socket.h>
#include <unistd.h>

namespace {

using namespace hazelmark::glass;

constexpr Size kSize{64, 48};

[[noreturn]] void refused()
{
    throw NoPicture(Trouble::Damaged, "refused");
}

void refusedUnless(bool hasWorked)
{
    if (!hasWorked)
        refused();
}

void say(const std::string &bytes)
{
    refusedUnless(::write(kChannelDescriptor, bytes.data(), bytes.size()) == ssize_t(bytes.size()));
}

class Taken : public ForeignDecoder
{
public:
    explicit Taken(const Photo &photo)
        : m_deed(reinterpret_cast<const char *>(photo.data()) + 24)
    {
    }

    Header readHeader() override
    {
        act({});
        Header header;
        header.format = "heic";
        header.frames = {kSize};
        if (m_deed == "too many pixels")
            header.frames = {{4'000'000'000u, 4'000'000'000u}};
        else if (m_deed == "no frames")
            header.frames.clear();
        return header;
    }

    Done decode(const Canvas &canvas) override
    {
        const size_t size = canvas.stride * canvas.size.height;
        if (m_deed == "write beyond the memory")
            std::memset(canvas.memory, 1,
                        size + (std::size_t(1) << 30)); // whatever lies beyond, some of it cannot be written
        act(" while decoding");
        std::thread([&] { std::memset(canvas.memory, 0x80, size); }).join();
        if (m_deed.ends_with(" at the end"))
            say(packed(Done()));
        act(" at the end");
        return {};
    }

private:
    void act(std::string_view when) const
    {
        const std::string_view deed = m_deed.substr(0, m_deed.ends_with(when) ? m_deed.size() - when.size() : 0);
        if (const auto found = kDeeds.find(deed); found != kDeeds.end())
            found->second();
    }

    [[noreturn]] static void hang()
    {
        while (true)
            std::this_thread::sleep_for(std::chrono::hours(1));
    }

    inline static const std::map<std::string_view, void (*)()> kDeeds = {
        {"open a file", [] { refusedUnless(::open("/etc/hostname", O_RDONLY) >= 0); }},
        {"write to the photo", [] { refusedUnless(::write(kPhotoDescriptor, "x", 1) == 1); }},
        {"shrink the memory", [] { refusedUnless(::ftruncate(kMemoryDescriptor, 4096) == 0); }},
        {"run code",
         [] {
             refusedUnless(::mmap(nullptr, 4096, PROT_WRITE | PROT_EXEC, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0) !=
                           MAP_FAILED);
         }},
        {"kill another", [] { refusedUnless(::kill(::getppid(), SIGTERM) == 0); }},
        {"connect", [] { refusedUnless(::socket(AF_INET, SOCK_STREAM, 0) >= 0); }},
        {"start a program", [] { ::execl("/bin/true", "true", nullptr); }},
        {"crash", [] { ::raise(SIGSEGV); }},
        {"stop", [] { ::raise(SIGSTOP); }},
        {"hang", hang},
        {"leave", [] { ::_exit(0); }},
        {"miss the library", [] { ::_exit(kNoDecoderStatus); }},
        {"take much memory", [] { std::vector<char>(size_t(3) << 30, 'x').shrink_to_fit(); }},
        {"say it again", [] { say(packed(Header())); }},
        {"talk nonsense", [] { say(std::string(100, 'x')); }},
        {"progress without end",
         [] {
             while (true)
                 say(packedProgress(1));
         }},
    };

    std::string_view m_deed;
};

} // namespace

int main()
{
    ::signal(SIGSEGV, SIG_DFL); // which a sanitizer would answer
    return runDecoder([](const Photo &photo) -> ForeignDecoder * { return new Taken(photo); });
}
