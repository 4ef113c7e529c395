#pragma once

#include <QByteArray>
#include <QFile>

namespace hazelmark {

// Exiv2 copies the value of every tag that it meets. Where hundreds of tags share one large value, a file of some
// megabytes takes gigabytes: what it is given is looked over before.

/// Whether the tags of the EXIF block state values that the block can hold next to each other, more or less.
bool hasPlausibleTags(const QByteArray &exif);

/// The same of the TIFF file. Reads its directories alone.
bool hasPlausibleTags(QFile &tiff);

/// An EXIF block without the directory's entry for the maker's note where the block is larger than cameras write them:
/// the note's own directories, of which every maker has others, are not looked over.
QByteArray withoutUnusualNote(const QByteArray &exif);

} // namespace hazelmark
