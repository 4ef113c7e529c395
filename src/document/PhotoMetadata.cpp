#include "PhotoMetadata.h"

#include "Exiv2Session.h"
#include "TagSizes.h"
#include "TiffBlocks.h"

#include <QFile>
#include <QFileInfo>

#include <string>

namespace hazelmark {

namespace {

/// Larger packets are carried, but not searched for the few properties of interest: a packet of some hundred kilobytes
/// takes the time of a few frames, one of a hundred megabytes gigabytes of memory.
constexpr qsizetype kMaxParsedXmp = 512 * 1024;

/// The library compares each record with all before it.
constexpr qsizetype kMaxParsedIptc = 128 * 1024;

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

PhotoMetadata parseBlocks(const QString &path, const EmbeddedBlocks &blocks)
{
    PhotoMetadata metadata;
    metadata.blocks = blocks;
    if (!hasPlausibleTags(blocks.exif))
        metadata.blocks.exif.clear();
    if (metadata.blocks.exif != blocks.exif) {
        qCWarning(lcDocument).noquote() << path + QStringLiteral(": EXIF block left out: its tags share their values");
    } else if (!blocks.exif.isEmpty()) {
        withExiv2(path, [&] {
            const QByteArray exif = withoutUnusualNote(blocks.exif);
            const auto order = Exiv2::ExifParser::decode(metadata.exif, bytesOf(exif), uint32_t(exif.size()));
            if (exif != blocks.exif)
                eraseNote(metadata.exif);
            if (order != Exiv2::invalidByteOrder)
                metadata.byteOrder = order;
        });
    }
    if (!blocks.iptc.isEmpty() && blocks.iptc.size() <= kMaxParsedIptc) {
        withExiv2(path, [&] {
            if (Exiv2::IptcParser::decode(metadata.iptc, bytesOf(blocks.iptc), uint32_t(blocks.iptc.size())) != 0)
                qCWarning(lcDocument).noquote() << path + QStringLiteral(": IPTC records left out");
        });
    }
    if (!blocks.xmp.isEmpty() && blocks.xmp.size() <= kMaxParsedXmp) {
        withExiv2(path, [&] {
            if (Exiv2::XmpParser::decode(metadata.xmp, blocks.xmp.toStdString()) != 0)
                qCWarning(lcDocument).noquote() << path + QStringLiteral(": XMP packet left out");
        });
    }
    return metadata;
}

bool isPlausible(const QString &path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) && hasPlausibleTags(file);
}

PhotoMetadata parseFile(const QString &path, const EmbeddedBlocks &blocks)
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
        metadata.iptc = image->iptcData();
        metadata.xmp = image->xmpData();
        if (image->byteOrder() != Exiv2::invalidByteOrder)
            metadata.byteOrder = image->byteOrder();
        if (metadata.blocks.xmp.isEmpty())
            metadata.blocks.xmp = QByteArray::fromStdString(image->xmpPacket());
        if (metadata.blocks.iptc.isEmpty())
            metadata.blocks.iptc = bytesOf(Exiv2::IptcParser::encode(metadata.iptc));
    });
    return metadata;
}

} // namespace

PhotoMetadata readPhotoMetadata(const QString &path, const QByteArray &format)
{
    if (format == "tiff")
        return parseBlocks(path, readTiffBlocksToShow(path));
    return hasEmbeddedBlocks(format) ? parseBlocks(path, readEmbeddedBlocks(path, format)) : parseFile(path, {});
}

PhotoMetadata readMetadataToCarry(const QString &path, const QByteArray &format)
{
    if (format != "tiff")
        return readPhotoMetadata(path, format);
    const EmbeddedBlocks blocks = readTiffBlocks(path);
    if (!blocks.exif.isEmpty())
        return parseBlocks(path, blocks);
    if (isPlausible(path))
        return parseFile(path, blocks);
    PhotoMetadata metadata = parseBlocks(path, readTiffBlocksToShow(path));
    metadata.blocks.exif.clear(); // it says how the file stores its pixels
    return metadata;
}

} // namespace hazelmark
