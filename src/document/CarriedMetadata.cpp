#include "CarriedMetadata.h"

#include "CarriedExif.h"
#include "Exiv2Session.h"
#include "IptcRecords.h"
#include "PictureSearch.h"

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

MetadataBlocks carriedMetadata(const QString &path, const PictureInfo &info, const PhotoMetadata &metadata, QSize size,
                               WriteFormat format)
{
    MetadataBlocks carried;
    carried.iccProfile = info.iccProfile;
    carried.dpi = info.dpi;
    if (format == WriteFormat::Gif || format == WriteFormat::Bmp)
        return carried;
    LeftOut leftOut = metadata.leftOut;
    withExiv2(path, [&] { carried.exif = carriedExif(metadata, size, format == WriteFormat::Jpeg, leftOut); });
    carried.iptc = carriedIptc(metadata.blocks.iptc, leftOut);
    if (metadata.xmp) {
        carried.xmp = metadata.xmp->carried;
        leftOut.add(metadata.xmp->leftOut);
    }
    if (format == WriteFormat::Png)
        carried.texts = carriedTexts(metadata.blocks.texts, leftOut);
    if (const QString text = leftOut.text(); !text.isEmpty())
        qCInfo(lcDocument).noquote() << path + QStringLiteral(": not carried: ") + text;
    return carried;
}

} // namespace hazelmark
