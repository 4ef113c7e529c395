#include "ForeignDecoder.h"
#include "IsoBoxes.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <optional>
#include <thread>
#include <vector>

#include <openjpeg.h>

namespace hazelmark::glass {

namespace {

struct DestroyStream
{
    void operator()(opj_stream_t *stream) const { opj_stream_destroy(stream); }
};
struct DestroyCodec
{
    void operator()(opj_codec_t *codec) const { opj_destroy_codec(codec); }
};
struct DestroyImage
{
    void operator()(opj_image_t *image) const { opj_image_destroy(image); }
};

/// Where the library stands in the file.
struct Place
{
    std::span<const std::byte> bytes;
    size_t at = 0;
    const Canvas *canvas = nullptr; ///< that is being filled: tile by tile, as the file is read

    static Place &of(void *user) { return *static_cast<Place *>(user); }
    static OPJ_SIZE_T read(void *buffer, OPJ_SIZE_T count, void *user)
    {
        Place &place = of(user);
        const size_t there = std::min<size_t>(count, place.bytes.size() - place.at);
        if (there == 0)
            return OPJ_SIZE_T(-1);
        std::memcpy(buffer, place.bytes.data() + place.at, there);
        place.at += there;
        if (place.canvas)
            place.canvas->tellProgress(double(place.at) / double(place.bytes.size()));
        return there;
    }
    static OPJ_OFF_T skip(OPJ_OFF_T count, void *user)
    {
        Place &place = of(user);
        const OPJ_OFF_T target = OPJ_OFF_T(place.at) + std::min<OPJ_OFF_T>(count, OPJ_OFF_T(place.bytes.size()));
        if (target < 0)
            return -1;
        const size_t before = place.at;
        place.at = std::min(size_t(target), place.bytes.size());
        return OPJ_OFF_T(place.at) - OPJ_OFF_T(before);
    }
    static OPJ_BOOL seek(OPJ_OFF_T target, void *user)
    {
        Place &place = of(user);
        if (target < 0 || size_t(target) > place.bytes.size())
            return OPJ_FALSE;
        place.at = size_t(target);
        return OPJ_TRUE;
    }
};

/// What the boxes around the code stream say.
struct Wrapping
{
    int colors = 0;                  ///< as the "colr" box numbers them; 0 where nothing says
    std::vector<int> paletteBits;    ///< of its columns; empty without a palette
    std::optional<int> alphaChannel; ///< counted from 0
    std::string iccProfile;
    std::string exif;
    std::string xmp;
    std::string iptc;
};

enum Colors { kCmyk = 12, kSrgb = 16, kGrey = 17, kYcc = 18 };

std::string textOf(std::span<const std::byte> bytes)
{
    return {reinterpret_cast<const char *>(bytes.data()), bytes.size()};
}

void takeImageBox(const Box &box, Wrapping &wrapping)
{
    BoxFields fields(box.content);
    if (box.type == "colr" && wrapping.colors == 0 && wrapping.iccProfile.empty()) {
        const uint64_t method = fields.next(1);
        fields.next(2);
        if (method == 1)
            wrapping.colors = int(fields.next(4));
        else if (method == 2 && box.content.size() > 3)
            wrapping.iccProfile = textOf(box.content.subspan(3));
    } else if (box.type == "pclr") {
        fields.next(2);
        wrapping.paletteBits.resize(fields.next(1));
        for (int &bits : wrapping.paletteBits)
            bits = int(fields.next(1) & 0x7f) + 1;
    } else if (box.type == "cdef") {
        for (uint64_t left = fields.next(2); left > 0 && !fields.isBeyond(); --left) {
            const auto channel = int(fields.next(2));
            const uint64_t kind = fields.next(2);
            fields.next(2);
            if (kind == 1 || kind == 2)
                wrapping.alphaChannel = channel;
        }
    }
}

void takeBlock(std::span<const std::byte> content, Wrapping &wrapping)
{
    constexpr std::string_view kExif = "JpgTiffExif->JP2";
    constexpr std::string_view kXmp("\xbe\x7a\xcf\xcb\x97\xa9\x42\xe8\x9c\x71\x99\x94\x91\xe3\xaf\xac", 16);
    constexpr std::string_view kIptc("\x33\xc7\xa4\xd2\xb8\x1d\x47\x23\xa0\xba\xf1\xa3\xe0\x97\xad\x38", 16);
    if (content.size() < 16)
        return;
    const std::string id = textOf(content.first(16));
    for (const auto &[name, block] :
         {std::pair(kExif, &wrapping.exif), {kXmp, &wrapping.xmp}, {kIptc, &wrapping.iptc}}) {
        if (id == name && block->empty())
            *block = textOf(content.subspan(16));
    }
}

bool isXmp(std::string_view xml)
{
    return xml.find("http://www.w3.org/1999/02/22-rdf-syntax-ns#") != xml.npos;
}

/// A packet of XMP counts where it belongs, in its own box; else one in a box for any XML does.
Wrapping wrappingOf(std::span<const std::byte> file)
{
    Wrapping wrapping;
    std::string packet;
    for (const Box &box : boxesIn(file)) {
        if (box.type == "xml " && packet.empty() && isXmp(textOf(box.content)))
            packet = textOf(box.content);
        if (box.type == "uuid")
            takeBlock(box.content, wrapping);
        if (box.type != "jp2h")
            continue;
        for (const Box &inner : boxesIn(box.content))
            takeImageBox(inner, wrapping);
    }
    if (wrapping.xmp.empty())
        wrapping.xmp = std::move(packet);
    return wrapping;
}

class Jp2Photo : public ForeignDecoder
{
public:
    explicit Jp2Photo(const Photo &photo)
        : m_photo(photo)
        , m_place{photo.bytes}
    {
    }

