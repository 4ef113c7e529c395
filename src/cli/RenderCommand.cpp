#include "RenderCommand.h"

#include "Decoder.h"
#include "ExportFormats.h"
#include "ExportWriter.h"
#include "MaskCommand.h"
#include "PathParts.h"
#include "RenderJobs.h"
#include "SafeFile.h"

#include <QFileInfo>

namespace hazelmark {

namespace {

int failed(const Failure &failure)
{
    printError(failure.sentence());
    return exitcode::kFailed;
}

/// What is not as the file's owner may expect it.
void sayPeculiarities(const ImageLoader::Loaded &loaded, const QString &path)
{
    if (loaded.isPartlyDamaged)
        printError(QStringLiteral("%1: a part of its picture data is damaged.").arg(path));
    if (loaded.convertedToSrgb)
        printError(QStringLiteral("%1: its colours have no RGB form and were converted to sRGB.").arg(path));
}

/// What cannot end well is told before anything is rendered.
std::optional<Failure> checkFiles(const RenderRequest &request)
{
    for (const QString &path : {request.photo, request.mask}) {
        if (path.isEmpty())
            continue;
        const Outcome<PictureInfo> header = readPictureInfo(path);
        if (!header)
            return header.failure();
    }
    const Outcome<Done> destination =
        SafeFile::checkDestination(request.output, {{request.photo}, {request.mask}, {request.strokes}});
    return destination ? std::nullopt : std::optional(destination.failure());
}

/// Null when there is none; then the reason has been printed.
PhotoImagePtr loadMask(const RenderRequest &request)
{
    if (!request.strokes.isEmpty()) {
        const QImage painted = maskOfStrokes(request.strokes);
        return painted.isNull() ? nullptr : PhotoImage::fromBitmap(painted);
    }
    const Outcome<ImageLoader::Loaded> mask = ImageLoader::load(request.mask);
    if (!mask) {
        printError(mask.failure().sentence());
        return nullptr;
    }
    sayPeculiarities(*mask, request.mask);
    return Utils::sharedUtils().addBackgroundToImage(mask->photo, Qt::black);
}

} // namespace

int runRender(const RenderRequest &request)
{
    const PhotoFile photo(QFileInfo(request.photo).absoluteFilePath());
    ExportWriter::Settings settings{photo, {}, {}};
    const ExportFormats formats = ExportFormats::forSource(photo.fileExtension());
    settings.otherSources = {{request.mask}, {request.strokes}};
    settings.arrformatsSupportedByIM = formats.formats;
    settings.fileTypeToExportImage = formats.formFor(pathExtension(request.output));
    if (settings.fileTypeToExportImage.isNull()) {
        printError(unknownFormatSentence(request.output));
        return exitcode::kFailed;
    }
    if (const std::optional<Failure> fault = checkFiles(request))
        return failed(*fault);

    ExportJob job;
    job.imageUrl = request.photo;
    job.maskImage = loadMask(request);
    if (!job.maskImage)
        return exitcode::kFailed;
    job.settings.blurAmount = request.blur;
    job.settings.vignetteAmount = request.vignette;
    const Outcome<ImageLoader::Loaded> rendered = job.run();
    if (!rendered)
        return failed(rendered.failure());
    sayPeculiarities(*rendered, request.photo);
    const Outcome<Done> saved = ExportWriter(settings).save(request.output, rendered->photo);
    return saved ? exitcode::kDone : failed(saved.failure());
}

} // namespace hazelmark
