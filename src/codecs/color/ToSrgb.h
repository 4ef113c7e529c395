#pragma once

#include "LcmsHandles.h"

#include <cstdint>

namespace hazelmark {

/// Turns rows of samples that have no RGB form into sRGB. `rgbx`: four samples a pixel, the last one full.
class ToSrgb
{
public:
    /// From four samples a pixel, the largest value being full ink: through the embedded profile where LittleCMS can
    /// use it (perceptual intent, as press profiles are made for), otherwise as R = (1 - C)(1 - K) and so on.
    static ToSrgb fromCmyk(const QByteArray &iccProfile);
    void convertRow(const uint8_t *cmyk, uint8_t *rgbx, int pixelCount) const;
    void convertRow(const uint16_t *cmyk, uint16_t *rgbx, int pixelCount) const;

    /// From three 16-bit samples a pixel (white point D50): lightness 0..100 as 0..65535, a and b as
    /// (value + 128) · 257. Not valid when the library has no memory.
    static ToSrgb fromLab();
    bool isValid() const { return m_bits8 && m_bits16; }
    void convertLabRow(const uint16_t *lab, uint8_t *rgbx, int pixelCount) const;
    void convertLabRow(const uint16_t *lab, uint16_t *rgbx, int pixelCount) const;

private:
    TransformHandle m_bits8;
    TransformHandle m_bits16;
};

} // namespace hazelmark
