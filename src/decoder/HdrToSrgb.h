#pragma once

#include "DecoderMessages.h"

#include <cstddef>
#include <cstdint>

namespace hazelmark::glass {

/// Whether the colours are those of pictures that are brighter than white: PQ or HLG.
bool isHighDynamicRange(const ColorCodes &colors);

/// Straight R, G, B, A of 16 bits in such colours to sRGB, in place: what 203 cd/m² are is about white, and what is
/// brighter goes into a soft shoulder, in which the hue stays.
class HdrToSrgb
{
public:
    explicit HdrToSrgb(const ColorCodes &colors);
    ~HdrToSrgb();
    void convert(uint16_t *rgba, size_t pixels) const;

private:
    struct Tables;
    Tables *m_tables;
};

} // namespace hazelmark::glass
