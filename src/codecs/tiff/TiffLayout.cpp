#include "TiffLayout.h"

namespace hazelmark {

namespace {

template <typename T>
T fieldOr(TIFF *tiff, uint32_t tag, T fallback)
{
    T value = fallback;
    return TIFFGetFieldDefaulted(tiff, tag, &value) ? value : fallback;
}

bool isLuminanceEncoded(uint16_t photometric)
{
    return photometric == PHOTOMETRIC_LOGL || photometric == PHOTOMETRIC_LOGLUV;
}

} // namespace

TiffLayout TiffLayout::of(TIFF *tiff)
{
    TiffLayout layout;
    uint16_t oldType = 0;
    const bool hasOldType = TIFFGetField(tiff, TIFFTAG_OSUBFILETYPE, &oldType) == 1;
    layout.isReducedOrMask =
        (fieldOr<uint32_t>(tiff, TIFFTAG_SUBFILETYPE, 0) & (FILETYPE_REDUCEDIMAGE | FILETYPE_MASK)) != 0 ||
        (hasOldType && oldType == OFILETYPE_REDUCEDIMAGE);
    layout.width = fieldOr<uint32_t>(tiff, TIFFTAG_IMAGEWIDTH, 0);
    layout.height = fieldOr<uint32_t>(tiff, TIFFTAG_IMAGELENGTH, 0);
    layout.bitsPerSample = fieldOr<uint16_t>(tiff, TIFFTAG_BITSPERSAMPLE, 1);
    layout.samplesPerPixel = fieldOr<uint16_t>(tiff, TIFFTAG_SAMPLESPERPIXEL, 1);
    layout.sampleFormat = fieldOr<uint16_t>(tiff, TIFFTAG_SAMPLEFORMAT, SAMPLEFORMAT_UINT);
    layout.compression = fieldOr<uint16_t>(tiff, TIFFTAG_COMPRESSION, COMPRESSION_NONE);
    layout.isPlanar = fieldOr<uint16_t>(tiff, TIFFTAG_PLANARCONFIG, PLANARCONFIG_CONTIG) == PLANARCONFIG_SEPARATE &&
                      layout.samplesPerPixel > 1;
    layout.isTiled = TIFFIsTiled(tiff) != 0;
    const uint16_t guess = layout.samplesPerPixel >= 3 ? PHOTOMETRIC_RGB : PHOTOMETRIC_MINISBLACK;
    if (!TIFFGetField(tiff, TIFFTAG_PHOTOMETRIC, &layout.photometric))
        layout.photometric = guess;

    if (layout.needsLibraryConversion())
        return layout; // which gives every pixel full opacity

    uint16_t extraCount = 0;
    uint16_t *extraTypes = nullptr;
    if (!TIFFGetFieldDefaulted(tiff, TIFFTAG_EXTRASAMPLES, &extraCount, &extraTypes) || !extraTypes)
        return layout;
    // Only where the alpha is said to be one: samples of no stated meaning are often selections or masks.
    const int colors = layout.colorSamples();
    for (uint16_t extra = 0; extra < extraCount && colors + extra < layout.samplesPerPixel; ++extra) {
        if (extraTypes[extra] != EXTRASAMPLE_ASSOCALPHA && extraTypes[extra] != EXTRASAMPLE_UNASSALPHA)
            continue;
        if (layout.colorModel() == ColorModel::Rgb || layout.colorModel() == ColorModel::Gray) {
            layout.alpha = extraTypes[extra] == EXTRASAMPLE_ASSOCALPHA ? Alpha::Associated : Alpha::Unassociated;
            layout.alphaSample = uint16_t(colors + extra);
        }
        break;
    }
    return layout;
}

ColorModel TiffLayout::colorModel() const
{
    switch (photometric) {
    case PHOTOMETRIC_MINISWHITE:
    case PHOTOMETRIC_MINISBLACK:
    case PHOTOMETRIC_MASK:
    case PHOTOMETRIC_LOGL:
        return ColorModel::Gray;
    case PHOTOMETRIC_SEPARATED:
        return ColorModel::Cmyk;
    case PHOTOMETRIC_CIELAB:
    case PHOTOMETRIC_ICCLAB:
    case PHOTOMETRIC_ITULAB:
        return ColorModel::Lab;
    default:
        return ColorModel::Rgb;
    }
}

int TiffLayout::colorSamples() const
{
    switch (photometric) {
    case PHOTOMETRIC_MINISWHITE:
    case PHOTOMETRIC_MINISBLACK:
    case PHOTOMETRIC_MASK:
    case PHOTOMETRIC_PALETTE:
        return 1;
    case PHOTOMETRIC_RGB:
    case PHOTOMETRIC_YCBCR:
    case PHOTOMETRIC_CIELAB:
    case PHOTOMETRIC_ICCLAB:
        return 3;
    case PHOTOMETRIC_SEPARATED:
        return 4;
    default:
        return 0;
    }
}

bool TiffLayout::needsLibraryConversion() const
{
    return (photometric == PHOTOMETRIC_YCBCR && compression != COMPRESSION_JPEG) || compression == COMPRESSION_OJPEG ||
           isLuminanceEncoded(photometric);
}

bool TiffLayout::isReadable() const
{
    const int colors = colorSamples();
    if (colors == 0 || samplesPerPixel < colors)
        return false;
    if (photometric == PHOTOMETRIC_PALETTE)
        return bitsPerSample <= 8 && !hasAlpha();
    if (colorModel() == ColorModel::Lab)
        return bitsPerSample == 8 || bitsPerSample == 16;
    if (sampleFormat == SAMPLEFORMAT_IEEEFP)
        return bitsPerSample == 16 || bitsPerSample == 32 || bitsPerSample == 64;
    if (sampleFormat != SAMPLEFORMAT_UINT && sampleFormat != SAMPLEFORMAT_VOID)
        return false;
    return (bitsPerSample >= 1 && bitsPerSample <= 16) || bitsPerSample == 32;
}

QImage::Format TiffLayout::pixelFormat() const
{
    if (needsLibraryConversion())
        return QImage::Format_RGBX8888;
    if (hasAlpha())
        return isDeep() ? QImage::Format_RGBA64 : QImage::Format_RGBA8888;
    if (colorModel() == ColorModel::Gray)
        return isDeep() ? QImage::Format_Grayscale16 : QImage::Format_Grayscale8;
    return isDeep() ? QImage::Format_RGBX64 : QImage::Format_RGBX8888;
}

} // namespace hazelmark
