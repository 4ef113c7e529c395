#include "PictureEncoders.h"
#include "PixelRows.h"
#include "TiffHandle.h"
#include "TiffMetadata.h"

#include <algorithm>
#include <vector>

namespace hazelmark {

namespace {

/// Pixel bytes in one strip: large enough to compress well, small enough for readers that hold a strip in memory.
constexpr qsizetype kStripSize = 512 * 1024;

/// On photos 6, the usual one, takes up to two and a half times as long for files that are 1 to 4 % smaller.
constexpr int kDeflateLevel = 5;

/// Offsets of the plain form are 32-bit. Deflate can make noise a little larger, so it is left some room.
constexpr qsizetype kMaxPlainSize = (qsizetype(4) << 30) - (qsizetype(64) << 20);

bool setTags(TIFF *tiff, const QImage &pixels, const MetadataBlocks &metadata, uint32_t rowsPerStrip)
{
    const bool hasAlpha = hasAlphaFormat(pixels);
    bool ok = TIFFSetField(tiff, TIFFTAG_IMAGEWIDTH, uint32_t(pixels.width())) &&
              TIFFSetField(tiff, TIFFTAG_IMAGELENGTH, uint32_t(pixels.height())) &&
              TIFFSetField(tiff, TIFFTAG_BITSPERSAMPLE, is16Bit(pixels) ? 16 : 8) &&
              TIFFSetField(tiff, TIFFTAG_SAMPLESPERPIXEL, hasAlpha ? 4 : 3) &&
              TIFFSetField(tiff, TIFFTAG_PHOTOMETRIC, PHOTOMETRIC_RGB) &&
              TIFFSetField(tiff, TIFFTAG_PLANARCONFIG, PLANARCONFIG_CONTIG) &&
              TIFFSetField(tiff, TIFFTAG_COMPRESSION, COMPRESSION_ADOBE_DEFLATE) &&
              TIFFSetField(tiff, TIFFTAG_PREDICTOR, PREDICTOR_HORIZONTAL) &&
              TIFFSetField(tiff, TIFFTAG_ZIPQUALITY, kDeflateLevel) &&
              TIFFSetField(tiff, TIFFTAG_ROWSPERSTRIP, rowsPerStrip);
    if (hasAlpha) {
        const uint16_t straight = EXTRASAMPLE_UNASSALPHA;
        ok = ok && TIFFSetField(tiff, TIFFTAG_EXTRASAMPLES, 1, &straight);
    }
    if (metadata.dpi && metadata.dpi->width() > 0 && metadata.dpi->height() > 0) {
        ok = ok && TIFFSetField(tiff, TIFFTAG_XRESOLUTION, metadata.dpi->width()) &&
             TIFFSetField(tiff, TIFFTAG_YRESOLUTION, metadata.dpi->height()) &&
             TIFFSetField(tiff, TIFFTAG_RESOLUTIONUNIT, RESUNIT_INCH);
    }
    if (!metadata.iccProfile.isEmpty()) {
        ok = ok && TIFFSetField(tiff, TIFFTAG_ICCPROFILE, uint32_t(metadata.iccProfile.size()),
                                metadata.iccProfile.constData());
    }
    return ok;
}

} // namespace

Outcome<Done> encodeTiff(const QImage &pixels, const EncodeOptions &options, FileSink &sink)
{
    const qsizetype rowSize = packedRowSize(pixels);
    const int rowsPerStrip = int(std::clamp<qsizetype>(kStripSize / rowSize, 1, pixels.height()));
    const bool isBig = rowSize * pixels.height() > kMaxPlainSize;
    const TiffMetadata metadata(options.metadata, isBig);
    TiffHandle tiff(sink, isBig, metadata.byteOrder());
    if (!tiff.get() || !metadata.lay(sink) || !setTags(tiff.get(), pixels, options.metadata, uint32_t(rowsPerStrip)) ||
        !metadata.setTags(tiff.get()))
        return sink.failure(tiff.message());
    std::vector<uint8_t> strip(size_t(rowSize * rowsPerStrip));
    for (int y = 0; y < pixels.height(); y += rowsPerStrip) {
        const int rows = std::min(rowsPerStrip, pixels.height() - y);
        for (int row = 0; row < rows; ++row)
            readPackedRow(pixels, y + row, strip.data() + row * rowSize);
        const uint32_t number = TIFFComputeStrip(tiff.get(), uint32_t(y), 0);
        if (TIFFWriteEncodedStrip(tiff.get(), number, strip.data(), rows * rowSize) < 0 || sink.hasFailed())
            return sink.failure(tiff.message());
    }
    const bool isWritten = TIFFWriteDirectory(tiff.get()) == 1;
    tiff.close(); // writes what is still buffered
    if (!isWritten || tiff.hasError() || !metadata.join(sink))
        return sink.failure(tiff.message());
    return Done{};
}

} // namespace hazelmark
