#include "EmbeddedJpeg.h"

#include "Guarded.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <vector>

#include <exiv2/exiv2.hpp>
#include <jpeglib.h>

#include <jerror.h>

namespace hazelmark::glass {

namespace {

constexpr int kExifMarker = JPEG_APP0 + 1;
constexpr int kIccMarker = JPEG_APP0 + 2;
constexpr unsigned kWholeSegment = 0xffff;

/// The library on one JPEG file, whose errors end in false.
class Jpeg
{
public:
    explicit Jpeg(std::span<const std::byte> bytes)
    {
        m_lib.err = jpeg_std_error(&m_errors.manager);
        m_errors.manager.error_exit = [](j_common_ptr lib) { std::longjmp(errorsOf(lib).jump, 1); };
        m_errors.manager.emit_message = takeMessage;
        m_isGood = run([&] {
            jpeg_create_decompress(&m_lib);
            jpeg_mem_src(&m_lib, reinterpret_cast<const unsigned char *>(bytes.data()), bytes.size());
            jpeg_save_markers(&m_lib, kExifMarker, kWholeSegment);
            jpeg_save_markers(&m_lib, kIccMarker, kWholeSegment);
            jpeg_read_header(&m_lib, TRUE);
        });
    }
    ~Jpeg() { jpeg_destroy_decompress(&m_lib); }
    Jpeg(const Jpeg &) = delete;
    Jpeg &operator=(const Jpeg &) = delete;

    bool isGood() const { return m_isGood; }
    bool isCutOff() const { return m_errors.isCutOff; }
    bool isDamaged() const { return m_errors.isDamaged; }
    const jpeg_decompress_struct &lib() const { return m_lib; }

    std::string iccProfile()
    {
        JOCTET *bytes = nullptr;
        unsigned size = 0;
        const bool isRead = run([&] {
            if (!jpeg_read_icc_profile(&m_lib, &bytes, &size))
                size = 0;
        });
        std::string profile(reinterpret_cast<const char *>(bytes), isRead ? size : 0);
        std::free(bytes);
        return profile;
    }

    /// Four bytes a pixel.
    bool readRows(uint8_t *pixels)
    {
        return run([&] {
            m_lib.out_color_space = JCS_EXT_RGBX;
            jpeg_start_decompress(&m_lib);
            while (m_lib.output_scanline < m_lib.output_height) {
                JSAMPROW row = pixels + 4 * size_t(m_lib.output_width) * m_lib.output_scanline;
                jpeg_read_scanlines(&m_lib, &row, 1);
            }
            jpeg_finish_decompress(&m_lib);
        });
    }

private:
    struct Errors
    {
        jpeg_error_mgr manager;
        std::jmp_buf jump;
        bool isCutOff = false;
        bool isDamaged = false;
    };
    static Errors &errorsOf(j_common_ptr lib) { return *reinterpret_cast<Errors *>(lib->err); }

    static void takeMessage(j_common_ptr lib, int level)
    {
        Errors &errors = errorsOf(lib);
        if (level >= 0)
            return; // a trace message
        if (errors.manager.msg_code == JWRN_JPEG_EOF)
            errors.isCutOff = true;
        else if (errors.manager.msg_code != JWRN_EXTRANEOUS_DATA)
            errors.isDamaged = true;
    }

    template <typename Step>
    bool run(const Step &step)
    {
        return runGuarded(m_errors.jump, step);
    }

    Errors m_errors;
    jpeg_decompress_struct m_lib = {};
    bool m_isGood = false;
};

int orientationIn(const jpeg_decompress_struct &lib)
{
    constexpr std::string_view kLeadIn("Exif\0\0", 6);
    for (jpeg_saved_marker_ptr marker = lib.marker_list; marker; marker = marker->next) {
        const std::string_view data(reinterpret_cast<const char *>(marker->data), marker->data_length);
        if (marker->marker != kExifMarker || !data.starts_with(kLeadIn))
            continue;
        try {
            Exiv2::ExifData exif;
            Exiv2::ExifParser::decode(exif, marker->data + kLeadIn.size(), uint32_t(data.size() - kLeadIn.size()));
            const auto found = exif.findKey(Exiv2::ExifKey("Exif.Image.Orientation"));
            const long value = found == exif.end() ? 0 : found->toLong();
            return value >= 1 && value <= 8 ? int(value) : 0;
        } catch (const std::exception &) {
            return 0; // metadata that make no sense say nothing
        }
    }
    return 0;
}

bool isQuarterTurn(int orientation)
{
    return orientation >= 5;
}

} // namespace

std::optional<EmbeddedJpeg> EmbeddedJpeg::of(std::span<const std::byte> bytes)
{
    Jpeg jpeg(bytes);
    const J_COLOR_SPACE colors = jpeg.lib().jpeg_color_space;
    if (!jpeg.isGood() || (colors != JCS_YCbCr && colors != JCS_RGB && colors != JCS_GRAYSCALE))
        return std::nullopt;
    EmbeddedJpeg embedded;
    embedded.m_bytes = bytes;
    embedded.m_size = {jpeg.lib().image_width, jpeg.lib().image_height};
    embedded.m_orientation = orientationIn(jpeg.lib());
    embedded.m_iccProfile = jpeg.iccProfile();
    return embedded;
}

Done EmbeddedJpeg::decode(const Canvas &canvas, int orientation) const
{
    const Size upright = uprightSize(m_size, orientation);
    if (canvas.size != upright)
        throw NoPicture(Trouble::Damaged, {});
    Jpeg jpeg(m_bytes);
    std::vector<uint8_t> pixels(4 * size_t(m_size.width) * m_size.height);
    const bool isRead = jpeg.isGood() && jpeg.readRows(pixels.data());
    if (!isRead || jpeg.isCutOff())
        throw NoPicture(jpeg.isCutOff() ? Trouble::Truncated : Trouble::Damaged, "the camera's own JPEG is damaged");
    const bool fromRight = orientation == 2 || orientation == 3 || orientation == 7 || orientation == 8;
    const bool fromBottom = orientation == 3 || orientation == 4 || orientation == 6 || orientation == 7;
    for (uint32_t y = 0; y < upright.height; ++y) {
        for (uint32_t x = 0; x < upright.width; ++x) {
            const uint32_t across = isQuarterTurn(orientation) ? y : x;
            const uint32_t down = isQuarterTurn(orientation) ? x : y;
            const size_t column = fromRight ? m_size.width - 1 - across : across;
            const size_t row = fromBottom ? m_size.height - 1 - down : down;
            std::memcpy(canvas.row8(y) + 4 * size_t(x), pixels.data() + 4 * (row * m_size.width + column), 4);
        }
    }
    return {jpeg.isDamaged(), {}};
}

Size uprightSize(Size stored, int orientation)
{
    return isQuarterTurn(orientation) ? Size{stored.height, stored.width} : stored;
}

} // namespace hazelmark::glass
