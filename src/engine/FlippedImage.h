#pragma once

#include "PhotoImage.h"

#include <QColor>
#include <QImage>

namespace hazelmark {

/// Operations on photo images: compositing, darkening, and the turns of the orientation tag. Stateless; any thread.
class FlippedImage
{
public:
    /// The filter's output over its whole extent, with the logical size of `receiver`. It is drawn, by whichever
    /// renderer the asker brings, when the pixels are first wanted. Null when the filter yields nothing.
    static PhotoImagePtr imageFromContext(const PhotoImagePtr &receiver, const FilterImage &withFilter);

    /// One implementation with Utils.
    static PhotoImagePtr scaleImage(const PhotoImagePtr &photo, QSizeF newSize);

    /// `receiver` where the mask's green channel is full, the background where it is 0, mixed between. The first
    /// argument after the receiver is the background and `overlapImage` the mask; the order is an old one and the
    /// labels do not describe the roles. The number is ignored. Background and mask are fitted to the receiver's
    /// logical size, which the result has too. Without a background or mask the result is the receiver's picture.
    static PhotoImagePtr blendWithAlphaMask(const PhotoImagePtr &receiver, const PhotoImagePtr &background,
                                            const PhotoImagePtr &overlapImage, float MaskImage);

    /// Darkens the whole picture evenly by -10 x `andIntensity` stops; there is no fall-off and no colour: radius and
    /// colour are ignored. Intensity not above 0 (or not a number) hands back the very receiver.
    static PhotoImagePtr vignetteWithRadius(const PhotoImagePtr &receiver, float radius, float andIntensity,
                                            const QColor &color);

    /// Lays upright pixels back the way the orientation tag says the file stores them, without loss: the turn that a
    /// viewer undoes when it honours the tag. 2 mirrors left to right, 3 turns by a half, 4 mirrors top to bottom, 5
    /// is the transpose, 7 the transverse, 6 a quarter turn counter-clockwise, 8 one clockwise. Any other value hands
    /// back the input.
    static QImage RotateWithEXIF(const QImage &image, int orientation);

    /// The opposite: stored pixels turned upright.
    static QImage uprightFromEXIF(const QImage &image, int orientation);
};

} // namespace hazelmark
