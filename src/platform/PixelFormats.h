#pragma once

#include <QImage>

namespace hazelmark {

/// The smallest of the formats RGBX8888, RGBA8888, RGBX64 and RGBA64 that holds all that the picture has.
inline QImage::Format fourSampleFormat(const QImage &image)
{
    const bool isDeep = image.pixelFormat().redSize() > 8; // for grey pictures, the bits of a grey sample
    if (image.hasAlphaChannel())
        return isDeep ? QImage::Format_RGBA64 : QImage::Format_RGBA8888;
    return isDeep ? QImage::Format_RGBX64 : QImage::Format_RGBX8888;
}

inline bool isGray(const QImage &image)
{
    return image.format() == QImage::Format_Grayscale8 || image.format() == QImage::Format_Grayscale16;
}

/// Of the formats above and the grey ones.
inline bool isSixteenBit(const QImage &image)
{
    return image.format() == QImage::Format_Grayscale16 || image.depth() == 64;
}

} // namespace hazelmark
