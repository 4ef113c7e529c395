#include "PixelRows.h"

#include <cstring>

namespace hazelmark {

namespace {

/// round(value / 255) for 0 <= value <= 255 · 255.
inline uint8_t divideBy255(uint32_t value)
{
    return uint8_t((value + 128u + ((value + 128u) >> 8)) >> 8);
}

/// round((c·a + 65535·(65535 - a)) / 65535 / 257): blended in 16 bits and rounded to 8 in one step.
inline uint8_t blendOnWhite16(uint64_t color, uint64_t alpha)
{
    constexpr uint64_t kMax = 65535;
    constexpr uint64_t kDivisor = kMax * 257;
    return uint8_t((color * alpha + kMax * (kMax - alpha) + kDivisor / 2) / kDivisor);
}

template <typename Sample>
void packRgb(const Sample *rgbx, Sample *rgb, int width)
{
    for (int x = 0; x < width; ++x, rgbx += 4, rgb += 3) {
        rgb[0] = rgbx[0];
        rgb[1] = rgbx[1];
        rgb[2] = rgbx[2];
    }
}

const uint16_t *row16(const QImage &pixels, int y)
{
    return reinterpret_cast<const uint16_t *>(pixels.constScanLine(y));
}

} // namespace

void readRowOnWhite(const QImage &pixels, int y, uint8_t *rgb)
{
    const int width = pixels.width();
    const bool hasAlpha = hasAlphaFormat(pixels);
    if (is16Bit(pixels)) {
        const uint16_t *rgba = row16(pixels, y);
        for (int x = 0; x < width; ++x, rgba += 4, rgb += 3) {
            for (int channel = 0; channel < 3; ++channel)
                rgb[channel] = hasAlpha ? blendOnWhite16(rgba[channel], rgba[3]) : roundTo8Bits(rgba[channel]);
        }
        return;
    }
    const uint8_t *rgba = pixels.constScanLine(y);
    if (!hasAlpha)
        return packRgb(rgba, rgb, width);
    for (int x = 0; x < width; ++x, rgba += 4, rgb += 3) {
        for (int channel = 0; channel < 3; ++channel)
            rgb[channel] = uint8_t(255 - divideBy255(uint32_t(255 - rgba[channel]) * rgba[3]));
    }
}

void readRow8(const QImage &pixels, int y, uint8_t *rgba)
{
    const size_t samples = size_t(pixels.width()) * 4;
    if (!is16Bit(pixels)) {
        std::memcpy(rgba, pixels.constScanLine(y), samples);
    } else {
        const uint16_t *source = row16(pixels, y);
        for (size_t i = 0; i < samples; ++i)
            rgba[i] = roundTo8Bits(source[i]);
    }
    if (!hasAlphaFormat(pixels)) {
        for (size_t i = 3; i < samples; i += 4)
            rgba[i] = 255;
    }
}

void readPackedRow(const QImage &pixels, int y, void *samples)
{
    const int width = pixels.width();
    if (hasAlphaFormat(pixels))
        std::memcpy(samples, pixels.constScanLine(y), size_t(packedRowSize(pixels)));
    else if (is16Bit(pixels))
        packRgb(row16(pixels, y), static_cast<uint16_t *>(samples), width);
    else
        packRgb(pixels.constScanLine(y), static_cast<uint8_t *>(samples), width);
}

} // namespace hazelmark
