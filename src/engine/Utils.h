#pragma once

#include "CoreFilterObject.h"
#include "PhotoImage.h"

#include <QColor>
#include <QImage>
#include <QPointF>
#include <QRectF>
#include <QSizeF>
#include <QString>

namespace hazelmark {

/// Stored pixels, straight alpha, and the colour profile that they are meant in (empty: sRGB is assumed).
struct PixelImage
{
    QImage bitmap;
    QByteArray iccProfile;
};

/// The process-wide utility object: conversions between photo images, bitmaps and filter images, and the two passes
/// of the blur chain. Stateless, callable from any thread. (Sizes that fit and points as fractions: Geometry.)
class Utils
{
public:
    static const Utils &sharedUtils();

    /// A filter image that measures exactly the photo image's logical size, so that pictures of one logical size line
    /// up whatever their pixels. The empty picture for a missing or invalid photo.
    FilterImage getCIImageFromNSImage(const PhotoImagePtr &photo) const;

    /// Lets go of the filter, and with it of the large images that go into it.
    void clearAllInPutParametersFromcurrentFilter(FilterImage &filter) const { filter = {}; }

    /// A photo image of logical size `size` (rounded to whole pixels) with the part `FromRect` of the filter image
    /// drawn at `AtPoint`, `size` large. Null if the filter image is empty. A source rectangle equal to the input's
    /// bounds crops a result that has grown past them.
    PhotoImagePtr getDrawedImage(const FilterImage &image, QSizeF size, QPointF AtPoint, const QRectF &FromRect) const;

    /// The picture scaled to `newSize` (at least one pixel each way), in high quality. Null if it is not valid.
    /// Sets the source's own logical size to `newSize`: afterwards the caller's object reports the new size.
    PhotoImagePtr scaleImage(const PhotoImagePtr &photo, QSizeF newSize) const;

    /// The photo image's pixels with the profile that says what they mean; no pixels for a missing photo.
    PixelImage getCgiImageRef(const PhotoImagePtr &photo) const;

    /// The picture drawn over nothing at opacity `factor`; the very picture if its logical size is not above 0 both
    /// ways.
    PhotoImagePtr getTransparentImageFromImage(const PhotoImagePtr &photo, float factor) const;

    /// The picture laid over an opaque colour, at the picture's logical size; null for a missing picture.
    PhotoImagePtr addBackgroundToImage(const PhotoImagePtr &photo, const QColor &Color) const;
    /// The same of pixels as a canvas has them (RGBA8888 premultiplied), in one pass: a preview waits for it. Rounded
    /// to the nearest level; null for a null canvas.
    PhotoImagePtr addBackgroundToImage(const QImage &canvas, const QColor &Color) const;

    /// The radius, in pixels, of the disc that blurs a picture of this width; not above 0 where nothing is blurred.
    float blurRadius(const CoreFilterObject &settings, double width) const;

    /// What the painted region shows: the photo blurred by a disc whose radius in points is width x b / 5 / 1000,
    /// b being `blurAmount`, so that a small preview looks as soft as the full-size export. Not above 0, b leaves the
    /// pixels as they are. Nobody fills or reads `ImageURL`. Null for an invalid photo.
    PhotoImagePtr applyfilterOnBlurImage(const PhotoImagePtr &photo, const QString &ImageURL,
                                         const CoreFilterObject &FilterParameters) const;

    /// What the unpainted region shows: the very photo that was given.
    PhotoImagePtr applyfilterOnInFocusImage(const PhotoImagePtr &photo, const QString &ImageURL,
                                            const CoreFilterObject &FilterParameters) const;

private:
    Utils() = default;
};

} // namespace hazelmark