    Header readHeader() override;
    Done decode(const Canvas &canvas) override;

private:
    static void remember(const char *message, void *user) { *static_cast<std::string *>(user) = message; }
    [[noreturn]] void fail() const;
    void takeLayout();
    void checkComponents() const;
    /// A sample of a component, which may be coarser than the picture, in 16 bits.
    uint32_t sample(int component, uint32_t x, uint32_t y) const;
    void putRow(const Canvas &canvas, uint32_t y, bool isYcc) const;

    const Photo &m_photo;
    Place m_place;
    std::string m_complaint;
    std::unique_ptr<opj_stream_t, DestroyStream> m_stream;
    std::unique_ptr<opj_codec_t, DestroyCodec> m_codec;
    std::unique_ptr<opj_image_t, DestroyImage> m_image;
    Wrapping m_wrapping;
    Header m_header;
    int m_colorChannels = 3;
    std::optional<int> m_alpha;
};

void Jp2Photo::fail() const
{
    // It was all there to read, and yet the library asked for more.
    throw NoPicture(m_place.at >= m_place.bytes.size() ? Trouble::Truncated : Trouble::Damaged, m_complaint);
}

Header Jp2Photo::readHeader()
{
    const bool isBare = m_photo.bytes.size() > 1 && m_photo.bytes[0] == std::byte(0xff);
    if (!isBare)
        m_wrapping = wrappingOf(m_photo.bytes);
    m_stream.reset(opj_stream_default_create(OPJ_TRUE));
    m_codec.reset(opj_create_decompress(isBare ? OPJ_CODEC_J2K : OPJ_CODEC_JP2));
    if (!m_stream || !m_codec)
        throw std::bad_alloc();
    opj_stream_set_user_data(m_stream.get(), &m_place, nullptr);
    opj_stream_set_user_data_length(m_stream.get(), m_photo.bytes.size());
    opj_stream_set_read_function(m_stream.get(), Place::read);
    opj_stream_set_skip_function(m_stream.get(), Place::skip);
    opj_stream_set_seek_function(m_stream.get(), Place::seek);
    opj_set_error_handler(m_codec.get(), remember, &m_complaint);
    opj_dparameters_t parameters;
    opj_set_default_decoder_parameters(&parameters);
    if (!opj_setup_decoder(m_codec.get(), &parameters))
        fail();
    opj_codec_set_threads(m_codec.get(), int(std::max(std::thread::hardware_concurrency(), 1u)));
    opj_image_t *image = nullptr;
    const bool isRead = opj_read_header(m_stream.get(), m_codec.get(), &image);
    m_image.reset(image);
    if (!isRead || !image || image->numcomps < 1)
        fail();
    takeLayout();
    m_header.format = "jp2";
    m_header.iccProfile = std::move(m_wrapping.iccProfile);
    m_header.exif = std::move(m_wrapping.exif);
    m_header.xmp = std::move(m_wrapping.xmp);
    m_header.iptc = std::move(m_wrapping.iptc);
    return m_header;
}

void Jp2Photo::takeLayout()
{
    const bool hasPalette = !m_wrapping.paletteBits.empty();
    const auto channels = int(hasPalette ? m_wrapping.paletteBits.size() : m_image->numcomps);
    if (m_wrapping.colors == kCmyk)
        throw NoPicture(Trouble::Unsupported, "printing inks");
    m_alpha = m_wrapping.alphaChannel;
    if (!m_alpha && (channels == 2 || channels == 4))
        m_alpha = channels - 1;
    m_colorChannels = channels - (m_alpha ? 1 : 0) >= 3 ? 3 : 1;
    if (m_alpha && (*m_alpha < m_colorChannels || *m_alpha >= channels))
        throw NoPicture(Trouble::Unsupported, "an unusual order of channels");
    int bits = hasPalette ? *std::max_element(m_wrapping.paletteBits.begin(), m_wrapping.paletteBits.end()) : 1;
    for (OPJ_UINT32 index = 0; index < m_image->numcomps && !hasPalette; ++index)
        bits = std::max(bits, int(m_image->comps[index].prec));
    if (bits > 31)
        throw NoPicture(Trouble::Unsupported, "samples of more than 31 bits");
    m_header.bitsPerChannel = uint8_t(bits);
    m_header.hasAlpha = m_alpha.has_value();
    m_header.isGray = m_colorChannels == 1;
    m_header.frames = {{m_image->x1 - m_image->x0, m_image->y1 - m_image->y0}};
    m_header.layout = layoutOf(m_header.isGray, m_header.hasAlpha, bits > 8);
}

void Jp2Photo::checkComponents() const
{
    const int wanted = std::max(m_colorChannels, m_alpha ? *m_alpha + 1 : 0);
    if (int(m_image->numcomps) < wanted)
        throw NoPicture(Trouble::Damaged, "a channel is missing");
    for (int index = 0; index < wanted; ++index) {
        const opj_image_comp_t &component = m_image->comps[index];
        if (!component.data || component.w == 0 || component.h == 0 || component.prec > 31)
            throw NoPicture(Trouble::Damaged, "a channel is incomplete");
    }
}

uint32_t Jp2Photo::sample(int component, uint32_t x, uint32_t y) const
{
    const opj_image_comp_t &from = m_image->comps[component];
    const size_t column = std::min(x / from.dx, from.w - 1);
    const size_t row = std::min(y / from.dy, from.h - 1);
    const uint32_t most = uint32_t((uint64_t(1) << from.prec) - 1);
    const int64_t value = int64_t(from.data[row * from.w + column]) + (from.sgnd ? int64_t(1) << (from.prec - 1) : 0);
    return scaledTo16(uint32_t(std::clamp<int64_t>(value, 0, most)), most);
}

/// Y, Cb, Cr of 16 bits, the last two around the middle level of so many bits.
std::array<uint32_t, 3> rgbOfYcc(const std::array<uint32_t, 3> &ycc, uint32_t chromaBits)
{
    const double middle = scaledTo16(1u << (chromaBits - 1), (1u << chromaBits) - 1);
    const double luma = ycc[0], blue = ycc[1] - middle, red = ycc[2] - middle;
    const auto rounded = [](double value) { return uint32_t(std::clamp(value, 0.0, 65535.0) + 0.5); };
    return {rounded(luma + 1.402 * red), rounded(luma - 0.344136 * blue - 0.714136 * red),
            rounded(luma + 1.772 * blue)};
}

void Jp2Photo::putRow(const Canvas &canvas, uint32_t y, bool isYcc) const
{
    const bool isDeep = glass::isDeep(m_header.layout);
    const auto put = [&](size_t at, uint32_t value) {
        if (isDeep)
            canvas.row16(y)[at] = uint16_t(value);
        else
            canvas.row8(y)[at] = uint8_t((value + 128) / 257);
    };
    for (uint32_t x = 0; x < canvas.size.width; ++x) {
        if (isGray(m_header.layout)) {
            put(x, sample(0, x, y));
            continue;
        }
        std::array<uint32_t, 3> color{};
        for (int channel = 0; channel < 3; ++channel)
            color[size_t(channel)] = sample(m_colorChannels == 3 ? channel : 0, x, y);
        if (isYcc)
            color = rgbOfYcc(color, m_image->comps[1].prec);
        for (size_t channel = 0; channel < 3; ++channel)
            put(4 * size_t(x) + channel, color[channel]);
        put(4 * size_t(x) + 3, m_alpha ? sample(*m_alpha, x, y) : 65535);
    }
}

Done Jp2Photo::decode(const Canvas &canvas)
{
    m_place.canvas = &canvas;
    if (!opj_decode(m_codec.get(), m_stream.get(), m_image.get()) || !opj_end_decompress(m_codec.get(), m_stream.get()))
        fail();
    checkComponents();
    const bool isYcc = m_colorChannels == 3 && m_wrapping.colors == kYcc;
    for (uint32_t y = 0; y < canvas.size.height; ++y)
        putRow(canvas, y, isYcc);
    return {};
}

} // namespace

} // namespace hazelmark::glass

extern "C" hazelmark::glass::ForeignDecoder *makeForeignDecoder(const hazelmark::glass::Photo &photo)
{
    return new hazelmark::glass::Jp2Photo(photo);
}
