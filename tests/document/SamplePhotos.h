#pragma once

#include "Encoder.h"

#include <QByteArray>
#include <QImage>
#include <QString>

#include <initializer_list>
#include <ostream>
#include <utility>

class QTemporaryDir;

namespace hazelmark {

/// Readable failures.
inline void PrintTo(const QString &text, std::ostream *out)
{
    *out << '"' << text.toStdString() << '"';
}

/// An EXIF block with the given tags ("Exif.Photo.FNumber", "28/10"), which Exiv2 types as its tables say.
QByteArray exifBlock(std::initializer_list<std::pair<const char *, const char *>> tags);

/// A data set of IIM records: 25 of record 2 is a keyword, 120 the caption.
QByteArray iptcDataSet(int dataSet, const QByteArray &value, int record = 2);

/// An XMP packet whose one description holds `properties`, in which the usual prefixes are declared.
QByteArray xmpPacket(const QByteArray &properties, const QByteArray &attributes = {});

/// Writes the picture, a plain one of 40 by 30 pixels where it is null, with the blocks embedded, and hands back its
/// path.
QString writePhoto(const QTemporaryDir &folder, WriteFormat format, const MetadataBlocks &metadata,
                   const QImage &pixels = {});

/// The bytes as a file in the folder; its path.
QString writeBytes(const QTemporaryDir &folder, const QString &name, const QByteArray &bytes);
QByteArray readBytes(const QString &path);

/// A photo's blocks that say that it is to be turned.
MetadataBlocks oriented(int orientation);

/// A photo's blocks as a camera and an editor would leave them: camera, exposure, position, caption, keywords, rating.
MetadataBlocks richMetadata();

} // namespace hazelmark
