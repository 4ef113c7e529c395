#include "ContainerMetadata.h"
#include "TiffTags.h"

namespace hazelmark::glass {

namespace {

/// The metadata of a file whose picture somebody else decodes.
class MetadataDecoder : public ForeignDecoder
{
public:
    explicit MetadataDecoder(const Photo &photo)
        : m_photo(photo)
    {
        readyMetadata();
    }

    Header readHeader() override
    {
        Header header;
        header.format = "metadata";
        takeMetadata(
            m_photo, [](uint16_t tag) { return !isTiffStorageTag(tag) && !isTiffDataTag(tag); }, header);
        return header;
    }
    Done decode(const Canvas &) override { throw NoPicture(Trouble::NotAPicture, {}); }

private:
    const Photo &m_photo;
};

} // namespace

} // namespace hazelmark::glass

extern "C" hazelmark::glass::ForeignDecoder *makeForeignDecoder(const hazelmark::glass::Photo &photo)
{
    return new hazelmark::glass::MetadataDecoder(photo);
}
