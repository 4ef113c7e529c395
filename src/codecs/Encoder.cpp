#include "Encoder.h"

#include "ColorProfile.h"
#include "FileDescriptor.h"
#include "FileSink.h"
#include "PictureEncoders.h"
#include "PixelFormats.h"

#include <QFile>

#include <array>
#include <cerrno>
#include <new>

#include <fcntl.h>

namespace hazelmark {

namespace {

constexpr std::array kEncoders = {encodePng, encodeJpeg, encodeBmp, encodeTiff,
                                  encodeGif}; // in the order of WriteFormat

} // namespace

Outcome<Done> encodePicture(const QImage &pixels, const EncodeOptions &options, const QString &path)
{
    const FileDescriptor file(
        ::open(QFile::encodeName(path).constData(), O_RDWR | O_CREAT | O_TRUNC | O_CLOEXEC, 0666));
    if (!file)
        return Failure::ofWriteError(errno, path);
    return encodePicture(pixels, options, file.get(), path);
}

Outcome<Done> encodePicture(const QImage &pixels, const EncodeOptions &options, int descriptor, const QString &path)
{
    if (pixels.isNull())
        return Failure{Failure::Reason::EncodeFailed, path, QStringLiteral("there is no picture")};
    try {
        const QImage prepared = pixels.convertToFormat(fourSampleFormat(pixels)); // itself where it has that format
        if (prepared.isNull())
            return Failure{Failure::Reason::OutOfMemory, path, {}};
        EncodeOptions harmless = options;
        harmless.metadata.iccProfile = profileWithoutPictures(options.metadata.iccProfile);
        FileSink sink(descriptor, path);
        const Outcome<Done> encoded = kEncoders.at(size_t(options.format))(prepared, harmless, sink);
        return encoded ? sink.finish() : encoded;
    } catch (const std::bad_alloc &) {
        return Failure{Failure::Reason::OutOfMemory, path, {}};
    }
}

} // namespace hazelmark
