#pragma once

#include "Outcome.h"
#include "Picture.h"
#include "SourceFile.h"

#include <QByteArray>
#include <QList>
#include <QString>

namespace hazelmark {

/// Reads the headers of the picture file; no pixel is decoded. The content decides what the file is, never its name.
/// Fails with NotAPicture, Damaged or TooLarge, and the second form with what SourceFile::open() fails with.
Outcome<PictureInfo> readPictureInfo(SourceFile &source);
Outcome<PictureInfo> readPictureInfo(const QString &path);

/// Decodes the first picture of the file. Cut-off data is a failure, not a partly grey picture; so is damaged data,
/// save where Picture::isPartlyDamaged tells of it. A picture that the memory cannot hold fails before it is decoded.
///
/// `atLeast`: when not empty, the decoder may hand back a smaller picture than the file's, as long as it is not
/// smaller than this in either dimension (JPEG: the library's scaled decode). Empty asks for every pixel.
Outcome<Picture> decodePicture(SourceFile &source, QSize atLeast = {});
Outcome<Picture> decodePicture(const QString &path, QSize atLeast = {});

/// The formats that are read through Qt's plugins, by the names that Qt has for them, which are also the usual
/// extensions. Beside them JPEG, PNG, TIFF and GIF are read.
QList<QByteArray> formatsOfPlugins();

} // namespace hazelmark
