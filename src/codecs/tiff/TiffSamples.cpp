#include "TiffSamples.h"

#include <qfloat16.h>

#include <cmath>
#include <cstring>

namespace hazelmark {

namespace {

template <typename Stored>
Stored storedAt(const uint8_t *packed, int64_t sample)
{
    Stored value;
    std::memcpy(&value, packed + sample * int64_t(sizeof(Stored)), sizeof(Stored));
    return value;
}

/// 0..1 to 0..65535, rounded; what is outside is clamped, and what is no number becomes 0.
uint16_t fromFraction(double value)
{
    return value > 0 ? uint16_t(std::lround(std::fmin(value, 1.0) * 65535.0)) : uint16_t(0);
}

} // namespace

/// Samples that are no whole bytes are packed without gaps, the highest bit first.
uint32_t TiffSamples::bitsAt(const uint8_t *packed, int64_t sample) const
{
    const int64_t firstBit = sample * m_bits;
    uint32_t value = 0;
    for (int64_t bit = firstBit; bit < firstBit + m_bits;) {
        const int offset = int(bit % 8);
        const int taken = std::min<int>(8 - offset, int(firstBit + m_bits - bit));
        value = (value << taken) | ((uint32_t(packed[bit / 8]) >> (8 - offset - taken)) & ((1u << taken) - 1));
        bit += taken;
    }
    return value;
}

void TiffSamples::unpack(const uint8_t *packed, int firstSample, int packedStep, uint8_t *target, int targetStep,
                         int count) const
{
    if (m_bits == 8) {
        packed += firstSample;
        for (int i = 0; i < count; ++i)
            target[int64_t(i) * targetStep] = packed[int64_t(i) * packedStep];
        return;
    }
    const uint32_t largest = (1u << m_bits) - 1;
    for (int i = 0; i < count; ++i) {
        const uint32_t value = bitsAt(packed, firstSample + int64_t(i) * packedStep);
        target[int64_t(i) * targetStep] =
            uint8_t(m_scaling == Scaling::None ? value : (value * 255 + largest / 2) / largest);
    }
}

void TiffSamples::unpack(const uint8_t *packed, int firstSample, int packedStep, uint16_t *target, int targetStep,
                         int count) const
{
    const uint32_t largest = m_bits < 16 ? (1u << m_bits) - 1 : 65535;
    for (int i = 0; i < count; ++i) {
        const int64_t sample = firstSample + int64_t(i) * packedStep;
        uint16_t &result = target[int64_t(i) * targetStep];
        if (m_isFloat && m_bits == 64)
            result = fromFraction(storedAt<double>(packed, sample));
        else if (m_isFloat && m_bits == 32)
            result = fromFraction(double(storedAt<float>(packed, sample)));
        else if (m_isFloat)
            result = fromFraction(double(float(storedAt<qfloat16>(packed, sample))));
        else if (m_bits == 32)
            result = uint16_t(storedAt<uint32_t>(packed, sample) >> 16);
        else if (m_bits == 16)
            result = storedAt<uint16_t>(packed, sample);
        else
            result = uint16_t((uint64_t(bitsAt(packed, sample)) * 65535 + largest / 2) / largest);
    }
}

} // namespace hazelmark
