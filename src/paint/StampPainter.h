#pragma once

#include "BrushTexture.h"
#include "Color.h"

#include <QImage>
#include <QRect>

#include <array>
#include <vector>

namespace hazelmark {

/// Where a stamp has its centre, in pixels from the buffer's top left corner.
struct StampCentre
{
    double x = 0;
    double y = 0;
};

/// Stamps a tip into an 8-bit premultiplied RGBA buffer.
///
/// A stamp is a square, `pointSize` wide, that shows the whole tip. It covers the pixels whose centres lie in it, at
/// any fractional place. A covered pixel samples the tip bilinearly (see BrushTexture::levelFor), and
///   painting:  pixel = sample * colour + pixel * (1 - sample alpha * colour alpha)
///   erasing:   pixel = pixel * (1 - sample alpha)
/// with one rounding to the nearest 8-bit value a stamp. Painting over a full pixel leaves it as it is, and erasing
/// with the full part of a tip gives exactly 0.
class StampPainter
{
public:
    enum class Mode { Paint, Erase };

    /// Components of `color` outside 0..1 are clamped. Erasing takes no colour.
    StampPainter(Mode mode, const Color &color, float pointSize, BrushTexture &texture);

    /// Stamps once at each centre, in order, clipped to the buffer (Format_RGBA8888_Premultiplied). Gives the
    /// rectangle of the buffer that may have changed.
    QRect stamp(QImage &buffer, const std::vector<StampCentre> &centres) const;

private:
    const BrushTexture::Level *m_level = nullptr;
    double m_pointSize;
    std::array<float, 4> m_addend{};
    float m_alpha = 1;
};

} // namespace hazelmark
