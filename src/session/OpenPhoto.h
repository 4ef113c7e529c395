#pragma once

#include "DisplayColors.h"
#include "ImageLoader.h"
#include "Outcome.h"
#include "PhotoImage.h"

#include <QImage>
#include <QSize>
#include <QString>

#include <functional>
#include <memory>

namespace hazelmark {

class PhotoFile;

/// The photo that a session works on, read to its end. Values are shared; empty before the first.
struct OpenPhoto
{
    std::shared_ptr<PhotoFile> record;
    QString type; ///< as an extension: that of the name, or what the content is where the name does not tell
    /// Upright. Logical size: the photo's own, in pixels of the file; the bitmap has as many pixels as the screen can
    /// show, or the photo's where those are fewer. The export reads the file anew.
    PhotoImagePtr inputImage;
    /// What the person sees first: the photo at about the size at which it will stand on the screen, in its colours.
    QImage firstSight;
    bool isPartlyDamaged = false;   ///< a part of the picture could not be read
    bool isEmbeddedPreview = false; ///< see PictureInfo

    QString path() const; ///< empty before the first
};

/// How large the picture of a photo is wanted, and for which screen.
struct PhotoView
{
    QSize screen;     ///< no view of it will ever be larger, in pixels
    QSize firstSight; ///< the room for the first sight of it, in pixels
    DisplayColors colors;
};

/// The two steps that make an open photo, on a file that is opened once. Tests put others in their place.
struct PhotoReading
{
    std::function<Outcome<PhotoPtr>(const QString &path)> open = &Photo::open;
    /// The upright photo, no larger than `bound` pixels.
    std::function<Outcome<ImageLoader::Loaded>(Photo &photo, QSize bound)> load = [](Photo &photo, QSize bound) {
        return ImageLoader::loadReduced(photo, bound);
    };

    /// A photo from its file to what is shown of it: whole, or the reason why not. Any thread; takes its time.
    Outcome<OpenPhoto> read(const QString &path, const PhotoView &view) const;
};

} // namespace hazelmark
