#include "FilterImage.h"

#include "filters/AffineClampNode.h"
#include "filters/BlendWithMaskNode.h"
#include "filters/ChannelNode.h"
#include "filters/DiscBlurNode.h"
#include "filters/ExposureAdjustNode.h"
#include "filters/OpacityNode.h"
#include "filters/OverColorNode.h"
#include "filters/PlaceNode.h"
#include "filters/ScaleNode.h"
#include "filters/SourceNode.h"

#include "PixelFormats.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace hazelmark {

namespace {

constexpr int kGreen = 1;

QSize wholePixels(QSizeF size)
{
    return {std::max(1, int(std::lround(size.width()))), std::max(1, int(std::lround(size.height())))};
}

} // namespace

FilterImage::FilterImage(const QImage &bitmap, QByteArray iccProfile)
    : m_extent(QPointF(0, 0), QSizeF(bitmap.size()))
    , m_sixteenBit(hazelmark::isSixteenBit(bitmap))
    , m_iccProfile(std::move(iccProfile))
{
    if (!bitmap.isNull())
        m_node = std::make_shared<SourceNode>(bitmap);
}

QRect FilterImage::pixelExtent() const
{
    return {QPoint(int(std::floor(m_extent.x())), int(std::floor(m_extent.y()))), wholePixels(m_extent.size())};
}

FilterImage FilterImage::with(FilterNodePtr node, const QRectF &extent) const
{
    FilterImage image = *this;
    image.m_node = std::move(node);
    image.m_extent = extent;
    return image;
}

FilterImage FilterImage::clamped() const
{
    if (isEmpty() || m_infinite)
        return *this;
    FilterImage image = with(std::make_shared<AffineClampNode>(m_node, pixelExtent()), m_extent);
    image.m_infinite = true;
    return image;
}

FilterImage FilterImage::discBlurred(float radius) const
{
    if (isEmpty() || !(radius > 0.0f))
        return *this;
    return with(
        std::make_shared<DiscBlurNode>(m_node, std::min(radius, std::numeric_limits<float>::max()), pixelExtent()),
        m_extent);
}

FilterImage FilterImage::exposureAdjusted(float ev) const
{
    return isEmpty() ? *this : with(std::make_shared<ExposureAdjustNode>(m_node, ev), m_extent);
}

FilterImage FilterImage::withOpacity(float factor) const
{
    if (isEmpty() || factor == 1.0f)
        return *this;
    return with(std::make_shared<OpacityNode>(m_node, factor), m_extent);
}

FilterImage FilterImage::overColor(const QColor &color) const
{
    return hasAlpha() ? with(std::make_shared<OverColorNode>(m_node, color), m_extent) : *this;
}

FilterImage FilterImage::scaledTo(QSizeF size) const
{
    return fittedTo(QRectF(m_extent.topLeft(), size));
}

FilterImage FilterImage::drawnInto(QSize canvas, const QRectF &target, const QRectF &source) const
{
    if (isEmpty() || source.isEmpty() || canvas.isEmpty())
        return {};
    const QRectF canvasRect(QPointF(0, 0), QSizeF(canvas));
    FilterImage image = *this;
    image.m_infinite = false;
    const bool inPlace = target == source && target.topLeft().isNull();
    if (!inPlace) {
        const QSize size = wholePixels(target.size());
        image = image.with(std::make_shared<ScaleNode>(m_node, pixelExtent(), source, size),
                           QRectF(QPointF(0, 0), QSizeF(size)));
        const QPoint offset = target.topLeft().toPoint();
        const QRect placed(offset, size);
        if (offset != QPoint() || !placed.contains(QRect(QPoint(), canvas)))
            image = image.with(std::make_shared<PlaceNode>(image.m_node, QRect(QPoint(), size), offset), canvasRect);
    } else if (!m_infinite && !pixelExtent().contains(QRect(QPoint(), canvas))) {
        image = image.with(std::make_shared<PlaceNode>(m_node, pixelExtent(), QPoint()), canvasRect);
    }
    image.m_extent = canvasRect;
    return image;
}

FilterImage FilterImage::croppedTo(const QRectF &rect) const
{
    FilterImage image = *this;
    image.m_extent = m_extent & rect;
    image.m_infinite = false;
    return image;
}

FilterImage FilterImage::fittedTo(const QRectF &extent) const
{
    if (isEmpty() || m_extent == extent)
        return *this;
    return with(std::make_shared<ScaleNode>(m_node, pixelExtent(), m_extent, wholePixels(extent.size())), extent);
}

FilterImage FilterImage::blendWithMask(const FilterImage &foreground, const FilterImage &background,
                                       const FilterImage &mask)
{
    if (foreground.isEmpty() || background.isEmpty() || mask.isEmpty())
        return foreground;
    const FilterImage behind = background.fittedTo(foreground.m_extent);
    const FilterImage weight = mask.fittedTo(foreground.m_extent);
    return foreground.with(
        std::make_shared<BlendWithMaskNode>(foreground.m_node, behind.m_node, ChannelNode::of(weight.m_node, kGreen)),
        foreground.m_extent);
}

FilterImage FilterImage::withProfile(QByteArray iccProfile) const
{
    FilterImage image = *this;
    image.m_iccProfile = std::move(iccProfile);
    return image;
}

} // namespace hazelmark
