#include "BlockReaders.h"

namespace hazelmark {

namespace {

struct Walk
{
    const char *format;
    EmbeddedBlocks (*read)(const SourceFile &source);
};

constexpr Walk kWalks[] = {
    {"jpeg", readJpegBlocks}, {"png", readPngBlocks}, {"webp", readWebPBlocks}, {"gif", readGifBlocks}};

} // namespace

std::optional<EmbeddedBlocks> readEmbeddedBlocks(const SourceFile &source, const QByteArray &format)
{
    for (const Walk &walk : kWalks) {
        if (format == walk.format)
            return walk.read(source);
    }
    return std::nullopt;
}

} // namespace hazelmark
