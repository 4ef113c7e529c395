#include "RenderCommand.h"

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

/// The photo at `path`, by which it is called in what is said of it.
Outcome<PhotoPtr> openedPhoto(const QString &path)
{
    Outcome<PhotoPtr> photo = Photo::open(QFileInfo(path).absoluteFilePath());
    if (!photo)
        return Failure{photo.failure().reason, path, photo.failure().detail};
    return photo;
}

constexpr float kBlurWhenNotGiven = 60.0F;
constexpr float kVignetteWhenNotGiven = 0.0F;

/// Adds what the strokes say: the mask, and the values that no option gave. False when there is no mask; then the
/// reason has been printed.
bool addStrokes(ExportJob &job, const RenderRequest &request)
{
    const std::optional<StrokesFile> strokes = readStrokes(request.strokes);
    if (!strokes)
        return false;
    if (strokes->scale > 1) {
        if (const QString fault = StrokesFile::faultOfTips(); !fault.isEmpty()) {
            printError(fault);
            return false;
        }
        job.painting = strokes->painting();
    } else {
        const QImage painted = maskOfStrokes(*strokes);
        if (painted.isNull())
            return false;
        job.maskImage = PhotoImage::fromBitmap(painted);
    }
    job.settings.blurAmount = request.blur.value_or(strokes->blur.value_or(kBlurWhenNotGiven));
    job.settings.vignetteAmount = request.vignette.value_or(strokes->vignette.value_or(kVignetteWhenNotGiven));
    return true;
}

/// Null when there is none; then the reason has been printed.
PhotoImagePtr maskOf(const RenderRequest &request, const PhotoPtr &picture)
{
    const Outcome<ImageLoader::Loaded> mask = ImageLoader::load(*picture);
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
    const ExportFormats formats = ExportFormats::forSource(pathExtension(request.photo));
    const QString format = formats.formFor(pathExtension(request.output));
    if (format.isNull()) {
        printError(unknownFormatSentence(request.output));
        return exitcode::kFailed;
    }
    // What cannot end well is told before anything is rendered.
    const Outcome<PhotoPtr> photo = openedPhoto(request.photo);
    if (!photo)
        return failed(photo.failure());
    const Outcome<PhotoPtr> mask = request.mask.isEmpty() ? Outcome<PhotoPtr>(PhotoPtr()) : openedPhoto(request.mask);
    if (!mask)
        return failed(mask.failure());
    const SourcePaths otherSources{{request.mask}, {request.strokes}};
    const Outcome<Done> destination =
        SafeFile::checkDestination(request.output, {{request.photo}, {request.mask}, {request.strokes}});
    if (!destination)
        return failed(destination.failure());

    ExportJob job;
    job.photo = *photo;
    job.settings.blurAmount = request.blur.value_or(kBlurWhenNotGiven);
    job.settings.vignetteAmount = request.vignette.value_or(kVignetteWhenNotGiven);
    if (*mask)
        job.maskImage = maskOf(request, *mask);
    if (*mask ? !job.maskImage : !addStrokes(job, request))
        return exitcode::kFailed;
    const Outcome<ImageLoader::Loaded> rendered = job.run();
    if (!rendered)
        return failed(rendered.failure());
    printPreview(**photo, request.photo);
    sayPeculiarities(*rendered, request.photo);
    ExportWriter::Settings settings{PhotoFile(*photo), formats.formats, format};
    settings.otherSources = otherSources;
    const Outcome<Done> saved = ExportWriter(settings).save(request.output, rendered->photo);
    return saved ? exitcode::kDone : failed(saved.failure());
}

} // namespace hazelmark
