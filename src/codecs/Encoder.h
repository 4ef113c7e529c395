#pragma once

#include "Outcome.h"
#include "Picture.h"

#include <QString>

namespace hazelmark {

enum class WriteFormat { Png, Jpeg, Bmp, Tiff, Gif };

inline constexpr int kDefaultJpegQuality = 92;

struct EncodeOptions
{
    WriteFormat format = WriteFormat::Png;
    int jpegQuality = kDefaultJpegQuality; ///< 0..100; chroma is never subsampled
    MetadataBlocks metadata;               ///< embedded where the format has a place for it; the rest is left out
};

/// Writes `pixels` (RGBX8888, RGBA8888, RGBX64 or RGBA64, straight alpha; any other format is converted first) to the
/// file at `path`, which is created or truncated.
///
/// JPEG and BMP lay transparent pictures on white; PNG and TIFF keep alpha and 16 bits; GIF keeps one-bit alpha and a
/// palette of its own, dithered. GIF and BMP hold no profile: their pixels are converted to sRGB from
/// `options.metadata.iccProfile`. A picture inside the profile is not written (profileWithoutPictures()). A TIFF file
/// takes over the EXIF block's tags as its own, but for those that say how pixels are stored.
Outcome<Done> encodePicture(const QImage &pixels, const EncodeOptions &options, const QString &path);

/// The same into an empty file that is open for reading and writing, and stays open. Failures are about `path`.
Outcome<Done> encodePicture(const QImage &pixels, const EncodeOptions &options, int descriptor, const QString &path);

} // namespace hazelmark
