#include "StrokesFile.h"

#include <cstdint>
#include <cstdlib>

using namespace hazelmark;

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *bytes, size_t size)
{
    constexpr double kMostPixels = 1 << 18;
    QString fault;
    const QByteArray json(reinterpret_cast<const char *>(bytes), qsizetype(size));
    const std::optional<StrokesFile> strokes = StrokesFile::parse(json, fault);
    if (!strokes && fault.isEmpty())
        std::abort();
    if (strokes && strokes->canvas.width() * strokes->canvas.height() <= kMostPixels)
        (void)strokes->mask(fault);
    return 0;
}
