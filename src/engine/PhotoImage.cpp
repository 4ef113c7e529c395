#include "PhotoImage.h"

#include "PixelFormats.h"
#include "Renderer.h"

namespace hazelmark {

namespace {

QImage inWorkingFormat(QImage bitmap)
{
    if (bitmap.isNull() || isGray(bitmap))
        return bitmap;
    const QImage::Format format = fourSampleFormat(bitmap);
    return std::move(bitmap).convertToFormat(format);
}

} // namespace

PhotoImage::PhotoImage(FilterImage image, QSizeF size)
    : m_size(size)
    , m_image(std::move(image))
{
}

PhotoImagePtr PhotoImage::fromBitmap(QImage bitmap, QByteArray iccProfile)
{
    const QImage working = inWorkingFormat(std::move(bitmap));
    PhotoImagePtr photo(new PhotoImage(FilterImage(working, std::move(iccProfile)), QSizeF(working.size())));
    photo->m_bitmap = working;
    return photo;
}

PhotoImagePtr PhotoImage::drawing(FilterImage image, QSizeF size)
{
    if (image.isEmpty())
        return nullptr;
    return PhotoImagePtr(new PhotoImage(std::move(image), size));
}

bool PhotoImage::isValid() const
{
    return !pixels().isEmpty();
}

QSizeF PhotoImage::size() const
{
    std::lock_guard lock(m_sizeMutex);
    return m_size;
}

void PhotoImage::setSize(QSizeF size)
{
    std::lock_guard lock(m_sizeMutex);
    m_size = size;
}

QSize PhotoImage::pixelSize() const
{
    const FilterImage image = pixels();
    return image.isEmpty() ? QSize() : image.pixelExtent().size();
}

QByteArray PhotoImage::iccProfile() const
{
    return pixels().iccProfile();
}

QImage PhotoImage::bitmap() const
{
    return bitmap(Renderer());
}

QImage PhotoImage::bitmap(const Renderer &renderer) const
{
    std::lock_guard drawing(m_drawMutex);
    const FilterImage image = pixels();
    {
        std::lock_guard lock(m_imageMutex);
        if (!m_bitmap.isNull())
            return m_bitmap;
    }
    const QImage drawn = renderer.draw(image);
    std::lock_guard lock(m_imageMutex);
    m_bitmap = drawn;
    m_image = FilterImage(drawn, image.iccProfile());
    return m_bitmap;
}

FilterImage PhotoImage::pixels() const
{
    std::lock_guard lock(m_imageMutex);
    return m_image;
}

} // namespace hazelmark
