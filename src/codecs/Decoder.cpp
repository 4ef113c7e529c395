#include "Decoder.h"

#include "AvailableMemory.h"
#include "PictureFormat.h"
#include "SourceFile.h"

#include <algorithm>
#include <iterator>
#include <new>

namespace hazelmark {

namespace {

// The order matters where one format's files also look like another's: camera raw files are TIFF files too, so their
// row belongs before TIFF's. Qt's takes whatever is left.
constexpr const PictureFormat *kFormats[] = {&kJpegFormat, &kPngFormat, &kTiffFormat, &kGifFormat, &kQtFormat};

const PictureFormat *formatOf(const SourceFile &source)
{
    return *std::find_if(std::begin(kFormats), std::end(kFormats),
                         [&](const PictureFormat *format) { return format->recognises(source.head()); });
}

QString inGigabytes(qint64 bytes)
{
    return QString::number(double(bytes) / 1e9, 'f', 1) + QStringLiteral(" GB");
}

} // namespace

std::optional<Failure> checkMemory(const SourceFile &source, const DecodeCost &cost)
{
    const qint64 needed = cost.bitmap + std::max(cost.working, cost.bitmap);
    const qint64 available = availableMemory();
    if (needed <= available)
        return std::nullopt;
    return source.failure(
        Failure::Reason::OutOfMemory,
        QStringLiteral("it takes %1, and %2 are free").arg(inGigabytes(needed), inGigabytes(available)));
}

Outcome<PictureInfo> readPictureInfo(SourceFile &source)
try {
    const PictureFormat *format = formatOf(source);
    Outcome<PictureInfo> info = format->readInfo(source);
    if (info) // exports are scaled to the last one's size
        std::erase_if(info->frames, [&](QSize size) { return source.checkSize(size.width(), size.height()); });
    return info;
} catch (const std::bad_alloc &) {
    return source.failure(Failure::Reason::OutOfMemory);
}

Outcome<Picture> decodePicture(SourceFile &source, QSize atLeast)
try {
    return formatOf(source)->decode(source, atLeast);
} catch (const std::bad_alloc &) {
    return source.failure(Failure::Reason::OutOfMemory);
}

Outcome<PictureInfo> readPictureInfo(const QString &path)
{
    const Outcome<std::unique_ptr<SourceFile>> source = SourceFile::open(path);
    return source ? readPictureInfo(**source) : source.failure();
}

Outcome<Picture> decodePicture(const QString &path, QSize atLeast)
{
    const Outcome<std::unique_ptr<SourceFile>> source = SourceFile::open(path);
    return source ? decodePicture(**source, atLeast) : source.failure();
}

} // namespace hazelmark
