#include "DecoderMain.h"

#include "Sandbox.h"

#include <algorithm>
#include <cerrno>
#include <csignal>
#include <new>
#include <thread>

#include <sys/mman.h>
#include <sys/stat.h>
#include <unistd.h>

namespace hazelmark::glass {

namespace {

bool say(const std::string &bytes)
{
    size_t done = 0;
    while (done < bytes.size()) {
        const ssize_t count = ::write(kChannelDescriptor, bytes.data() + done, bytes.size() - done);
        if (count < 0 && errno == EINTR)
            continue;
        if (count <= 0)
            return false;
        done += size_t(count);
    }
    return true;
}

/// Waits for it. Nothing when the other program has gone or lost interest.
std::optional<Go> hearGo()
{
    MessageReader reader;
    while (true) {
        if (const std::optional<Message> message = reader.next())
            return message->kind == Kind::Go ? goOf(message->body) : std::nullopt;
        char buffer[256];
        const ssize_t count = ::read(kChannelDescriptor, buffer, sizeof buffer);
        if (count < 0 && errno == EINTR)
            continue;
        if (count <= 0 || reader.isBroken())
            return std::nullopt;
        reader.add({buffer, size_t(count)});
    }
}

std::span<const std::byte> mappedPhoto()
{
    struct stat status = {};
    if (::fstat(kPhotoDescriptor, &status) != 0 || status.st_size <= 0)
        throw NoPicture(Trouble::Truncated, "the file is empty");
    const auto size = size_t(status.st_size);
    void *const memory = ::mmap(nullptr, size, PROT_READ, MAP_PRIVATE, kPhotoDescriptor, 0);
    if (memory == MAP_FAILED)
        throw NoPicture(Trouble::Damaged, "the file cannot be mapped");
    return {static_cast<const std::byte *>(memory), size};
}

/// Asks for the pages of the memory, which is slow one by one, while the library still thinks.
void fetchPages(std::byte *memory, size_t size)
{
    constexpr size_t kAtOnce = size_t(4) << 20; // others that want memory wait meanwhile
    for (size_t done = 0; done < size; done += kAtOnce) {
        if (::madvise(memory + done, std::min(kAtOnce, size - done), MADV_POPULATE_WRITE) != 0)
            return; // an old system
    }
}

Canvas mappedCanvas(const Header &header, const Go &go)
{
    const Size size = header.frames.at(0);
    const auto stride = size_t(rowBytes(header.layout, size.width));
    void *const memory = ::mmap(nullptr, go.memorySize, PROT_READ | PROT_WRITE, MAP_SHARED, kMemoryDescriptor, 0);
    if (memory == MAP_FAILED)
        throw std::bad_alloc();
    if (go.threads > 1)
        std::thread(fetchPages, static_cast<std::byte *>(memory), size_t(go.memorySize)).detach();
    return {static_cast<std::byte *>(memory), stride, size, go.threads, [told = 0.0](double done) mutable {
                if (done >= told + 0.01 && done <= 1.0)
                    say(packedProgress(told = done));
            }};
}

void decode(MakeForeignDecoder makeDecoder)
{
    const Photo photo{mappedPhoto(), kPhotoDescriptor};
    const std::unique_ptr<ForeignDecoder> decoder(makeDecoder(photo));
    const bool isConfined = enterSandbox(); // no byte of the file has been looked at
    Header header = decoder->readHeader();
    if (!isConfined)
        header.note = "the decoder runs with its limits alone. " + header.note;
    if (!say(packed(header)))
        return;
    const std::optional<Go> go = hearGo();
    if (!go)
        return;
    say(packed(decoder->decode(mappedCanvas(header, *go))));
    // Memory goes with the process.
    ::_exit(0);
}

} // namespace

int runDecoder(MakeForeignDecoder makeDecoder)
{
    sigset_t none;
    sigemptyset(&none);
    ::sigprocmask(SIG_SETMASK, &none, nullptr); // who starts this program has blocked them all
    Excuse excuse;
    try {
        decode(makeDecoder);
        return 0;
    } catch (const NoPicture &none) {
        excuse = {none.trouble(), none.what()};
    } catch (const std::bad_alloc &) {
        excuse = {Trouble::OutOfMemory, {}};
    } catch (const std::exception &error) {
        excuse = {Trouble::Damaged, error.what()};
    } catch (...) {
        excuse = {Trouble::Damaged, {}};
    }
    return say(packed(excuse)) ? 0 : 1;
}

} // namespace hazelmark::glass
