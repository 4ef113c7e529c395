#include "Decoder.h"

#include "PictureFormat.h"
#include "SourceFile.h"

#include <new>
#include <vector>

namespace hazelmark {

namespace {

// The order matters where one format's files also look like another's: camera raw files are TIFF files too, so their
// row belongs before TIFF's. Qt's takes whatever is left.
constexpr const PictureFormat *kFormats[] = {&kJpegFormat, &kPngFormat, &kTiffFormat, &kGifFormat, &kQtFormat};

const PictureFormat *formatOf(const SourceFile &source)
{
    for (const PictureFormat *format : kFormats) {
        if (format->recognises(source.head()))
            return format;
    }
    return nullptr;
}

/// Opens the file, finds its format and runs `read` on both.
template <typename T, typename Read>
Outcome<T> withSource(const QString &path, const Read &read)
{
    Outcome<std::unique_ptr<SourceFile>> source = SourceFile::open(path);
    if (!source)
        return source.failure();
    const PictureFormat *format = formatOf(**source);
    if (!format)
        return (*source)->failure(Failure::Reason::NotAPicture);
    try {
        return read(*format, **source);
    } catch (const std::bad_alloc &) {
        return (*source)->failure(Failure::Reason::OutOfMemory);
    }
}

} // namespace

Outcome<PictureInfo> readPictureInfo(const QString &path)
{
    return withSource<PictureInfo>(path, [](const PictureFormat &format, SourceFile &source) -> Outcome<PictureInfo> {
        Outcome<PictureInfo> info = format.readInfo(source);
        if (info) // exports are scaled to the last one's size
            std::erase_if(info->frames, [&](QSize size) { return source.checkSize(size.width(), size.height()); });
        return info;
    });
}

Outcome<Picture> decodePicture(const QString &path, QSize atLeast)
{
    return withSource<Picture>(
        path, [atLeast](const PictureFormat &format, SourceFile &source) { return format.decode(source, atLeast); });
}

} // namespace hazelmark
