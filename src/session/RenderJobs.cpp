#include "RenderJobs.h"

#include "FileIdentity.h"
#include "FlippedImage.h"
#include "Utils.h"

#include <QColor>

#include <new>

namespace hazelmark {

namespace {

/// The blend ignores this number; it is handed over all the same.
constexpr float kBlendNumber = 20.0f;

Outcome<ImageLoader::Loaded> loadedPhoto(const ExportJob &job)
{
    if (job.loaded && FileIdentity::ofPath(job.photo->path()) == job.photo->identity())
        return *job.loaded;
    return ImageLoader::load(*job.photo);
}

} // namespace

PhotoImagePtr PreviewJob::run(int threads) const
{
    const Utils &utils = Utils::sharedUtils();
    const PhotoImagePtr inFocus = utils.applyfilterOnInFocusImage(resizedInputImage, {}, settings);
    const PhotoImagePtr blurred = utils.applyfilterOnBlurImage(resizedInputImage, {}, settings);
    const PhotoImagePtr result = FlippedImage::blendWithAlphaMask(blurred, inFocus, maskImage, kBlendNumber);
    if (result)
        result->bitmap(Renderer(threads));
    return result;
}

Outcome<ImageLoader::Loaded> ExportJob::run() const
{
    Outcome<ImageLoader::Loaded> loaded = loadedPhoto(*this);
    if (!loaded || (!maskImage && !(painting.scale > 1)))
        return loaded;
    try {
        const Utils &utils = Utils::sharedUtils();
        const PhotoImagePtr source = loaded->photo;
        const PhotoImagePtr painted = painting.scale > 1 ? PhotoImage::fromBitmap(painting.mask()) : maskImage;
        const PhotoImagePtr mask = utils.scaleImage(painted, source->size());
        PhotoImagePtr blurred = utils.applyfilterOnBlurImage(source, {}, settings);
        const PhotoImagePtr inFocus = utils.applyfilterOnInFocusImage(source, {}, settings);
        const float v = settings.vignetteAmount.value_or(0.0f);
        if (v > 0.0f)
            blurred = FlippedImage::vignetteWithRadius(blurred, 0.0f, v, QColor::fromRgbF(0, 0, 0, std::min(v, 1.0f)));
        loaded->photo = FlippedImage::blendWithAlphaMask(blurred, inFocus, mask, kBlendNumber);
        loaded->photo->bitmap(Renderer(defaultThreadCount(), progress));
        return loaded;
    } catch (const std::bad_alloc &) {
        return Failure{Failure::Reason::OutOfMemory, photo->path(), {}};
    }
}

} // namespace hazelmark
