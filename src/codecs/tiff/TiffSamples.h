#pragma once

#include <cstdint>

namespace hazelmark {

/// Takes samples as a TIFF file packs them apart and puts them into the 8- or 16-bit samples of a bitmap's row, scaled
/// to the full range.
class TiffSamples
{
public:
    enum class Scaling {
        ToFullRange, ///< the largest stored value becomes the largest of the bitmap; floats are clamped to 0..1
        None,        ///< palette indices
    };

    TiffSamples(int bitsPerSample, bool isFloat, Scaling scaling)
        : m_bits(bitsPerSample)
        , m_isFloat(isFloat)
        , m_scaling(scaling)
    {
    }

    /// Every `packedStep`-th sample of `packed`, starting with number `firstSample`, goes to every `targetStep`-th
    /// sample of `target`. Up to 8 bits a sample for the first form, more for the second.
    void unpack(const uint8_t *packed, int firstSample, int packedStep, uint8_t *target, int targetStep,
                int count) const;
    void unpack(const uint8_t *packed, int firstSample, int packedStep, uint16_t *target, int targetStep,
                int count) const;

private:
    uint32_t bitsAt(const uint8_t *packed, int64_t sample) const;

    int m_bits;
    bool m_isFloat;
    Scaling m_scaling;
};

} // namespace hazelmark
