#pragma once

#include <QByteArray>

namespace hazelmark {

// Exiv2 copies the value of every tag that it meets. Where hundreds of tags share one large value, a block of some
// megabytes takes gigabytes: what it is given is looked over before.

/// Whether the tags of the EXIF block state values that the block can hold next to each other, more or less.
bool hasPlausibleTags(const QByteArray &exif);

/// An EXIF block without a maker's note where the block is several times as large as cameras write it: every maker has
/// other directories in the note, so they cannot be looked over. In smaller blocks they can do no great harm.
QByteArray withoutUnusualNote(const QByteArray &exif);

} // namespace hazelmark
