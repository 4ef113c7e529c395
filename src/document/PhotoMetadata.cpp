#include "PhotoMetadata.h"

#include "ExifFilter.h"
#include "Exiv2Session.h"
#include "TagSizes.h"
#include "TiffBlocks.h"

#include <QFile>
#include <QFileInfo>

#include <string>

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

bool isPlausible(const QString &path)
{
    const Outcome<std::unique_ptr<SourceFile>> source = SourceFile::open(path);
    return source && hasPlausibleTags(**source);
}

PhotoMetadata parseFile(const QString &path, const EmbeddedBlocks &blocks, QSize size)
{
    PhotoMetadata metadata;
    metadata.blocks = blocks;
    withExiv2(path, [&] {
        // In full: Exiv2 takes "-", "data:..." and the like for something else than names of files.
        const std::string name = QFile::encodeName(QFileInfo(path).absoluteFilePath()).toStdString();
        if (Exiv2::ImageFactory::getType(name) == Exiv2::ImageType::none || !isPlausible(path))
            return;
        const auto image = Exiv2::ImageFactory::open(name);
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

} // namespace

PhotoMetadata readPhotoMetadata(const QString &path, const QByteArray &format, QSize size)
{
    const bool isTiff = format == "tiff";
    if (!isTiff && !hasEmbeddedBlocks(format))
        return parseFile(path, {}, size);
    const Outcome<std::unique_ptr<SourceFile>> source = SourceFile::open(path);
    if (!source)
        return {};
    return parseBlocks(path, isTiff ? readTiffBlocksToShow(**source) : readEmbeddedBlocks(**source, format), size);
}

PhotoMetadata readMetadataToCarry(const QString &path, const QByteArray &format, QSize size)
{
    if (format != "tiff")
        return readPhotoMetadata(path, format, size);
    const Outcome<std::unique_ptr<SourceFile>> source = SourceFile::open(path);
    if (!source)
        return {};
    const EmbeddedBlocks blocks = readTiffBlocks(**source);
    if (!blocks.exif.isEmpty())
        return parseBlocks(path, blocks, size);
    if (isPlausible(path))
        return parseFile(path, blocks, size);
    PhotoMetadata metadata = parseBlocks(path, readTiffBlocksToShow(**source), size);
    metadata.blocks.exif.clear(); // it says how the file stores its pixels
    return metadata;
}

} // namespace hazelmark
