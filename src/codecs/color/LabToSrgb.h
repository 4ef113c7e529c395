#pragma once

#include "LcmsHandles.h"

#include <cstdint>

namespace hazelmark {

/// Turns rows of Lab samples (white point D50) into sRGB.
///
/// `lab`: three 16-bit samples a pixel: lightness 0..100 as 0..65535, a and b as (value + 128) · 257. `rgbx`: four
/// samples a pixel, the last one full.
class LabToSrgb
{
public:
    LabToSrgb();

    bool isValid() const { return m_bits8 && m_bits16; }
    void convertRow(const uint16_t *lab, uint8_t *rgbx, int pixelCount) const;
    void convertRow(const uint16_t *lab, uint16_t *rgbx, int pixelCount) const;

private:
    TransformHandle m_bits8;
    TransformHandle m_bits16;
};

} // namespace hazelmark
