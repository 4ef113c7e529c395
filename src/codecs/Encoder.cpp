#include "Encoder.h"

#include "FileSink.h"
#include "PictureEncoders.h"
#include "PixelRows.h"

#include <new>

namespace hazelmark {

namespace {

bool isEncodable(QImage::Format format)
{
    return format == QImage::Format_RGBX8888 || format == QImage::Format_RGBA8888 || format == QImage::Format_RGBX64 ||
           format == QImage::Format_RGBA64;
}

/// `pixels` itself where the encoders take its format, else the smallest of their formats that loses nothing.
QImage encodable(const QImage &pixels)
{
    if (isEncodable(pixels.format()))
        return pixels;
    const bool isDeep =
        pixels.depth() > 32 || pixels.format() == QImage::Format_Grayscale16 || pixels.pixelFormat().redSize() > 8;
    if (pixels.hasAlphaChannel())
        return pixels.convertToFormat(isDeep ? QImage::Format_RGBA64 : QImage::Format_RGBA8888);
    return pixels.convertToFormat(isDeep ? QImage::Format_RGBX64 : QImage::Format_RGBX8888);
}

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
        const QImage prepared = encodable(pixels);
        if (prepared.isNull())
            return Failure{Failure::Reason::OutOfMemory, path, {}};
        Outcome<std::unique_ptr<FileSink>> sink = FileSink::open(path);
        if (!sink)
            return sink.failure();
        const Outcome<Done> encoded = encodeTo(**sink, prepared, options);
        if (!encoded)
            return encoded;
        return (*sink)->finish();
    } catch (const std::bad_alloc &) {
        return Failure{Failure::Reason::OutOfMemory, path, {}};
    }
}

} // namespace hazelmark
