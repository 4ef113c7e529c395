#include "TiffTags.h"

#include <algorithm>
#include <iterator>

#include <tiff.h>

namespace hazelmark {

namespace {

// What the library has no names for.
constexpr uint16_t kThumbnailData = 0x501b; // of an old desktop
constexpr uint16_t kLayerMetadata = 0xc660;
constexpr uint16_t kJxrImageOffset = 0xbcc0;
constexpr uint16_t kJxrImageByteCount = 0xbcc1;
constexpr uint16_t kJxrAlphaOffset = 0xbcc2;
constexpr uint16_t kJxrAlphaByteCount = 0xbcc3;
constexpr uint16_t kGainTableMap = 0xcd2d;
constexpr uint16_t kGainTableMap2 = 0xcd40;
constexpr uint16_t kManifest = 0xcd41; // of an editing history

constexpr uint16_t kStorageTags[] = {
    TIFFTAG_SUBFILETYPE,      TIFFTAG_OSUBFILETYPE,      TIFFTAG_IMAGEWIDTH,         TIFFTAG_IMAGELENGTH,
    TIFFTAG_BITSPERSAMPLE,    TIFFTAG_COMPRESSION,       TIFFTAG_PHOTOMETRIC,        TIFFTAG_THRESHHOLDING,
    TIFFTAG_CELLWIDTH,        TIFFTAG_CELLLENGTH,        TIFFTAG_FILLORDER,          TIFFTAG_SAMPLESPERPIXEL,
    TIFFTAG_ROWSPERSTRIP,     TIFFTAG_MINSAMPLEVALUE,    TIFFTAG_MAXSAMPLEVALUE,     TIFFTAG_PLANARCONFIG,
    TIFFTAG_GRAYRESPONSEUNIT, TIFFTAG_GRAYRESPONSECURVE, TIFFTAG_GROUP3OPTIONS,      TIFFTAG_GROUP4OPTIONS,
    TIFFTAG_PAGENUMBER,       TIFFTAG_TRANSFERFUNCTION,  TIFFTAG_PREDICTOR,          TIFFTAG_COLORMAP,
    TIFFTAG_HALFTONEHINTS,    TIFFTAG_TILEWIDTH,         TIFFTAG_TILELENGTH,         TIFFTAG_INKSET,
    TIFFTAG_INKNAMES,         TIFFTAG_NUMBEROFINKS,      TIFFTAG_DOTRANGE,           TIFFTAG_EXTRASAMPLES,
    TIFFTAG_SAMPLEFORMAT,     TIFFTAG_SMINSAMPLEVALUE,   TIFFTAG_SMAXSAMPLEVALUE,    TIFFTAG_YCBCRCOEFFICIENTS,
    TIFFTAG_YCBCRSUBSAMPLING, TIFFTAG_YCBCRPOSITIONING,  TIFFTAG_REFERENCEBLACKWHITE};

constexpr uint16_t kDataTags[] = {
    TIFFTAG_STRIPOFFSETS, TIFFTAG_STRIPBYTECOUNTS, TIFFTAG_FREEOFFSETS, TIFFTAG_FREEBYTECOUNTS, TIFFTAG_TILEOFFSETS,
    TIFFTAG_TILEBYTECOUNTS, TIFFTAG_SUBIFD, TIFFTAG_JPEGTABLES,
    // JPEG data of the old kind
    TIFFTAG_JPEGPROC, TIFFTAG_JPEGIFOFFSET, TIFFTAG_JPEGIFBYTECOUNT, TIFFTAG_JPEGRESTARTINTERVAL,
    TIFFTAG_JPEGLOSSLESSPREDICTORS, TIFFTAG_JPEGPOINTTRANSFORM, TIFFTAG_JPEGQTABLES, TIFFTAG_JPEGDCTABLES,
    TIFFTAG_JPEGACTABLES,
    // metadata in another form
    TIFFTAG_XMLPACKET, TIFFTAG_RICHTIFFIPTC, TIFFTAG_PHOTOSHOP, TIFFTAG_ICCPROFILE,
    // of fax pages
    TIFFTAG_GLOBALPARAMETERSIFD, TIFFTAG_STRIPROWCOUNTS,
    // other pictures, and what may hold them
    kThumbnailData, TIFFTAG_IMAGESOURCEDATA, kLayerMetadata, kJxrImageOffset, kJxrImageByteCount, kJxrAlphaOffset,
    kJxrAlphaByteCount, TIFFTAG_DNGPRIVATEDATA, TIFFTAG_ORIGINALRAWFILEDATA, kGainTableMap, kGainTableMap2, kManifest};

template <size_t count>
bool contains(const uint16_t (&tags)[count], uint16_t tag)
{
    return std::find(std::begin(tags), std::end(tags), tag) != std::end(tags);
}

} // namespace

bool isTiffStorageTag(uint16_t tag)
{
    return contains(kStorageTags, tag);
}

bool isTiffDataTag(uint16_t tag)
{
    return contains(kDataTags, tag);
}

} // namespace hazelmark
