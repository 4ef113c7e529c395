#pragma once

#include "LeftOut.h"
#include "TiffBlock.h"

namespace hazelmark {

/// Leaves in an EXIF block what is known to be harmless, and zeroes the rest; nothing in it moves, since a maker's note
/// may refer to places in the block in ways that only its maker knows.
///
/// Carried are the tags that belong into their directory, and of those that nobody here knows the ones of at most 4 KB;
/// never one that holds a picture by its definition or, however encoded, by its content. Directories of pictures (the
/// thumbnail's, subdirectories) go with what they refer to. A maker's note and what nothing refers to, which may belong
/// to it, are searched and lose their pictures; without a note nothing stays that nothing refers to.
void keepHarmless(TiffBlock &block, LeftOut &leftOut);

} // namespace hazelmark
