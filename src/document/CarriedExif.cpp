#include "CarriedExif.h"

#include "EmbeddedPictures.h"
#include "Exiv2Session.h"
#include "TiffTags.h"

#include <algorithm>
#include <array>
#include <string>

namespace hazelmark {

namespace {

/// A segment of a JPEG file without its length and lead-in.
constexpr qsizetype kMaxJpegBlock = 65535 - 2 - 6;

constexpr quint16 kImageWidth = 0x0100;
constexpr quint16 kImageLength = 0x0101;
constexpr quint16 kPixelXDimension = 0xa002;
constexpr quint16 kPixelYDimension = 0xa003;

/// The groups of tags that describe a picture other than the file's own.
constexpr std::array kPictureGroups = {
    "Thumbnail", "Image2",    "Image3",    "SubImage1", "SubImage2", "SubImage3",    "SubImage4",      "SubImage5",
    "SubImage6", "SubImage7", "SubImage8", "SubImage9", "SubThumb1", "NikonPreview", "SamsungPreview", "MpfInfo",
};

/// Tags in maker's notes that hold or lead to a preview.
constexpr std::array kPreviewTags = {
    "Thumbnail",     "ThumbnailImage",    "ThumbnailOffset",    "ThumbnailLength",   "Preview",
    "PreviewImage",  "PreviewImageStart", "PreviewImageLength", "PreviewImageValid", "PreviewOffset",
    "PreviewLength", "PreviewImageInfo",  "PreviewImageSize",
};

/// The same where the library has no names for them.
constexpr std::array kMinoltaStyleGroups = {"Minolta", "SonyMinolta", "Olympus", "Olympus2"};
constexpr std::array<uint16_t, 3> kMinoltaStylePreviewTags = {0x0081, 0x0088, 0x0089};

template <typename List, typename Element>
bool contains(const List &list, const Element &element)
{
    return std::find(list.begin(), list.end(), element) != list.end();
}

bool isOfPicture(const Exiv2::Exifdatum &datum)
{
    return contains(kPictureGroups, datum.groupName());
}

/// What is left out of every carried block, but for the thumbnail, which is there in most.
bool isData(const Exiv2::Exifdatum &datum)
{
    const std::string group = datum.groupName();
    if (group == "Image")
        return isTiffDataTag(datum.tag());
    const bool isOfMakerNote = group != "Photo" && group != "GPSInfo" && group != "Iop";
    if (contains(kMinoltaStyleGroups, group) && contains(kMinoltaStylePreviewTags, datum.tag()))
        return true;
    return isOfMakerNote && contains(kPreviewTags, datum.tagName());
}

/// Tags that the library makes up while it reads, and would write as real ones.
bool isMadeUp(const Exiv2::Exifdatum &datum)
{
    const std::string group = datum.groupName();
    const bool isAutofocus = datum.tag() >= 0x2600 && datum.tag() <= 0x26ff;
    return group == "MakerNote" || (group == "Canon" && isAutofocus);
}

void correctNumber(Exiv2::ExifData &exif, const char *key, int value)
{
    const auto found = exif.findKey(Exiv2::ExifKey(key));
    if (found != exif.end() && (found->count() != 1 || found->toLong() != value))
        *found = uint32_t(value);
}

/// A TIFF file's tags say how its data lies, a block's at most repeat the size.
Exiv2::ExifData carriedTags(const PhotoMetadata &metadata, QSize size)
{
    const bool isOfTiff = metadata.blocks.exif.isEmpty();
    Exiv2::ExifData carried;
    for (const Exiv2::Exifdatum &datum : metadata.exif) {
        const bool isStorage = isOfTiff && datum.groupName() == "Image" && isTiffStorageTag(datum.tag());
        if (!isOfPicture(datum) && !isData(datum) && !isMadeUp(datum) && !isStorage)
            carried.add(datum);
    }
    correctNumber(carried, "Exif.Photo.PixelXDimension", size.width());
    correctNumber(carried, "Exif.Photo.PixelYDimension", size.height());
    correctNumber(carried, "Exif.Image.ImageWidth", size.width());
    correctNumber(carried, "Exif.Image.ImageLength", size.height());
    return carried;
}

/// The tags as a block. When it does not fit into a JPEG file, the library drops what is largest, which it says in the
/// log.
QByteArray encoded(const Exiv2::ExifData &exif, Exiv2::ByteOrder byteOrder, bool forJpeg)
{
    Exiv2::MemIo io;
    Exiv2::TiffParser::encode(io, nullptr, 0, byteOrder, exif, {}, {});
    if (!forJpeg || io.size() <= size_t(kMaxJpegBlock))
        return QByteArray(reinterpret_cast<const char *>(io.mmap()), qsizetype(io.size()));
    Exiv2::Blob blob;
    Exiv2::ExifParser::encode(blob, byteOrder, exif);
    return QByteArray(reinterpret_cast<const char *>(blob.data()), qsizetype(blob.size()));
}

void correctNumber(TiffBlock &block, quint32 directoryOffset, quint16 tag, int value)
{
    const auto directory = block.directoryAt(directoryOffset);
    const TiffBlock::Entry *entry = directory ? directory->find(tag) : nullptr;
    if (entry && block.number(*entry) != quint32(value))
        block.setNumber(*entry, quint32(value));
}

void correctSizes(TiffBlock &block, QSize size)
{
    const quint32 first = block.firstDirectoryOffset();
    correctNumber(block, first, kImageWidth, size.width());
    correctNumber(block, first, kImageLength, size.height());
    const quint32 exif = exifDirectory(block);
    correctNumber(block, exif, kPixelXDimension, size.width());
    correctNumber(block, exif, kPixelYDimension, size.height());
}

bool canChangeInPlace(const PhotoMetadata &metadata, bool forJpeg)
{
    const qsizetype size = metadata.blocks.exif.size();
    return size > 0 && (!forJpeg || size <= kMaxJpegBlock) &&
           std::none_of(metadata.exif.begin(), metadata.exif.end(), isData);
}

void changeInPlace(TiffBlock &block, const PhotoMetadata &metadata, QSize size)
{
    removeThumbnail(block);
    // A maker's note may refer to any place in the block.
    const bool hasNote = metadata.exif.findKey(Exiv2::ExifKey("Exif.Photo.MakerNote")) != metadata.exif.end();
    if (!hasNote)
        wipeUnreferenced(block);
    correctSizes(block, size);
}

} // namespace

QByteArray carriedExif(const PhotoMetadata &metadata, QSize size, bool forJpeg)
{
    if (metadata.exif.empty())
        return {};
    const bool inPlace = canChangeInPlace(metadata, forJpeg);
    std::optional<TiffBlock> block = TiffBlock::of(
        inPlace ? metadata.blocks.exif : encoded(carriedTags(metadata, size), metadata.byteOrder, forJpeg));
    if (!block)
        return {};
    if (inPlace)
        changeInPlace(*block, metadata, size);
    if (!wipeEmbeddedPictures(*block)) {
        qCWarning(lcDocument) << "The EXIF block is left out: it is made to be searched for ever";
        return {};
    }
    return block->bytes();
}

} // namespace hazelmark
