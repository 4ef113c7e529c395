#include "RawMetadata.h"

#include <algorithm>
#include <array>
#include <string_view>

#include <exiv2/exiv2.hpp>

namespace hazelmark::glass {

namespace {

/// Of the first directory's tags those that speak of the photo.
bool isOfThePhoto(const Exiv2::Exifdatum &datum)
{
    constexpr std::array<std::string_view, 13> kTags = {
        "ImageDescription", "Make",     "Model",  "Orientation", "XResolution", "YResolution", "ResolutionUnit",
        "Software",         "DateTime", "Artist", "Copyright",   "Rating",      "HostComputer"};
    const std::string group = datum.groupName();
    if (group == "Image")
        return std::find(kTags.begin(), kTags.end(), datum.tagName()) != kTags.end();
    return group == "Photo" || group == "GPSInfo" || group == "Iop";
}

std::string encoded(Exiv2::ExifData &exif, Exiv2::ByteOrder order)
{
    Exiv2::Blob blob;
    Exiv2::ExifParser::encode(blob, order == Exiv2::invalidByteOrder ? Exiv2::littleEndian : order, exif);
    return {reinterpret_cast<const char *>(blob.data()), blob.size()};
}

void take(const Exiv2::Image &image, Header &header)
{
    Exiv2::ExifData kept;
    for (const Exiv2::Exifdatum &datum : image.exifData()) {
        if (isOfThePhoto(datum))
            kept.add(datum);
    }
    if (!kept.empty())
        header.exif = encoded(kept, image.byteOrder());
    header.xmp = image.xmpPacket();
    if (!image.iptcData().empty()) {
        const Exiv2::DataBuf records = Exiv2::IptcParser::encode(image.iptcData());
        header.iptc.assign(reinterpret_cast<const char *>(records.pData_), size_t(records.size_));
    }
}

} // namespace

void readyMetadata()
{
    Exiv2::LogMsg::setLevel(Exiv2::LogMsg::mute);
    Exiv2::XmpParser::initialize();
}

void takeRawMetadata(const Photo &photo, Header &header)
{
    try {
        const auto image = Exiv2::ImageFactory::open(photo.data(), long(photo.bytes.size()));
        image->readMetadata();
        take(*image, header);
    } catch (const std::bad_alloc &) {
        throw;
    } catch (const std::exception &error) {
        header.note = std::string("metadata left out: ") + error.what();
    }
}

} // namespace hazelmark::glass
