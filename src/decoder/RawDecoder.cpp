#include "ContainerMetadata.h"
#include "EmbeddedJpeg.h"
#include "ForeignDecoder.h"

#include <algorithm>
#include <iterator>
#include <new>

#include <libraw/libraw.h>

namespace hazelmark::glass {

namespace {

void check(int result)
{
    if (result == LIBRAW_SUCCESS)
        return;
    if (result == LIBRAW_UNSUFFICIENT_MEMORY)
        throw std::bad_alloc();
    const bool isUnknown = result == LIBRAW_FILE_UNSUPPORTED;
    const bool isCut = result == LIBRAW_IO_ERROR || result == LIBRAW_DATA_ERROR;
    throw NoPicture(isUnknown ? Trouble::Unsupported
                    : isCut   ? Trouble::Truncated
                              : Trouble::Damaged,
                    libraw_strerror(result));
}

/// The others are private, or say how the samples are to be developed.
bool isOfThePhoto(uint16_t tag)
{
    enum {
        Description = 270,
        Make = 271,
        Model = 272,
        Orientation = 274,
        ResolutionX = 282,
        ResolutionY = 283,
        ResolutionUnit = 296,
        Software = 305,
        DateTime = 306,
        Artist = 315,
        HostComputer = 316,
        Rating = 18246,
        Copyright = 33432
    };
    constexpr int kKnown[] = {Description, Make,     Model,  Orientation,  ResolutionX, ResolutionY, ResolutionUnit,
                              Software,    DateTime, Artist, HostComputer, Rating,      Copyright};
    return std::find(std::begin(kKnown), std::end(kKnown), tag) != std::end(kKnown);
}

class RawPhoto : public ForeignDecoder
{
public:
    explicit RawPhoto(const Photo &photo)
        : m_photo(photo)
        , m_raw(new LibRaw)
    {
        readyMetadata();
    }

    Header readHeader() override;
    Done decode(const Canvas &canvas) override;

private:
    bool hasKnownColors() const;
    void takePreview(Header &header);
    Done develop(const Canvas &canvas);

