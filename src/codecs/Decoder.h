#pragma once

#include "Outcome.h"
#include "Picture.h"

#include <QByteArray>
#include <QList>
#include <QString>

namespace hazelmark {

/// Reads the headers of the picture file at `path`; no pixel is decoded. The content decides what the file is, never
/// its name. Fails with NoSuchFile, IsFolder, NotReadable, Empty, NotAPicture, Damaged or TooLarge.
Outcome<PictureInfo> readPictureInfo(const QString &path);

/// Decodes the first picture of the file at `path`. Cut-off or damaged data is a failure, not a partly grey picture.
///
/// `atLeast`: when not empty, the decoder may hand back a smaller picture than the file's, as long as it is not
/// smaller than this in either dimension (JPEG: the library's scaled decode). Empty asks for every pixel.
Outcome<Picture> decodePicture(const QString &path, QSize atLeast = {});

/// The formats that are read through Qt's plugins, by the names that Qt has for them, which are also the usual
/// extensions. Beside them JPEG, PNG, TIFF and GIF are read.
QList<QByteArray> formatsOfPlugins();

} // namespace hazelmark
