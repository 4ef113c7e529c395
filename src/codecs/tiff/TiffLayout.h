#pragma once

#include "Picture.h"

#include <tiffio.h>

namespace hazelmark {

/// How a page of a TIFF file stores its pixels, and which of its samples go where in the bitmap.
struct TiffLayout
{
    enum class Alpha { None, Associated, Unassociated };

    /// Of the current page.
    static TiffLayout of(TIFF *tiff);

    uint32_t width = 0;
    uint32_t height = 0;
    uint16_t bitsPerSample = 1;
    uint16_t samplesPerPixel = 1;
    uint16_t sampleFormat = SAMPLEFORMAT_UINT;
    uint16_t photometric = PHOTOMETRIC_MINISBLACK;
    uint16_t compression = COMPRESSION_NONE;
    bool isPlanar = false; ///< each sample's plane is stored on its own
    bool isTiled = false;
    Alpha alpha = Alpha::None;
    uint16_t alphaSample = 0;

    ColorModel colorModel() const;
    bool hasAlpha() const { return alpha != Alpha::None; }
    /// Whether the bitmap gets 16 bits a sample.
    bool isDeep() const { return bitsPerSample > 8; }
    /// Samples a pixel that hold colour, without alpha; 0 for a photometric interpretation that is not known.
    int colorSamples() const;
    /// Whether only the library's own conversion to 8-bit RGBA reads the page: subsampled chroma, old JPEG, LogLuv.
    bool needsLibraryConversion() const;
    /// Whether the sample reader can read the page.
    bool isReadable() const;
    QImage::Format pixelFormat() const;
};

} // namespace hazelmark