    const Photo &m_photo;
    std::unique_ptr<LibRaw> m_raw;
    std::optional<EmbeddedJpeg> m_preview; ///< in place of the camera's samples
    int m_orientation = 1;                 ///< of that, as the EXIF tag has it
    bool m_isDamaged = false;
};

/// A sensor behind no filter needs no matrix.
bool RawPhoto::hasKnownColors() const
{
    return m_raw->imgdata.idata.colors == 1 || !m_raw->get_internal_data_pointer()->internal_output_params.raw_color;
}

/// Whether one side at least is about as long as the developed picture's. Cameras cut some rows off, and more where the
/// person has chosen another shape; a preview that is smaller is no more than half as large.
bool isFullSize(Size preview, Size developed)
{
    const auto isNear = [](uint32_t a, uint32_t b) { return uint64_t(a) * 10 >= uint64_t(b) * 9; };
    const auto [shortSide, longSide] = std::minmax(preview.width, preview.height);
    const auto [shortest, longest] = std::minmax(developed.width, developed.height);
    return isNear(shortSide, shortest) || isNear(longSide, longest);
}

/// The JPEG file that the camera has put beside samples whose colours nobody knows. Its own tag says how it is turned;
/// without one it lies as the sensor does.
void RawPhoto::takePreview(Header &header)
{
    constexpr int kOrientations[] = {1, 2, 4, 3, 5, 8, 6, 7}; // by the library's numbers
    const libraw_thumbnail_t &preview = m_raw->imgdata.thumbnail;
    if (m_raw->unpack_thumb() == LIBRAW_SUCCESS && preview.tformat == LIBRAW_THUMBNAIL_JPEG)
        m_preview = EmbeddedJpeg::of({reinterpret_cast<const std::byte *>(preview.thumb), preview.tlength});
    if (!m_preview || !isFullSize(m_preview->size(), header.frames.front()))
        throw NoPicture(Trouble::Unsupported, "the colours of this camera are not known");
    m_orientation = m_preview->orientation();
    if (m_orientation == 0)
        m_orientation = kOrientations[m_raw->imgdata.sizes.flip & 7];
    header.frames = {uprightSize(m_preview->size(), m_orientation)};
    header.layout = Layout::Rgbx8;
    header.bitsPerChannel = 8;
    header.isPreview = true;
    header.iccProfile = m_preview->iccProfile();
}

Header RawPhoto::readHeader()
{
    m_raw->set_dataerror_handler([](void *user, const char *, auto) { *static_cast<bool *>(user) = true; },
                                 &m_isDamaged);
    libraw_output_params_t &wanted = m_raw->imgdata.params;
    wanted.use_camera_wb = 1;
    wanted.output_color = 1; // sRGB
    wanted.gamm[0] = 1 / 2.4;
    wanted.gamm[1] = 12.92;
    wanted.user_qual = 3; // AHD
    wanted.output_bps = 16;
    wanted.user_flip = -1; // as the camera was held
    check(m_raw->open_buffer(const_cast<std::byte *>(m_photo.bytes.data()), m_photo.bytes.size()));
    if (m_raw->imgdata.idata.raw_count < 1)
        throw NoPicture(Trouble::Unsupported, "it holds no picture of a camera's sensor");
    check(m_raw->adjust_sizes_info_only());
    const libraw_image_sizes_t &sizes = m_raw->imgdata.sizes;
    Header header;
    header.format = "raw";
    header.frames = {{sizes.iwidth, sizes.iheight}};
    header.layout = Layout::Rgbx16;
    header.bitsPerChannel = 16;
    header.isTurned = true;
    if (!hasKnownColors())
        takePreview(header);
    takeMetadata(m_photo, isOfThePhoto, header);
    return header;
}

Done RawPhoto::decode(const Canvas &canvas)
{
    return m_preview ? m_preview->decode(canvas, m_orientation) : develop(canvas);
}

/// What the stages that take long are of the whole, about.
int tellStage(void *canvas, enum LibRaw_progress stage, int done, int all)
{
    struct Share
    {
        LibRaw_progress stage;
        double begin, length;
    };
    for (const Share &share : {Share{LIBRAW_PROGRESS_LOAD_RAW, 0, 0.3}, Share{LIBRAW_PROGRESS_INTERPOLATE, 0.3, 0.5},
                               Share{LIBRAW_PROGRESS_CONVERT_RGB, 0.8, 0.2}}) {
        if (stage == share.stage && all > 0)
            static_cast<const Canvas *>(canvas)->tellProgress(share.begin + share.length * done / all);
    }
    return 0;
}

Done RawPhoto::develop(const Canvas &canvas)
{
    m_raw->set_progress_handler(tellStage, const_cast<Canvas *>(&canvas));
    // Opened anew: the sizes have been adjusted, which is done once.
    m_raw->recycle();
    check(m_raw->open_buffer(const_cast<std::byte *>(m_photo.bytes.data()), m_photo.bytes.size()));
    check(m_raw->unpack());
    if (m_isDamaged)
        throw NoPicture(Trouble::Truncated, {});
    check(m_raw->dcraw_process());
    if (m_isDamaged)
        throw NoPicture(Trouble::Damaged, {});
    if (!hasKnownColors())
        throw NoPicture(Trouble::Unsupported, "the colours of this camera are not known");
    int width = 0, height = 0, colors = 0, bits = 0;
    m_raw->get_mem_image_format(&width, &height, &colors, &bits);
    if (uint32_t(width) != canvas.size.width || uint32_t(height) != canvas.size.height || bits != 16 ||
        (colors != 3 && colors != 1))
        throw NoPicture(Trouble::Damaged, "the picture has another size than its header says");
    // Packed first, at the end of the canvas, and then drawn apart from the front.
    const size_t pixels = size_t(width) * size_t(height);
    const size_t packed = pixels * size_t(colors) * sizeof(uint16_t);
    std::byte *const source = canvas.memory + canvas.stride * canvas.size.height - packed;
    check(m_raw->copy_mem_image(source, width * colors * int(sizeof(uint16_t)), 0));
    const auto *from = reinterpret_cast<const uint16_t *>(source);
    auto *to = reinterpret_cast<uint16_t *>(canvas.memory);
    for (size_t pixel = 0; pixel < pixels; ++pixel, from += colors, to += 4) {
        const uint16_t color[3] = {from[0], from[colors == 3 ? 1 : 0], from[colors == 3 ? 2 : 0]};
        std::copy_n(color, 3, to);
        to[3] = 65535;
    }
    return {};
}

} // namespace

} // namespace hazelmark::glass

extern "C" hazelmark::glass::ForeignDecoder *makeForeignDecoder(const hazelmark::glass::Photo &photo)
{
    return new hazelmark::glass::RawPhoto(photo);
}
