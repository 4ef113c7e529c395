#include "BlockReaders.h"

#include <algorithm>
#include <iterator>

namespace hazelmark {

namespace {

struct Walk
{
    const char *format;
    EmbeddedBlocks (*read)(const SourceFile &source);
};

constexpr Walk kWalks[] = {
    {"jpeg", readJpegBlocks}, {"png", readPngBlocks}, {"webp", readWebPBlocks}, {"gif", readGifBlocks}};

const Walk *walkOf(const QByteArray &format)
{
    const Walk *walk =
        std::find_if(std::begin(kWalks), std::end(kWalks), [&](const Walk &w) { return format == w.format; });
    return walk == std::end(kWalks) ? nullptr : walk;
}

} // namespace

bool hasEmbeddedBlocks(const QByteArray &format)
{
    return walkOf(format) != nullptr;
}

EmbeddedBlocks readEmbeddedBlocks(const SourceFile &source, const QByteArray &format)
{
    const Walk *walk = walkOf(format);
    return walk ? walk->read(source) : EmbeddedBlocks();
}

} // namespace hazelmark
