#include "CarriedMetadata.h"

#include "CarriedExif.h"
#include "Decoder.h"
#include "Exiv2Session.h"
#include "IptcRecords.h"
#include "PhotoMetadata.h"
#include "PictureSearch.h"

#include <QStringList>

#include <algorithm>

namespace hazelmark {

namespace {

std::vector<PngText> carriedTexts(std::vector<PngText> texts, LeftOut &leftOut)
{
    std::erase_if(texts, [&](const PngText &text) {
        // Bytes above 127 are written as one byte or as two, so a picture shows in one form only.
        const QString all = text.text + u' ' + text.translatedKeyword + u' ' + QString::fromLatin1(text.language);
        const bool isPicture = holdsPicture(all.toLatin1()) || holdsPicture(all.toUtf8());
        if (isPicture)
            leftOut.add(QStringLiteral("PNG text with a picture"), all.size());
        return isPicture;
    });
    return texts;
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
    PhotoMetadata metadata = readMetadataToCarry(sourcePath, info->format, size);
    LeftOut &leftOut = metadata.leftOut;
    withExiv2(sourcePath,
              [&] { carried.exif = carriedExif(metadata, size, format == WriteFormat::Jpeg, metadata.leftOut); });
    carried.iptc = carriedIptc(metadata.blocks.iptc, leftOut);
    carried.xmp = metadata.xmp ? metadata.xmp->carried : QByteArray();
    if (format == WriteFormat::Png)
        carried.texts = carriedTexts(metadata.blocks.texts, leftOut);
    if (metadata.xmp)
        leftOut.add(metadata.xmp->leftOut);
    if (const QString text = leftOut.text(); !text.isEmpty())
        qCInfo(lcDocument).noquote() << sourcePath + QStringLiteral(": not carried: ") + text;
    return carried;
}

} // namespace hazelmark
