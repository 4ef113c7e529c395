#include "CarriedMetadata.h"

#include "CarriedExif.h"
#include "Decoder.h"
#include "Exiv2Session.h"
#include "PhotoMetadata.h"
#include "XmpFilter.h"

#include <algorithm>

namespace hazelmark {

namespace {

/// Data sets with a reduced picture (2:200 to 2:202), and the records that carry the object itself (7 to 9).
bool isPicture(const Exiv2::Iptcdatum &datum)
{
    constexpr uint16_t kFirstObjectRecord = 7;
    return datum.record() >= kFirstObjectRecord ||
           (datum.record() == Exiv2::IptcDataSets::application2 && datum.tag() >= 200 && datum.tag() <= 202);
}

QByteArray carriedIptc(const PhotoMetadata &metadata)
{
    if (metadata.iptc.empty())
        return {};
    if (std::none_of(metadata.iptc.begin(), metadata.iptc.end(), isPicture))
        return metadata.blocks.iptc;
    Exiv2::IptcData carried;
    for (const Exiv2::Iptcdatum &datum : metadata.iptc) {
        if (!isPicture(datum))
            carried.add(datum);
    }
    const Exiv2::DataBuf bytes = Exiv2::IptcParser::encode(carried);
    return QByteArray(reinterpret_cast<const char *>(bytes.pData_), bytes.size_);
}

QByteArray carriedXmp(const QString &path, const EmbeddedBlocks &blocks, QSize size)
{
    if (blocks.xmp.isEmpty())
        return {};
    const std::optional<QByteArray> xmp = filteredXmp(blocks.xmp, blocks.extendedXmp, size);
    if (!xmp)
        qCWarning(lcDocument).noquote() << path + QStringLiteral(": XMP packet left out: not well-formed");
    return xmp.value_or(QByteArray());
}

} // namespace

MetadataBlocks carriedMetadata(const QString &sourcePath, QSize size, WriteFormat format)
{
    const Outcome<PictureInfo> info = readPictureInfo(sourcePath);
    if (!info)
        return {};
    MetadataBlocks carried;
    carried.iccProfile = info->iccProfile;
    carried.dpi = info->dpi;
    if (format == WriteFormat::Gif || format == WriteFormat::Bmp)
        return carried;
    const PhotoMetadata metadata = readMetadataToCarry(sourcePath, info->format);
    withExiv2(sourcePath, [&] { carried.exif = carriedExif(metadata, size, format == WriteFormat::Jpeg); });
    withExiv2(sourcePath, [&] { carried.iptc = carriedIptc(metadata); });
    carried.xmp = carriedXmp(sourcePath, metadata.blocks, size);
    return carried;
}

} // namespace hazelmark
