#include "PhotoMetadata.h"

#include "ExifFilter.h"
#include "Exiv2Session.h"
#include "TagSizes.h"
#include "TiffBlocks.h"

namespace hazelmark {

namespace {

const Exiv2::byte *bytesOf(const QByteArray &block)
{
    return reinterpret_cast<const Exiv2::byte *>(block.constData());
}

QByteArray bytesOf(const Exiv2::DataBuf &buffer)
{
    return QByteArray(reinterpret_cast<const char *>(buffer.pData_), buffer.size_);
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

/// As far as Exiv2 reads the file. It is given the bytes: it would take names such as "-" and "data:..." for something
/// else. A larger file that keeps its tags behind its pixels only loses a maker's note.
PhotoMetadata parseFile(const SourceFile &source, const EmbeddedBlocks &blocks, QSize size)
{
    PhotoMetadata metadata;
    metadata.blocks = blocks;
    withExiv2(source.path(), [&] {
        const QByteArray bytes = source.bytesAt(0, source.size());
        if (Exiv2::ImageFactory::getType(bytesOf(bytes), long(bytes.size())) == Exiv2::ImageType::none)
            return;
        const auto image = Exiv2::ImageFactory::open(bytesOf(bytes), long(bytes.size()));
        image->readMetadata();
        metadata.exif = image->exifData();
        if (image->byteOrder() != Exiv2::invalidByteOrder)
            metadata.byteOrder = image->byteOrder();
        if (metadata.blocks.xmp.isEmpty())
            metadata.blocks.xmp = QByteArray::fromStdString(image->xmpPacket());
        if (metadata.blocks.iptc.isEmpty())
            metadata.blocks.iptc = bytesOf(Exiv2::IptcParser::encode(image->iptcData()));
    });
    parseXmp(metadata, size);
    return metadata;
}

bool isToBeParsedWhole(const SourceFile &source)
{
    constexpr qint64 kLargest = 256 * 1024 * 1024;
    return source.size() <= kLargest && hasPlausibleTags(source);
}

} // namespace

PhotoMetadata readPhotoMetadata(const SourceFile &source, const PictureInfo &info,
                                const std::optional<EmbeddedBlocks> &blocks)
{
    const QSize size = info.frames.back();
    if (blocks)
        return parseBlocks(source.path(), *blocks, size);
    if (info.format == "tiff")
        return parseBlocks(source.path(), readTiffBlocksToShow(source), size);
    if (const auto found = readEmbeddedBlocks(source, info.format))
        return parseBlocks(source.path(), *found, size);
    return isToBeParsedWhole(source) ? parseFile(source, {}, size) : PhotoMetadata();
}

PhotoMetadata readTiffMetadataToCarry(const SourceFile &source, QSize size)
{
    const EmbeddedBlocks blocks = readTiffBlocks(source);
    if (!blocks.exif.isEmpty())
        return parseBlocks(source.path(), blocks, size);
    if (isToBeParsedWhole(source))
        return parseFile(source, blocks, size);
    PhotoMetadata metadata = parseBlocks(source.path(), readTiffBlocksToShow(source), size);
    metadata.blocks.exif.clear(); // it says how the file stores its pixels
    return metadata;
}

} // namespace hazelmark
