// What the decoder program may say, and the headers that are looked at before anything is decoded.
#include "DecoderMessages.h"
#include "ForeignKinds.h"
#include "FuzzFile.h"
#include "HeifBoxes.h"

using namespace hazelmark;

namespace {

void readMessages(std::string_view bytes)
{
    glass::MessageReader reader;
    reader.add(bytes.substr(0, bytes.size() / 2));
    (void)reader.next();
    reader.add(bytes.substr(bytes.size() / 2));
    while (const std::optional<glass::Message> message = reader.next()) {
        (void)glass::doneOf(message->body);
        (void)glass::excuseOf(message->body);
        (void)glass::goOf(message->body);
        (void)glass::headerOf(message->body);
    }
}

/// No step may lead out of the picture.
void readBoxes(std::span<const std::byte> bytes)
{
    const std::optional<glass::HeifPrimary> primary = glass::readHeifPrimary(bytes);
    const auto path = primary ? glass::pathThrough(primary->steps, 100, 70) : std::nullopt;
    if (!path)
        return;
    for (const int64_t x : {int64_t(0), path->width - 1}) {
        for (const int64_t y : {int64_t(0), path->height - 1}) {
            const int64_t column = path->across[0] * x + path->across[1] * y + path->across[2];
            const int64_t row = path->down[0] * x + path->down[1] * y + path->down[2];
            if (column < 0 || column >= 100 || row < 0 || row >= 70)
                std::abort();
        }
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *bytes, size_t size)
{
    readMessages({reinterpret_cast<const char *>(bytes), size});
    readBoxes({reinterpret_cast<const std::byte *>(bytes), size});
    if (const auto source = SourceFile::open(fuzzFile(bytes, size)))
        (void)foreignKindOf(**source);
    return 0;
}
