#pragma once

#include "filters/KeptBlur.h"
#include "filters/ScaleAxis.h"

#include <QImage>
#include <QPoint>
#include <QRect>
#include <QRegion>
#include <QSize>

#include <utility>
#include <vector>

namespace hazelmark {

/// Draws parts of a picture at another size, blurred as far as a mask says: what a graph of a ScaleNode, a DiscBlurNode
/// and a BlendWithMaskNode gives to within a step or two of 255, row by row and without what is not in sight. What a
/// pixel gets does not depend on which others are drawn.
class PartPainter
{
public:
    /// `source`: as SourceNode takes it. `part`: of the picture when it measures `size`, origin top left; all that is
    /// asked for lies in it.
    PartPainter(const QImage &source, QSize size, const QRect &part);

    /// How `part` of a picture of `size` is made of one that measures `from`: columns and lines.
    static std::pair<ScaleAxis, ScaleAxis> axes(QSize from, QSize size, const QRect &part);
    /// What of a mask of the whole that measures `mask` pixels the part is blended with.
    static QRect maskReach(QSize mask, QSize size, const QRect &part);
    /// `values`: Format_Grayscale8, no less than maskReach(); `corner`: of it in the mask.
    void setMask(const QImage &values, QPoint corner, QSize mask);
    /// The pixels that these of the mask make, or more.
    QRect reachedBy(const QRect &maskRect) const;

    /// A piece of what is drawn, and a rectangle in it outside which the mask is 0.
    struct Piece
    {
        QRect rect;
        QRect painted;
    };
    std::vector<Piece> pieces(const QRect &rect, int threads) const;

    /// What the painted parts show: kept cells of this picture, of any size, ...
    void setBlur(const KeptBlur &blur);
    /// ... of which these are needed ...
    QRegion cellsFor(const std::vector<Piece> &pieces) const;
    /// ... or its own pixels, of the formats that `source` may have; `corner`: where they lie.
    void setBlurred(const QImage &pixels, QPoint corner);

    /// RGBX8888 or RGBA8888 for 8-bit pictures, RGBX64 or RGBA64 for 16-bit ones. `pieces`: those of `rect`. `room`: a
    /// picture that nobody needs any more, whose memory is taken if it is as large. Throws std::bad_alloc.
    QImage draw(const QRect &rect, const std::vector<Piece> &pieces, int threads, QImage room = {}) const;

private:
    QRect paintedIn(const QRect &rect) const;
    void drawPiece(const Piece &piece, uchar *bits, qsizetype stride, QImage::Format format) const;
    bool isCopied(QImage::Format format) const;

    QImage m_source;
    QSize m_size;
    QRect m_part;
    ScaleAxis m_across, m_along;
    QImage m_mask;
    QPoint m_maskCorner;
    ScaleAxis m_maskAcross, m_maskAlong;
    const CellPlanes *m_cells = nullptr;
    QImage m_blurred;
    QPoint m_blurredCorner;
    ScaleAxis m_blurredAcross, m_blurredAlong;
};

} // namespace hazelmark
