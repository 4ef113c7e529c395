#pragma once

#include <cstdint>

namespace hazelmark {

/// Those that hold metadata or lead to directories.
namespace tifftag {
inline constexpr uint16_t kSubDirectories = 0x014a; // other pictures
inline constexpr uint16_t kXmp = 0x02bc;
inline constexpr uint16_t kIptc = 0x83bb;
inline constexpr uint16_t kExifDirectory = 0x8769;
inline constexpr uint16_t kGpsDirectory = 0x8825;
inline constexpr uint16_t kMakerNote = 0x927c;
inline constexpr uint16_t kInteroperabilityDirectory = 0xa005;
} // namespace tifftag

/// Tags of a TIFF file's directory that the program which stores the pixels decides on: sizes, compression, layout,
/// and what the samples mean.
bool isTiffStorageTag(uint16_t tag);

/// Tags that hold or lead to picture data (pictures, previews, layers, gain maps, private data, manifests with
/// thumbnails), and those that hold metadata in a form that is carried in another way (XMP, IPTC, image resources, the
/// colour profile).
bool isTiffDataTag(uint16_t tag);

} // namespace hazelmark
