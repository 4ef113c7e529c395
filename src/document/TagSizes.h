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

/// An EXIF block without a maker's note that could be made to take gigabytes. Every maker has other directories in it,
/// so they are not walked: what looks like a directory anywhere in the block counts for one. Blocks of the size that
/// cameras write come back as they are; those of several megabytes always lose their note.
QByteArray withoutHeavyNote(const QByteArray &exif);

} // namespace hazelmark
