#include "FinishedRows.h"
#include "ForeignDecoder.h"
#include "HdrToSrgb.h"
#include "HeifBoxes.h"
#include "IsoBoxes.h"

#include <algorithm>
#include <cstring>
#include <new>

#include <libheif/heif.h>

namespace hazelmark::glass {

namespace {

struct FreeContext
{
    void operator()(heif_context *context) const { heif_context_free(context); }
};
struct ReleaseHandle
{
    void operator()(const heif_image_handle *handle) const { heif_image_handle_release(handle); }
};
struct ReleaseImage
{
    void operator()(const heif_image *image) const { heif_image_release(image); }
};
struct FreeOptions
{
    void operator()(heif_decoding_options *options) const { heif_decoding_options_free(options); }
};

Trouble troubleOf(const heif_error &error)
{
    switch (error.code) {
    case heif_error_Unsupported_filetype:
    case heif_error_Unsupported_feature:
        return Trouble::Unsupported;
    case heif_error_Memory_allocation_error:
        return Trouble::OutOfMemory;
    default:
        return error.subcode == heif_suberror_End_of_data ? Trouble::Truncated : Trouble::Damaged;
    }
}

void check(const heif_error &error)
{
    if (error.code != heif_error_Ok)
        throw NoPicture(troubleOf(error), error.message ? error.message : "");
}

std::string metadata(const heif_image_handle *handle, heif_item_id id)
{
    std::string bytes(heif_image_handle_get_metadata_size(handle, id), '\0');
    return heif_image_handle_get_metadata(handle, id, bytes.data()).code == heif_error_Ok ? bytes : std::string();
}

class HeifDecoder : public ForeignDecoder
{
public:
    explicit HeifDecoder(const Photo &photo)
        : m_photo(photo)
        , m_context(heif_context_alloc())
    {
    }

    Header readHeader() override;
    Done decode(const Canvas &canvas) override;

private:
    void takeColors();
    void takeBlocks();
    bool isDeep() const { return m_header.bitsPerChannel > 8; }
    std::unique_ptr<const heif_image, ReleaseImage> decodedImage() const;
    /// One row of the finished picture as R, G, B, A of the file's depth, from the decoded one.
    void fetchRow(const PixelPath &path, uint32_t y, uint16_t *rgba) const;

    const Photo &m_photo;
    std::unique_ptr<heif_context, FreeContext> m_context;
    std::unique_ptr<const heif_image_handle, ReleaseHandle> m_handle;
    HeifPrimary m_primary;
    Header m_header;
    ColorCodes m_colors;
    bool m_isPremultiplied = false;
    bool m_turnsItself = false; ///< the library cannot

