// A part of a picture at a size, blurred where a mask says, against the graph that gives the same.
#include "PartPainter.h"
#include "FilterImage.h"
#include "Pictures.h"
#include "PixelFormats.h"
#include "Renderer.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstring>

namespace hazelmark {
namespace {

using namespace testing;

constexpr QSize kSource(701, 503);

/// Hard edges of all directions, fine lines, and where there is alpha holes in it.
QImage hardPicture(QImage::Format format)
{
    return drawn(kSource, format, [](int x, int y) {
        const bool inside = std::hypot(x - 300, y - 260) < 140;
        const bool line = x % 9 == 0 || (x + 2 * y) % 31 == 0;
        return QColor(inside ? 255 : 0, line ? 220 : 15, y > 250 ? 255 : 90, x > 500 ? (y < 200 ? 0 : 130) : 255);
    });
}

/// Nothing, a slope, all of it; in stripes.
QImage stripedMask()
{
    return drawn({233, 167}, QImage::Format_Grayscale8, [](int x, int y) {
        const int value = y % 40 < 20 ? 0 : std::clamp(20 * (x - 60), 0, 255);
        return QColor(value, value, value);
    });
}

struct Sight
{
    Sight(const QImage &source, QSize size, double radius, const QRect &part)
        : painter(source, size, part)
        , blur(source.size(), radius)
        , part(part)
        , source(source)
    {
        const QRect reach = PartPainter::maskReach(mask.size(), size, part);
        cutMask = mask.copy(reach);
        painter.setMask(cutMask, reach.topLeft(), mask.size());
        painter.setBlur(blur);
    }
    QImage draw(const QRect &rect, int threads)
    {
        const std::vector<PartPainter::Piece> pieces = painter.pieces(rect, threads);
        blur.provide(painter.cellsFor(pieces), source, threads);
        return painter.draw(rect, pieces, threads);
    }
    PartPainter painter;
    KeptBlur blur;
    QRect part;
    QImage source;
    QImage mask = stripedMask();
    QImage cutMask;
};

} // namespace

TEST(PartPainter, DrawsWhatTheGraphGives)
{
    for (const QImage::Format format : {QImage::Format_RGBX8888, QImage::Format_RGBA8888, QImage::Format_RGBX64}) {
        for (const auto &[size, radius] : {std::pair(kSource, 71.0), std::pair(QSize(561, 402), 33.0),
                                           std::pair(QSize(372, 267), 71.0), std::pair(QSize(950, 682), 40.0)}) {
            const QImage source = hardPicture(format);
            const QRect part(size.width() / 5, size.height() / 7, size.width() / 2, size.height() / 2);
            Sight sight(source, size, radius, part);
            const QImage seen = sight.draw(part, 2);
            ASSERT_EQ(seen.format(), format);
            const QRect needed = sight.painter.cellsFor(sight.painter.pieces(part, 1)).boundingRect();
            EXPECT_TRUE(needed.adjusted(-127, -63, 127, 63).contains(sight.blur.cells().rect())) << "whole blocks";
            const FilterImage scaled = FilterImage(source).scaledTo(size);
            const FilterImage blurred = scaled.clamped().discBlurred(float(radius * size.width() / kSource.width()));
            const QImage graph =
                Renderer(2).draw(FilterImage::blendWithMask(blurred, scaled, FilterImage(sight.mask))).copy(part);
            // Two discs of nearly the same size meet the pixels otherwise; an opaque edge is the hardest.
            EXPECT_LE(difference(seen, graph), size == kSource ? 1 : 2) << size.width() << " " << format;
            // Piece by piece, and with other things drawn before, it is the same to the bit.
            Sight again(source, size, radius, part);
            for (int y = part.bottom(); y >= part.top(); y -= 37) {
                for (int x = part.left(); x <= part.right(); x += 101) {
                    const QRect rect = QRect(x, y - 36, 101, 37) & part;
                    ASSERT_EQ(again.draw(rect, 1), seen.copy(rect.translated(-part.topLeft())));
                }
            }
            // What a piece of the mask reaches is all that looks otherwise without it.
            const QRect corner(60, 30, 40, 20);
            for (int y = corner.top(); y <= corner.bottom(); ++y)
                std::memset(again.mask.scanLine(y) + corner.left(), 0, std::size_t(corner.width()));
            const QRect reach = PartPainter::maskReach(again.mask.size(), size, part);
            again.painter.setMask(again.mask.copy(reach), reach.topLeft(), again.mask.size());
            QImage other = again.draw(part, 2);
            const QRect reached = again.painter.reachedBy(corner).translated(-part.topLeft());
            EXPECT_NE(other, seen);
            for (int y = reached.top(); y <= reached.bottom(); ++y)
                std::memcpy(other.scanLine(y) + reached.left() * (other.depth() / 8),
                            seen.constScanLine(y) + reached.left() * (other.depth() / 8),
                            std::size_t(reached.width() * (other.depth() / 8)));
            EXPECT_EQ(other, seen);
        }
    }
}

} // namespace hazelmark
