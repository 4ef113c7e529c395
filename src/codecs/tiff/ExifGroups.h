#pragma once

#include <algorithm>
#include <array>
#include <cstdint>
#include <string_view>

namespace hazelmark {

// What Exiv2 finds in a file beside the tags of the photo itself, by the names that it has for groups of tags.

/// Whether the group describes a picture other than the file's own.
inline bool isExifGroupOfPicture(std::string_view group)
{
    constexpr std::array<std::string_view, 16> kGroups = {
        "Thumbnail", "Image2",    "Image3",    "SubImage1", "SubImage2", "SubImage3",    "SubImage4",      "SubImage5",
        "SubImage6", "SubImage7", "SubImage8", "SubImage9", "SubThumb1", "NikonPreview", "SamsungPreview", "MpfInfo",
    };
    return std::find(kGroups.begin(), kGroups.end(), group) != kGroups.end();
}

/// Tags that the library makes up while it reads, and would write as real ones.
inline bool isMadeUpExifTag(std::string_view group, uint16_t tag)
{
    const bool isAutofocus = tag >= 0x2600 && tag <= 0x26ff;
    return group == "MakerNote" || (group == "Canon" && isAutofocus);
}

} // namespace hazelmark
