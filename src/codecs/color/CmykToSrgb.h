#pragma once

#include <QByteArray>

#include <cstdint>
#include <memory>

namespace hazelmark {

/// Turns rows of CMYK samples into sRGB: through the embedded profile where LittleCMS can use it (perceptual intent,
/// as press profiles are made for), otherwise as R = (1 - C)(1 - K) and so on.
class CmykToSrgb
{
public:
    explicit CmykToSrgb(const QByteArray &iccProfile);
    ~CmykToSrgb();
    CmykToSrgb(const CmykToSrgb &) = delete;
    CmykToSrgb &operator=(const CmykToSrgb &) = delete;

    /// `cmyk`: four samples a pixel, the largest value is full ink. `rgbx`: four samples a pixel, the last one full.
    void convertRow(const uint8_t *cmyk, uint8_t *rgbx, int pixelCount) const;
    void convertRow(const uint16_t *cmyk, uint16_t *rgbx, int pixelCount) const;

private:
    struct Transforms;
    std::unique_ptr<Transforms> m_transforms;
};

} // namespace hazelmark
