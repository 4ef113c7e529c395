#pragma once

#include <QByteArray>
#include <QImage>
#include <QSize>
#include <QSizeF>
#include <QString>

#include <optional>
#include <vector>

namespace hazelmark {

/// More pixels than this are refused before anything is allocated.
inline constexpr qint64 kMaxPixels = 1'000'000'000;

/// Pixels along one side; no photo has more, and a row of one pixel takes a decoder as long as one of a hundred.
inline constexpr qint64 kMaxPictureSide = 1'000'000;

/// Pictures of one file that are listed; a hostile file may hold millions.
inline constexpr size_t kMaxFrames = 10000;

inline constexpr double kMetresPerInch = 0.0254;
inline constexpr double kCentimetresPerInch = 2.54;

enum class ColorModel { Rgb, Gray, Cmyk, Lab };

/// A decoded bitmap as the file stores it: not turned by any orientation tag, not colour-converted (but see
/// `convertedToSrgb`).
///
/// `pixels` has one of the formats RGBX8888, RGBA8888, RGBX64, RGBA64 (straight alpha, colours under transparent
/// pixels kept), Grayscale8 or Grayscale16. Grey with alpha comes as RGBA with equal channels.
struct Picture
{
    QImage pixels;
    QByteArray iccProfile;                       ///< byte for byte as in the file; empty when it has none
    ColorModel fileColorModel = ColorModel::Rgb; ///< what the file stores
    /// The file's colours had no RGB form (CMYK, Lab) and were converted; `iccProfile` is then empty.
    bool convertedToSrgb = false;
    /// A part of the picture data is damaged, and the decoder has filled what it could not read (JPEG only; other files
    /// with damaged data are refused).
    bool isPartlyDamaged = false;
};

/// The one that Picture::pixels has.
inline QImage::Format bitmapFormat(ColorModel model, bool hasAlpha, bool isDeep)
{
    if (hasAlpha)
        return isDeep ? QImage::Format_RGBA64 : QImage::Format_RGBA8888;
    if (model == ColorModel::Gray)
        return isDeep ? QImage::Format_Grayscale16 : QImage::Format_Grayscale8;
    return isDeep ? QImage::Format_RGBX64 : QImage::Format_RGBX8888;
}

/// What is known of a picture file from its headers alone.
struct PictureInfo
{
    QByteArray format; ///< "jpeg", "png", "tiff", "gif", "bmp", "webp", "ico" or another lower-case name
    /// Pixel sizes of the file's pictures in file order, as stored. Pages that a TIFF marks as reduced-resolution or
    /// mask are left out. At least one for a file that decodes.
    std::vector<QSize> frames;
    ColorModel colorModel = ColorModel::Rgb; ///< of the first picture, like all below
    int bitsPerChannel = 8;
    bool hasAlpha = false;
    QByteArray iccProfile;
    std::optional<QSizeF> dpi; ///< only where the file states an absolute resolution
    /// The decoder turns the picture itself, so that it comes upright and all sizes are those of the upright one.
    bool isTurnedUpright = false;
    /// It is the JPEG file that the camera has put beside its raw samples, whose colours are not known.
    bool isEmbeddedPreview = false;
};

/// A text that a PNG file holds under one of the keywords that are registered for it.
struct PngText
{
    QByteArray keyword;
    QString text;
    QByteArray language;       ///< of the text, as a tag; empty where the file names none
    QString translatedKeyword; ///< in that language

    bool operator==(const PngText &) const = default;
};

/// "Title", "Author" and so on.
bool isRegisteredKeyword(const QByteArray &keyword);

/// Metadata as the bytes that a file embeds.
struct MetadataBlocks
{
    QByteArray exif = {}; ///< a TIFF-structured block, without the "Exif\0\0" lead-in
    QByteArray iptc = {}; ///< IIM records, without an image-resource wrapper
    QByteArray xmp = {};  ///< the packet, UTF-8
    QByteArray iccProfile = {};
    std::optional<QSizeF> dpi = {};
    std::vector<PngText> texts = {}; ///< of PNG files alone
};

} // namespace hazelmark
