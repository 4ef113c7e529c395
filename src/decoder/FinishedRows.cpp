#include "FinishedRows.h"

#include "HdrToSrgb.h"

#include <algorithm>

namespace hazelmark::glass {

namespace {

template <typename Sample>
void divideByAlpha(Sample *rgba, size_t pixels)
{
    constexpr uint64_t kMost = Sample(~Sample(0));
    for (Sample *end = rgba + 4 * pixels; rgba != end; rgba += 4) {
        for (int channel = 0; channel < 3 && rgba[3] != 0; ++channel)
            rgba[channel] = Sample(std::min<uint64_t>((rgba[channel] * kMost + rgba[3] / 2) / rgba[3], kMost));
    }
}

} // namespace

void finishRows(const Canvas &canvas, const Header &header, bool isPremultiplied, ColorCodes colors)
{
    const std::unique_ptr<const HdrToSrgb> hdr(header.isConverted ? new HdrToSrgb(colors) : nullptr);
    if (!hdr && !isPremultiplied)
        return;
    for (uint32_t y = 0; y < canvas.size.height; ++y) {
        if (isPremultiplied && header.layout == Layout::Rgba16)
            divideByAlpha(canvas.row16(y), canvas.size.width);
        else if (isPremultiplied)
            divideByAlpha(canvas.row8(y), canvas.size.width);
        if (hdr)
            hdr->convert(canvas.row16(y), canvas.size.width);
    }
}

} // namespace hazelmark::glass
