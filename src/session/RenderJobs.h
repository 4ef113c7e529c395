#pragma once

#include "CoreFilterObject.h"
#include "ImageLoader.h"
#include "Outcome.h"
#include "PhotoImage.h"
#include "Renderer.h"
#include "ScaledPainting.h"

#include <QString>

#include <optional>

namespace hazelmark {

/// The two renders, as functions of their inputs. Both may run on any thread, any number at once.

/// One preview: the photo scaled to the screen, blurred where the mask is green.
struct PreviewJob
{
    PhotoImagePtr resizedInputImage;
    PhotoImagePtr maskImage;
    CoreFilterObject settings;

    /// The drawn preview at the input's size; null without input. No darkening: `vignetteAmount` shows at export only.
    PhotoImagePtr run(int threads = defaultThreadCount()) const;
};

/// One export up to the finished picture; ExportWriter puts it into a file.
struct ExportJob
{
    PhotoPtr photo;          ///< not null
    PhotoImagePtr maskImage; ///< of any size; null exports the photo as it is. Its logical size becomes the photo's.
    /// What the mask is drawn from instead, where the scale is above 1; then there are steps.
    ScaledPainting painting;
    CoreFilterObject settings;
    /// The photo where it is decoded already; used only if its file is still as it was.
    std::optional<ImageLoader::Loaded> loaded;
    Renderer::Progress progress;

    /// The photo in full size, upright and RGB, blurred and darkened where the mask is green, drawn.
    Outcome<ImageLoader::Loaded> run() const;
};

} // namespace hazelmark
