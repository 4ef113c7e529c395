#include "ContainerMetadata.h"

#include "ExifGroups.h"

#include <exiv2/exiv2.hpp>

namespace hazelmark::glass {

namespace {

bool isKept(const Exiv2::Exifdatum &datum, IsOfThePhoto isOfThePhoto)
{
    const std::string group = datum.groupName();
    return group == "Image" ? isOfThePhoto(datum.tag())
                            : !isExifGroupOfPicture(group) && !isMadeUpExifTag(group, datum.tag());
}

std::string encoded(const Exiv2::ExifData &exif, Exiv2::ByteOrder order)
{
    Exiv2::MemIo io;
    Exiv2::TiffParser::encode(io, nullptr, 0, order == Exiv2::invalidByteOrder ? Exiv2::littleEndian : order, exif, {},
                              {});
    return {reinterpret_cast<const char *>(io.mmap()), size_t(io.size())};
}

void take(const Exiv2::Image &image, IsOfThePhoto isOfThePhoto, Header &header)
{
    Exiv2::ExifData kept;
    for (const Exiv2::Exifdatum &datum : image.exifData()) {
        if (isKept(datum, isOfThePhoto))
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

void takeMetadata(const Photo &photo, IsOfThePhoto isOfThePhoto, Header &header)
{
    try {
        const auto image = Exiv2::ImageFactory::open(photo.data(), long(photo.bytes.size()));
        image->readMetadata();
        take(*image, isOfThePhoto, header);
    } catch (const std::bad_alloc &) {
        throw;
    } catch (const std::exception &error) {
        header.note = std::string("metadata left out: ") + error.what();
    }
}

} // namespace hazelmark::glass
