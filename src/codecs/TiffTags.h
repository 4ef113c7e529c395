#pragma once

#include <cstdint>

namespace hazelmark {

/// Tags of a TIFF file's directory that the program which stores the pixels decides on: sizes, compression, layout,
/// and what the samples mean.
bool isTiffStorageTag(uint16_t tag);

/// Tags that hold or lead to picture data, and those that hold metadata in a form that is carried in another way (XMP,
/// IPTC, image resources, the colour profile).
bool isTiffDataTag(uint16_t tag);

} // namespace hazelmark
