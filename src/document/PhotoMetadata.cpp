#include "PhotoMetadata.h"

#include "ExifFilter.h"
#include "Exiv2Session.h"
#include "ForeignReader.h"
#include "TagSizes.h"
#include "TiffBlocks.h"
#include "TiffTags.h"

#include <utility>

namespace hazelmark {

namespace {

const Exiv2::byte *bytesOf(const QByteArray &block)
{
    return reinterpret_cast<const Exiv2::byte *>(block.constData());
}

void eraseNote(Exiv2::ExifData &exif)
{
    const auto note = exif.findKey(Exiv2::ExifKey("Exif.Photo.MakerNote"));
    if (note != exif.end())
        exif.erase(note);
}

/// What is not carried is taken out of the block before it is parsed: a maker's note may be read at wrong places.
void parseExif(const QString &path, PhotoMetadata &metadata)
{
    QByteArray &block = metadata.blocks.exif;
    if (block.isEmpty())
        return;
    std::optional<TiffBlock> filtered = hasPlausibleTags(block) ? TiffBlock::of(block) : std::nullopt;
    if (!filtered) {
        metadata.leftOut.add(QStringLiteral("EXIF block that makes no sense"), block.size());
        block.clear();
        return;
    }
    keepHarmless(*filtered, metadata.leftOut);
    block = filtered->bytes();
    withExiv2(path, [&] {
        const QByteArray exif = withoutUnusualNote(block);
        const auto order = Exiv2::ExifParser::decode(metadata.exif, bytesOf(exif), uint32_t(exif.size()));
        if (exif != block)
            eraseNote(metadata.exif);
        if (order != Exiv2::invalidByteOrder)
            metadata.byteOrder = order;
    });
}

void parseXmp(PhotoMetadata &metadata, QSize size)
{
    // Some writers put a zero byte behind the packet.
    QByteArray packet = metadata.blocks.xmp;
    while (packet.endsWith('\0'))
        packet.chop(1);
    if (packet.isEmpty())
        return;
    metadata.xmp = readXmp(packet, metadata.blocks.extendedXmp, size);
    if (!metadata.xmp)
        metadata.leftOut.add(QStringLiteral("XMP packet that is not well-formed, or has too many parts"),
                             packet.size());
}

PhotoMetadata parseBlocks(const QString &path, const EmbeddedBlocks &blocks, QSize size)
{
    PhotoMetadata metadata;
    metadata.blocks = blocks;
    parseExif(path, metadata);
    parseXmp(metadata, size);
    return metadata;
}

/// To the tags those that say how the file stores its pixels.
void addStorage(const SourceFile &source, PhotoMetadata &metadata)
{
    const QByteArray block = readTiffStorage(source);
    withExiv2(source.path(), [&] {
        Exiv2::ExifData storage;
        const auto order = Exiv2::ExifParser::decode(storage, bytesOf(block), uint32_t(block.size()));
        for (const Exiv2::Exifdatum &datum : storage)
            metadata.exif.add(datum);
        if (metadata.blocks.exif.isEmpty() && order != Exiv2::invalidByteOrder)
            metadata.byteOrder = order;
    });
}

/// What the file has in a form that only Exiv2 reads.
EmbeddedBlocks readOtherBlocks(const SourceFile &source)
{
    constexpr qint64 kLargest = 256 * 1024 * 1024;
    return source.size() <= kLargest ? readForeignBlocks(source) : EmbeddedBlocks();
}

} // namespace

PhotoMetadata readPhotoMetadata(const SourceFile &source, const PictureInfo &info,
                                const std::optional<EmbeddedBlocks> &blocks)
{
    const QSize size = info.frames.back();
    if (blocks)
        return parseBlocks(source.path(), *blocks, size);
    if (info.format == "tiff") {
        PhotoMetadata metadata = parseBlocks(source.path(), readTiffBlocks(source), size);
        addStorage(source, metadata);
        return metadata;
    }
    if (const auto found = readEmbeddedBlocks(source, info.format))
        return parseBlocks(source.path(), *found, size);
    return info.format == "psd" ? parseBlocks(source.path(), readOtherBlocks(source), size) : PhotoMetadata();
}

void keepPhotoTags(PhotoMetadata &metadata)
{
    for (auto datum = metadata.exif.begin(); datum != metadata.exif.end();) {
        if (datum->groupName() == "Image" && isTiffStorageTag(datum->tag()))
            datum = metadata.exif.erase(datum);
        else
            ++datum;
    }
}

void readDistantNote(const SourceFile &source, QSize size, PhotoMetadata &metadata)
{
    if (!std::exchange(metadata.blocks.lacksNote, false))
        return;
    EmbeddedBlocks blocks = readOtherBlocks(source);
    if (blocks.exif.isEmpty())
        return;
    blocks.xmp = metadata.blocks.xmp;
    blocks.iptc = metadata.blocks.iptc;
    metadata = parseBlocks(source.path(), blocks, size);
}

} // namespace hazelmark
