#include "TiffLayout.h"

namespace hazelmark {

namespace {

template <typename T>
T fieldOr(TIFF *tiff, uint32_t tag, T fallback)
{
    T value = fallback;
    return TIFFGetFieldDefaulted(tiff, tag, &value) ? value : fallback;
}

struct Kind
{
    uint16_t photometric;
    ColorModel model;
    int samples; ///< of colour; 0 where they are not read as they are
};

Kind kindOf(uint16_t photometric)
{
    constexpr Kind kKinds[] = {
        {PHOTOMETRIC_MINISWHITE, ColorModel::Gray, 1}, {PHOTOMETRIC_MINISBLACK, ColorModel::Gray, 1},
        {PHOTOMETRIC_MASK, ColorModel::Gray, 1},       {PHOTOMETRIC_LOGL, ColorModel::Gray, 0},
        {PHOTOMETRIC_PALETTE, ColorModel::Rgb, 1},     {PHOTOMETRIC_RGB, ColorModel::Rgb, 3},
        {PHOTOMETRIC_YCBCR, ColorModel::Rgb, 3},       {PHOTOMETRIC_SEPARATED, ColorModel::Cmyk, 4},
        {PHOTOMETRIC_CIELAB, ColorModel::Lab, 3},      {PHOTOMETRIC_ICCLAB, ColorModel::Lab, 3},
        {PHOTOMETRIC_ITULAB, ColorModel::Lab, 0}};
    for (const Kind &kind : kKinds) {
        if (kind.photometric == photometric)
            return kind;
    }
    return {photometric, ColorModel::Rgb, 0};
}

bool isLuminanceEncoded(uint16_t photometric)
{
    return photometric == PHOTOMETRIC_LOGL || photometric == PHOTOMETRIC_LOGLUV;
}

} // namespace

TiffLayout TiffLayout::of(TIFF *tiff)
{
    TiffLayout layout;
    layout.width = fieldOr<uint32_t>(tiff, TIFFTAG_IMAGEWIDTH, 0);
    layout.height = fieldOr<uint32_t>(tiff, TIFFTAG_IMAGELENGTH, 0);
    layout.bitsPerSample = fieldOr<uint16_t>(tiff, TIFFTAG_BITSPERSAMPLE, 1);
    layout.samplesPerPixel = fieldOr<uint16_t>(tiff, TIFFTAG_SAMPLESPERPIXEL, 1);
    layout.sampleFormat = fieldOr<uint16_t>(tiff, TIFFTAG_SAMPLEFORMAT, SAMPLEFORMAT_UINT);
    layout.compression = fieldOr<uint16_t>(tiff, TIFFTAG_COMPRESSION, COMPRESSION_NONE);
    layout.isPlanar = fieldOr<uint16_t>(tiff, TIFFTAG_PLANARCONFIG, PLANARCONFIG_CONTIG) == PLANARCONFIG_SEPARATE &&
                      layout.samplesPerPixel > 1;
    layout.isTiled = TIFFIsTiled(tiff) != 0;
    layout.photometric = fieldOr<uint16_t>(tiff, TIFFTAG_PHOTOMETRIC,
                                           layout.samplesPerPixel >= 3 ? PHOTOMETRIC_RGB : PHOTOMETRIC_MINISBLACK);

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
    return kindOf(photometric).model;
}

int TiffLayout::colorSamples() const
{
    return kindOf(photometric).samples;
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
    return bitmapFormat(colorModel(), hasAlpha(), isDeep());
}

} // namespace hazelmark
