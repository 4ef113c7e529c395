#pragma once

#include <QImage>

#include <cstdint>

namespace hazelmark {

// Rows of pixels from the formats that encoders are handed (RGBX8888, RGBA8888, RGBX64, RGBA64; straight alpha) in the
// forms that files hold. 16-bit samples come out in the machine's byte order.

/// round(sample / 257): what an 8-bit file holds of a 16-bit sample.
inline uint8_t roundTo8Bits(uint32_t sample)
{
    return uint8_t((sample * 255u + 32895u) >> 16);
}

inline bool is16Bit(const QImage &pixels)
{
    return pixels.format() == QImage::Format_RGBX64 || pixels.format() == QImage::Format_RGBA64;
}

inline bool hasAlphaFormat(const QImage &pixels)
{
    return pixels.format() == QImage::Format_RGBA8888 || pixels.format() == QImage::Format_RGBA64;
}

/// 8-bit R, G, B of row `y`, laid on white: c·a + white·(1 - a) on the stored values, rounded once.
void readRowOnWhite(const QImage &pixels, int y, uint8_t *rgb);

/// 8-bit R, G, B, A of row `y`, straight.
void readRow8(const QImage &pixels, int y, uint8_t *rgba);

/// Bytes of a row of readPackedRow().
inline qsizetype packedRowSize(const QImage &pixels)
{
    return qsizetype(pixels.width()) * (hasAlphaFormat(pixels) ? 4 : 3) * (is16Bit(pixels) ? 2 : 1);
}

/// R, G, B (or R, G, B, A when the format has alpha) of row `y` in its own depth, without the filler.
void readPackedRow(const QImage &pixels, int y, void *samples);

} // namespace hazelmark
