#pragma once

#include "FilterImage.h"

#include <QByteArray>
#include <QImage>
#include <QSize>
#include <QSizeF>

#include <memory>
#include <mutex>

namespace hazelmark {

class PhotoImage;
using PhotoImagePtr = std::shared_ptr<PhotoImage>;

/// A picture with a logical size in points apart from the pixel size of its bitmap. Shared by reference.
///
/// The bitmap has straight alpha, so that what nobody touches stays as it was, and never changes; a photo image that
/// was made from a filter image is drawn when its pixels are first asked for, and until then further steps build on
/// its graph, so that a chain of them is computed in one go and only where it shows. Everything may be called from
/// any thread; the logical size may be set while others read.
class PhotoImage
{
public:
    /// `bitmap`: RGBX8888, RGBA8888, RGBX64, RGBA64, Grayscale8 or Grayscale16, other formats are converted to the
    /// nearest of these. The logical size is the pixel size. A null bitmap makes an image that is not valid.
    static PhotoImagePtr fromBitmap(QImage bitmap, QByteArray iccProfile = {});
    /// A picture of the logical size `size` that holds the pixels of `image`; null when `image` is empty.
    static PhotoImagePtr drawing(FilterImage image, QSizeF size);

    PhotoImage(const PhotoImage &) = delete;
    PhotoImage &operator=(const PhotoImage &) = delete;

    /// Has pixels.
    bool isValid() const;

    QSizeF size() const;
    void setSize(QSizeF size);
    QSize pixelSize() const;
    QByteArray iccProfile() const;

    /// The pixels. Draws them the first time, on all processors; throws std::bad_alloc when memory runs out.
    QImage bitmap() const;
    /// The same with a renderer of the caller's.
    QImage bitmap(const class Renderer &renderer) const;

    /// The pixels as the start of a graph, or the graph that they would be drawn from; extent in pixels.
    FilterImage pixels() const;

private:
    PhotoImage(FilterImage image, QSizeF size);

    mutable std::mutex m_sizeMutex;
    QSizeF m_size;
    mutable std::mutex m_drawMutex; ///< held while drawing: a second caller waits for the result
    mutable std::mutex m_imageMutex;
    mutable FilterImage m_image;
    mutable QImage m_bitmap;
};

} // namespace hazelmark
