#pragma once

#include "FilterNode.h"

#include <QByteArray>
#include <QColor>
#include <QImage>
#include <QRectF>
#include <QSize>

namespace hazelmark {

/// A picture that is computed only when it is drawn: an immutable value that holds an extent (filter-image pixels,
/// origin bottom-left, y upwards) and a node of a graph. Building one, or one from another, computes nothing.
///
/// Bit depth and colour profile of the picture at the start travel along, for whoever draws the end.
class FilterImage
{
public:
    /// The empty picture: extent zero.
    FilterImage() = default;
    /// `bitmap` as SourceNode takes it; a null one gives the empty picture.
    explicit FilterImage(const QImage &bitmap, QByteArray iccProfile = {});

    bool isEmpty() const { return !m_node || m_extent.isEmpty(); }
    /// Without end for a clamped picture, see isInfinite().
    QRectF extent() const { return m_extent; }
    bool isInfinite() const { return m_infinite; }
    /// The whole pixels that the extent takes up.
    QRect pixelExtent() const;
    const FilterNodePtr &node() const { return m_node; }
    bool hasAlpha() const { return m_node && m_node->channels() == 4; }
    bool isSixteenBit() const { return m_sixteenBit; }
    const QByteArray &iccProfile() const { return m_iccProfile; }

    /// Every point outside the extent takes the colour of the nearest edge pixel; the extent is remembered.
    FilterImage clamped() const;
    /// The mean over a disc of `radius` pixels; the picture must be clamped. A radius that is not above 0 changes
    /// nothing.
    FilterImage discBlurred(float radius) const;
    /// Times 2^ev in linear light.
    FilterImage exposureAdjusted(float ev) const;
    FilterImage withOpacity(float factor) const;
    /// Laid over an opaque colour.
    FilterImage overColor(const QColor &color) const;
    /// Scaled about the origin, so that it measures `size`; its own extent must begin there.
    FilterImage scaledTo(QSizeF size) const;
    /// The part of the picture in `source`, drawn into the rectangle (point, size) of a canvas of `canvas` pixels.
    FilterImage drawnInto(QSize canvas, const QRectF &target, const QRectF &source) const;
    /// The part in `rect`, where it is.
    FilterImage croppedTo(const QRectF &rect) const;
    /// Foreground where the mask's green channel is full, background where it is 0. All three are fitted to the
    /// foreground's extent.
    static FilterImage blendWithMask(const FilterImage &foreground, const FilterImage &background,
                                     const FilterImage &mask);
    /// The profile that the drawn picture gets, where a step changes what the numbers mean.
    FilterImage withProfile(QByteArray iccProfile) const;

private:
    FilterImage with(FilterNodePtr node, const QRectF &extent) const;
    FilterImage fittedTo(const QRectF &extent) const;

    QRectF m_extent;
    FilterNodePtr m_node;
    bool m_infinite = false;
    bool m_sixteenBit = false;
    QByteArray m_iccProfile;
};

} // namespace hazelmark
