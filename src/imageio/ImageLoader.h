#pragma once

#include "Outcome.h"
#include "Photo.h"
#include "PhotoImage.h"
#include "Picture.h"

#include <QSizeF>
#include <QString>

namespace hazelmark {

/// Photo files as upright RGB photo images. Stateless, any thread. What is given a path opens the file anew.
class ImageLoader
{
public:
    struct Loaded
    {
        PhotoImagePtr photo;
        ColorModel colorModel = ColorModel::Rgb; ///< of the file
        bool convertedToSrgb = false;            ///< the file's colours had no RGB form
        bool isPartlyDamaged = false;            ///< the file does not hold the whole picture as it was
    };

    /// The photo in full size, upright, RGB, with a logical size equal to its pixel size. A failure is told on standard
    /// error too, in few words.
    static Outcome<Loaded> load(Photo &photo);
    static Outcome<Loaded> load(const QString &path);

    /// A smaller upright RGB picture of the photo, no larger than `bound` (pixels) and filling it along one side; the
    /// photo in full size where that is smaller. Takes the short cuts that a codec offers.
    static Outcome<Loaded> loadReduced(Photo &photo, QSize bound);

    /// load(), with null for any failure.
    static PhotoImagePtr getImageWithFixedOrientionFromUrl(const QString &path);

    /// Width and height of the upright picture in pixels, from the file's metadata; (0, 0) without any.
    static QSizeF getImageOriginalSizeAtFilePathUrl(const QString &path);

    /// The upright picture at the size that the width `minWidth` gives it (the height follows the proportions), or in
    /// full size where the orientation tag says that it is stored upright. Grey stays grey. Null if it cannot be read,
    /// which is then told on standard error.
    static PhotoImagePtr getImageFromFile(const QString &path, float minWidth, float minHeight);

    /// The same picture as RGB: equal levels in all three channels, and in place of a grey profile an RGB one with its
    /// tone curve.
    static PhotoImagePtr convertGraycolorModelToRgb(const PhotoImagePtr &photo);
};

} // namespace hazelmark
