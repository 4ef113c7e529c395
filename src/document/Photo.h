#pragma once

#include "Decoder.h"
#include "Encoder.h"
#include "FileIdentity.h"
#include "Outcome.h"
#include "Picture.h"

#include <QVariantMap>

#include <memory>
#include <mutex>
#include <vector>

namespace hazelmark {

struct PhotoMetadata;
class Photo;
using PhotoPtr = std::shared_ptr<Photo>;

/// A photo whose file is opened once: what it is, its sizes, its orientation, its metadata, its profile. All of it is
/// read when the file is opened and does not change afterwards; the pixels are decoded from the same open file.
/// PhotoFile and ExifInfo are filled from it, ImageLoader and ExportWriter take it.
///
/// What is known of it may be asked for on any thread.
class Photo
{
public:
    /// Fails as SourceFile::open() and readPictureInfo() do, and with NotAPicture for a file without any picture.
    static Outcome<PhotoPtr> open(const QString &path);
    ~Photo();

    const QString &path() const { return m_path; }
    /// The file as it was when it was opened.
    const FileIdentity &identity() const { return m_identity; }
    const PictureInfo &info() const { return m_info; }

    /// The image-property dictionary of the first picture.
    ///
    /// Top level, each where the file has it: "PixelWidth" and "PixelHeight" (always there; pixels as stored, before
    /// any turn), "Depth" (bits per channel), "ColorModel" ("RGB", "Gray", "CMYK", "Lab"), "DPIWidth", "DPIHeight",
    /// "Orientation" (1..8 as the EXIF tag has them), "ProfileName", "HasAlpha" (true). Below it the groups that
    /// PropertyDictionary.h names, with the EXIF standard's tag names: those of "{GPS}" without their leading "GPS",
    /// "Latitude" and "Longitude" in decimal degrees without a sign.
    ///
    /// Whole numbers are qlonglong, rationals double, texts QString, several values a QVariantList.
    const QVariantMap &dictionary() const { return m_dictionary; }

    /// The EXIF tag's value; 0 for a photo without it.
    int orientation() const { return m_orientation; }
    bool isTurnedByAQuarter() const { return m_orientation >= 5 && m_orientation <= 8; }
    /// Pixels of each of the file's pictures, turned as the orientation says. There is at least one.
    const std::vector<QSize> &uprightSizes() const { return m_uprightSizes; }
    QSize uprightSize() const { return m_uprightSizes.front(); }

    /// What a file written in `format` with `size` pixels (as stored) carries of the photo: its EXIF, GPS, IPTC and XMP
    /// metadata and the texts of a PNG file, as far as they are known to be harmless, makers' notes included, its
    /// colour profile, and its resolution.
    ///
    /// Not carried, because it would still show what was blurred: whatever is a picture by its definition (thumbnails,
    /// previews, layers, depth and gain maps, manifests) or is found to be one by its content, however encoded; and
    /// large values that nobody here knows. What describes how the source's own data is stored is the encoder's.
    /// Corrected is only what states another size than `size`. What was left out is said once, by kind and size, in the
    /// log. For a format without a place for metadata only the profile and the resolution come back.
    MetadataBlocks carriedMetadata(QSize size, WriteFormat format);

    /// Decodes the first picture, as decodePicture() does, and lets go of the file. When that has been done before, the
    /// file is opened again, and fails with SourceChanged if it is not as it was. One thread at a time decodes.
    Outcome<Picture> decode(QSize atLeast = {});

    /// Lets go of the file: no one holds what is on a card that is to be ejected.
    void release();

private:
    Photo(std::unique_ptr<SourceFile> source, Decoder decoder, PictureInfo info);
    std::optional<Failure> reopen();

    const QString m_path;
    const FileIdentity m_identity;
    std::mutex m_mutex;                   ///< of the file
    std::unique_ptr<SourceFile> m_source; ///< null when it was let go of
    std::optional<Decoder> m_decoder;     ///< of the file; nothing once it has decoded
    PictureInfo m_info;
    std::unique_ptr<PhotoMetadata> m_metadata;
    QVariantMap m_dictionary;
    int m_orientation = 0;
    std::vector<QSize> m_uprightSizes;
};

} // namespace hazelmark
