#include "CarriedExif.h"

#include "ExifDirectories.h"
#include "ExifFilter.h"
#include "ExifGroups.h"
#include "ExifValues.h"
#include "PictureSearch.h"
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

/// Tags in maker's notes that hold or lead to a preview.
constexpr std::array kPreviewTags = {
    "Thumbnail",     "ThumbnailImage",    "ThumbnailOffset",    "ThumbnailLength",   "Preview",
    "PreviewImage",  "PreviewImageStart", "PreviewImageLength", "PreviewImageValid", "PreviewOffset",
    "PreviewLength", "PreviewImageInfo",  "PreviewImageSize",
};

/// The same where the library has no names for them.
constexpr std::array kMinoltaStyleGroups = {"Minolta", "SonyMinolta", "Olympus", "Olympus2"};
constexpr std::array kMinoltaStylePreviewTags = {0x0081, 0x0088, 0x0089};

template <typename List, typename Element>
bool contains(const List &list, const Element &element)
{
    return std::find(list.begin(), list.end(), element) != list.end();
}

/// Values of maker's notes that are or lead to pictures.
bool isPreview(const Exiv2::Exifdatum &datum)
{
    const std::string group = datum.groupName();
    if (group == "Image" || group == "Photo" || group == "GPSInfo" || group == "Iop")
        return false;
    if (contains(kMinoltaStyleGroups, group) && contains(kMinoltaStylePreviewTags, datum.tag()))
        return true;
    constexpr long kLeastPicture = 24;
    return contains(kPreviewTags, datum.tagName()) ||
           (datum.size() >= kLeastPicture && !isExifGroupOfPicture(group) &&
            holdsPicture(rawBytes(datum.value(), Exiv2::littleEndian), SearchIn::Numbers));
}

Exiv2::ExifData carriedTags(const PhotoMetadata &metadata)
{
    Exiv2::ExifData carried;
    for (const Exiv2::Exifdatum &datum : metadata.exif) {
        const std::string group = datum.groupName();
        if (!isExifGroupOfPicture(group) && !isMadeUpExifTag(group, datum.tag()) && !isPreview(datum) &&
            !(group == "Image" && isTiffDataTag(datum.tag())))
            carried.add(datum);
    }
    return carried;
}

QByteArray bytesOf(Exiv2::MemIo &io)
{
    return QByteArray(reinterpret_cast<const char *>(io.mmap()), qsizetype(io.size()));
}

QByteArray harmless(const QByteArray &encoded, LeftOut &leftOut)
{
    std::optional<TiffBlock> block = TiffBlock::of(encoded);
    if (!block)
        return {};
    keepHarmless(*block, leftOut);
    return block->bytes();
}

/// The tags as a block. When it does not fit into a JPEG file, the library drops what is largest, which it says in the
/// log.
QByteArray encoded(const Exiv2::ExifData &exif, Exiv2::ByteOrder byteOrder, bool forJpeg, LeftOut &leftOut)
{
    Exiv2::MemIo io;
    Exiv2::TiffParser::encode(io, nullptr, 0, byteOrder, exif, {}, {});
    const QByteArray whole = harmless(bytesOf(io), leftOut);
    if (!forJpeg || whole.size() <= kMaxJpegBlock)
        return whole;
    Exiv2::ExifData again;
    Exiv2::ExifParser::decode(again, reinterpret_cast<const Exiv2::byte *>(whole.constData()), uint32_t(whole.size()));
    Exiv2::Blob blob;
    Exiv2::ExifParser::encode(blob, byteOrder, again);
    const QByteArray fitting(reinterpret_cast<const char *>(blob.data()), qsizetype(blob.size()));
    leftOut.add(QStringLiteral("EXIF tags that do not fit into a JPEG file"), whole.size() - fitting.size());
    LeftOut known;
    return harmless(fitting, known);
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

/// The block has lost its pictures already. Where tags have to go from the middle of a maker's note, it is made anew.
bool isCarriedInPlace(const PhotoMetadata &metadata, bool forJpeg)
{
    const qsizetype size = metadata.blocks.exif.size();
    return size > 0 && (!forJpeg || size <= kMaxJpegBlock) &&
           std::none_of(metadata.exif.begin(), metadata.exif.end(), isPreview);
}

} // namespace

QByteArray carriedExif(const PhotoMetadata &metadata, QSize size, bool forJpeg, LeftOut &leftOut)
{
    if (metadata.exif.empty())
        return {};
    std::optional<TiffBlock> block = TiffBlock::of(
        isCarriedInPlace(metadata, forJpeg) ? metadata.blocks.exif
                                            : encoded(carriedTags(metadata), metadata.byteOrder, forJpeg, leftOut));
    if (!block)
        return {};
    correctSizes(*block, size);
    return block->bytes();
}

} // namespace hazelmark
