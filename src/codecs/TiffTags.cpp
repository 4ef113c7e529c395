#include "TiffTags.h"

#include <algorithm>
#include <array>

namespace hazelmark {

namespace {

constexpr std::array<uint16_t, 39> kStorageTags = {
    0x00fe, 0x00ff, 0x0100, 0x0101, 0x0102, 0x0103, 0x0106, 0x0107, 0x0108, 0x0109, 0x010a, 0x0115, 0x0116,
    0x0118, 0x0119, 0x011c, 0x0122, 0x0123, 0x0124, 0x0125, 0x0129, 0x012d, 0x013d, 0x0140, 0x0141, 0x0142,
    0x0143, 0x014c, 0x014d, 0x014e, 0x0150, 0x0152, 0x0153, 0x0154, 0x0155, 0x0211, 0x0212, 0x0213, 0x0214,
};

constexpr std::array<uint16_t, 35> kDataTags = {
    0x0111, 0x0117,                                                 // strips
    0x0120, 0x0121,                                                 // free space
    0x0144, 0x0145,                                                 // tiles
    0x014a,                                                         // subdirectories
    0x015b,                                                         // JPEG tables
    0x0200, 0x0201, 0x0202, 0x0203, 0x0205, 0x0206, 0x0207, 0x0208, // JPEG data of the old kind
    0x0209,                                                         //
    0x02bc, 0x83bb, 0x8649, 0x8773,                                 // XMP, IPTC, image resources, colour profile
    0x0190, 0x022f,                                                 // shared data of fax pages, rows of strips
    0x501b,                                                         // a thumbnail of the old desktop kind
    0x935c, 0xc660,                                                 // the layers of editors
    0xbcc0, 0xbcc1, 0xbcc2, 0xbcc3,                                 // JPEG XR data
    0xc634, 0xc68c,                                                 // a maker's private data, the original raw file
    0xcd2d, 0xcd40, 0xcd41,                                         // gain maps, the manifest of an editing history
};

} // namespace

bool isTiffStorageTag(uint16_t tag)
{
    return std::find(kStorageTags.begin(), kStorageTags.end(), tag) != kStorageTags.end();
}

bool isTiffDataTag(uint16_t tag)
{
    return std::find(kDataTags.begin(), kDataTags.end(), tag) != kDataTags.end();
}

} // namespace hazelmark