    struct
    {
        const uint8_t *memory = nullptr;
        size_t stride = 0;
        int samples = 4;
    } m_decoded;
};

Header HeifDecoder::readHeader()
{
    m_primary = readHeifPrimary(m_photo.bytes).value_or(HeifPrimary());
    if (m_primary.isProtected)
        throw NoPicture(Trouble::Unsupported, "it is encrypted");
    constexpr int kLargestSide = 200'000;
    heif_context_set_maximum_image_size_limit(m_context.get(), kLargestSide);
    check(heif_context_read_from_memory_without_copy(m_context.get(), m_photo.data(), m_photo.bytes.size(), nullptr));
    heif_image_handle *handle = nullptr;
    check(heif_context_get_primary_image_handle(m_context.get(), &handle));
    m_handle.reset(handle);
    const int bits = heif_image_handle_get_luma_bits_per_pixel(handle);
    if (bits < 1 || bits > 16)
        throw NoPicture(Trouble::Unsupported, "samples of an unknown depth");
    const std::string_view brand(reinterpret_cast<const char *>(m_photo.data()) + 8, 4);
    m_header.format = brand == "avif" || brand == "avis" ? "avif" : "heic";
    m_header.frames = {{uint32_t(heif_image_handle_get_width(handle)), uint32_t(heif_image_handle_get_height(handle))}};
    m_header.bitsPerChannel = uint8_t(bits);
    m_header.hasAlpha = heif_image_handle_has_alpha_channel(handle);
    m_header.isTurned = true;
    m_isPremultiplied = m_header.hasAlpha && heif_image_handle_is_premultiplied_alpha(handle);
    m_turnsItself = isDeep() && m_primary.isMirrored();
    takeColors();
    m_header.isGray = m_primary.channels == 1 && !m_header.isConverted;
    m_header.layout = layoutOf(m_header.isGray, m_header.hasAlpha, isDeep() || m_header.isConverted);
    takeBlocks();
    return m_header;
}

void HeifDecoder::takeColors()
{
    m_header.iccProfile.resize(heif_image_handle_get_raw_color_profile_size(m_handle.get()));
    if (heif_image_handle_get_raw_color_profile(m_handle.get(), m_header.iccProfile.data()).code != heif_error_Ok)
        m_header.iccProfile.clear();
    heif_color_profile_nclx *codes = nullptr;
    if (heif_image_handle_get_nclx_color_profile(m_handle.get(), &codes).code != heif_error_Ok || !codes)
        return;
    m_colors = {uint8_t(codes->color_primaries), uint8_t(codes->transfer_characteristics)};
    heif_nclx_color_profile_free(codes);
    m_header.colors = m_colors;
    if (!m_header.iccProfile.empty() || !isHighDynamicRange(m_colors))
        return;
    m_header.isConverted = true;
    m_header.note = "its colours are brighter than white and were converted to sRGB";
}

void HeifDecoder::takeBlocks()
{
    constexpr int kMostBlocks = 100;
    heif_item_id ids[kMostBlocks];
    const int count = heif_image_handle_get_list_of_metadata_block_IDs(m_handle.get(), nullptr, ids, kMostBlocks);
    for (int index = 0; index < count; ++index) {
        const std::string_view type = heif_image_handle_get_metadata_type(m_handle.get(), ids[index]);
        const std::string_view content = heif_image_handle_get_metadata_content_type(m_handle.get(), ids[index]);
        if (type == "Exif" && m_header.exif.empty())
            m_header.exif = exifIn(metadata(m_handle.get(), ids[index]));
        else if (type == "mime" && content == "application/rdf+xml" && m_header.xmp.empty())
            m_header.xmp = metadata(m_handle.get(), ids[index]);
    }
}

std::unique_ptr<const heif_image, ReleaseImage> HeifDecoder::decodedImage() const
{
    const std::unique_ptr<heif_decoding_options, FreeOptions> options(heif_decoding_options_alloc());
    if (!options)
        throw std::bad_alloc();
    options->convert_hdr_to_8bit = 0;
    options->strict_decoding = 1;
    options->ignore_transformations = m_turnsItself;
    const heif_chroma deep =
        m_header.hasAlpha ? heif_chroma_interleaved_RRGGBBAA_LE : heif_chroma_interleaved_RRGGBB_LE;
    heif_image *image = nullptr;
    check(heif_decode_image(m_handle.get(), &image, heif_colorspace_RGB, isDeep() ? deep : heif_chroma_interleaved_RGBA,
                            options.get()));
    return std::unique_ptr<const heif_image, ReleaseImage>(image);
}

void HeifDecoder::fetchRow(const PixelPath &path, uint32_t y, uint16_t *rgba) const
{
    for (int64_t x = 0; x < path.width; ++x) {
        const int64_t column = path.across[0] * x + path.across[1] * y + path.across[2];
        const int64_t row = path.down[0] * x + path.down[1] * y + path.down[2];
        const auto *const from = reinterpret_cast<const uint16_t *>(m_decoded.memory + size_t(row) * m_decoded.stride) +
                                 column * m_decoded.samples;
        std::copy_n(from, m_decoded.samples, rgba + 4 * x);
    }
}

/// Samples of `most` at most to the canvas's.
void putRow(const uint16_t *rgba, uint32_t most, const Canvas &canvas, uint32_t y, bool isGray)
{
    const size_t samples = (isGray ? 1 : 4) * size_t(canvas.size.width);
    for (size_t sample = 0; sample < samples; ++sample)
        canvas.row16(y)[sample] = scaledTo16(rgba[isGray ? 4 * sample : sample], most);
}

Done HeifDecoder::decode(const Canvas &canvas)
{
    heif_context_set_max_decoding_threads(m_context.get(), int(canvas.threads));
    const auto image = decodedImage();
    int stride = 0;
    m_decoded.memory = heif_image_get_plane_readonly(image.get(), heif_channel_interleaved, &stride);
    m_decoded.stride = size_t(stride);
    m_decoded.samples = isDeep() && !m_header.hasAlpha ? 3 : 4;
    const int width = heif_image_get_width(image.get(), heif_channel_interleaved);
    const int height = heif_image_get_height(image.get(), heif_channel_interleaved);
    if (!m_decoded.memory || width <= 0 || height <= 0)
        throw NoPicture(Trouble::Damaged, "there are no pixels");
    const std::optional<PixelPath> path =
        pathThrough(m_turnsItself ? m_primary.steps : std::vector<HeifStep>(), uint32_t(width), uint32_t(height));
    if (!path || path->width != canvas.size.width || path->height != canvas.size.height)
        throw NoPicture(Trouble::Damaged, "the picture has another size than its header says");

    const int depth = heif_image_get_bits_per_pixel_range(image.get(), heif_channel_interleaved);
    const uint32_t most = (1u << std::clamp(depth, 1, 16)) - 1;
    std::vector<uint16_t> row(4 * size_t(canvas.size.width), uint16_t(most));
    for (uint32_t y = 0; y < canvas.size.height; ++y) {
        const uint8_t *const source = m_decoded.memory + y * m_decoded.stride;
        if (m_header.layout == Layout::Gray8) {
            for (size_t x = 0; x < canvas.size.width; ++x)
                canvas.row8(y)[x] = source[4 * x];
            continue;
        }
        if (!glass::isDeep(m_header.layout)) {
            std::memcpy(canvas.row8(y), source, row.size());
            continue;
        }
        if (isDeep())
            fetchRow(*path, y, row.data());
        else
            std::copy_n(source, row.size(), row.data());
        putRow(row.data(), most, canvas, y, m_header.layout == Layout::Gray16);
    }
    finishRows(canvas, m_header, m_isPremultiplied, m_colors);
    return {};
}

} // namespace

} // namespace hazelmark::glass

/// The library makes its tables ready when the first context is made: before the sandbox closes.
extern "C" hazelmark::glass::ForeignDecoder *makeForeignDecoder(const hazelmark::glass::Photo &photo)
{
    return new hazelmark::glass::HeifDecoder(photo);
}
