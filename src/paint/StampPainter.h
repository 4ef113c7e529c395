#pragma once

#include "BrushTexture.h"
#include "Color.h"

#include <QImage>
#include <QRect>

#include <array>
#include <memory>
#include <vector>

namespace hazelmark {

/// Where a stamp has its centre, in pixels from the buffer's top left corner.
struct StampCentre
{
    double x = 0;
    double y = 0;
};

/// Where a segment is stamped.
struct StampCentres
{
    StampCentres(std::vector<StampCentre> centres = {}, int howOften = 1)
        : places(std::move(centres))
        , times(howOften)
    {
    }

    std::vector<StampCentre> places;
    int times; ///< how often each place is stamped
};

/// The pixels that are stamped on: a rectangle in an image of Format_RGBA8888_Premultiplied. Each gets what it would
/// get in the whole image.
struct StampTarget
{
    /// All of the image, which must outlive this and not be copied meanwhile. Makes its memory its own.
    explicit StampTarget(QImage &image);
    /// What lies in `rect` alone. Targets without common pixels may be stamped on by several threads at once.
    StampTarget part(const QRect &rect) const;

    uchar *bits; ///< of the image's first line
    qsizetype stride;
    int beginColumn;
    int endColumn;
    int beginLine;
    int endLine;
};

/// Stamps a tip into an 8-bit premultiplied RGBA buffer.
///
/// A stamp is a square, `pointSize` wide, that shows the whole tip. It covers the pixels whose centres lie in it, at
/// any fractional place. A covered pixel samples the tip bilinearly, the four texels around its centre however
/// far its neighbours are apart on the tip, and
///   painting:  pixel = sample * colour + pixel * (1 - sample alpha * colour alpha)
///   erasing:   pixel = pixel * (1 - sample alpha)
/// with one rounding to the nearest 8-bit value a stamp. Painting over a full pixel leaves it as it is, and erasing
/// with the full part of a tip gives exactly 0.
class StampPainter
{
public:
    enum class Mode { Paint, Erase };

    /// Components of `color` outside 0..1 are clamped. Erasing takes no colour.
    StampPainter(Mode mode, const Color &color, float pointSize, const BrushTexture &texture);

    double pointSize() const { return m_pointSize; }
    /// Stamps at each centre, in order, clipped to the target. Gives the rectangle that may have changed.
    QRect stamp(const StampTarget &target, const StampCentres &centres) const;

private:
    std::shared_ptr<const BrushTexture::Texels> m_texels; ///< null when nothing is stamped
    double m_pointSize;
    std::array<float, 4> m_addend{};
    float m_alpha = 1;
};

} // namespace hazelmark
