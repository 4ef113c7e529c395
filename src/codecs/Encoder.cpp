#include "Encoder.h"

#include "ColorProfile.h"
#include "FileSink.h"
#include "PictureEncoders.h"
#include "PixelFormats.h"

#include <new>

namespace hazelmark {

namespace {

Outcome<Done> encodeTo(FileSink &sink, const QImage &pixels, const EncodeOptions &options)
{
    switch (options.format) {
    case WriteFormat::Png:
        return encodePng(pixels, options, sink);
    case WriteFormat::Jpeg:
        return encodeJpeg(pixels, options, sink);
    case WriteFormat::Tiff:
        return encodeTiff(pixels, options, sink);
    case WriteFormat::Bmp:
        return encodeBmp(pixels, options, sink);
    case WriteFormat::Gif:
        return encodeGif(pixels, options, sink);
    }
    Q_UNREACHABLE();
}

} // namespace

Outcome<Done> encodePicture(const QImage &pixels, const EncodeOptions &options, const QString &path)
{
    if (pixels.isNull())
        return Failure{Failure::Reason::EncodeFailed, path, QStringLiteral("there is no picture")};
    try {
        const QImage prepared = pixels.convertToFormat(fourSampleFormat(pixels)); // itself where it has that format
        if (prepared.isNull())
            return Failure{Failure::Reason::OutOfMemory, path, {}};
        Outcome<std::unique_ptr<FileSink>> sink = FileSink::open(path);
        if (!sink)
            return sink.failure();
        EncodeOptions harmless = options;
        harmless.metadata.iccProfile = profileWithoutPictures(options.metadata.iccProfile);
        const Outcome<Done> encoded = encodeTo(**sink, prepared, harmless);
        if (!encoded)
            return encoded;
        return (*sink)->finish();
    } catch (const std::bad_alloc &) {
        return Failure{Failure::Reason::OutOfMemory, path, {}};
    }
}

} // namespace hazelmark
