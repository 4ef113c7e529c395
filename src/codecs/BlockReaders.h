#pragma once

#include "EmbeddedBlocks.h"

namespace hazelmark {

// One function a format whose metadata is found here, each in a file of its own.

EmbeddedBlocks readJpegBlocks(const SourceFile &source);
EmbeddedBlocks readPngBlocks(const SourceFile &source);
EmbeddedBlocks readGifBlocks(const SourceFile &source);
EmbeddedBlocks readWebPBlocks(const SourceFile &source);
// Those of TIFF files are made anew, see TiffBlocks.h.

/// Chunks, blocks and the like that a search goes through. A file of some megabytes can be made of millions; hundreds
/// of megabytes of picture data are tens of thousands.
inline constexpr int kMaxSteps = 250'000;

} // namespace hazelmark
