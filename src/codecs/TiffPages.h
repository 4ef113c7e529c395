#pragma once

#include "SourceFile.h"

#include <cstdint>
#include <vector>

namespace hazelmark {

/// A page of a TIFF file as far as its directory's own bytes tell.
struct TiffPage
{
    uint64_t offset; ///< of the directory in the file
    uint64_t entryCount;
    uint64_t width;
    uint64_t height;
    bool isReducedOrMask;
};

/// The pages of a TIFF file in the order of its chain of directories, no more than kMaxFrames. A chain that leads back
/// into itself or out of the file ends there.
///
/// Read here rather than through the library, which fetches every value of every directory on its way: pages that
/// share one large value would make a small file take hours.
std::vector<TiffPage> tiffPages(SourceFile &source);

} // namespace hazelmark
