#include "FinishedRows.h"
#include "ForeignDecoder.h"
#include "HdrToSrgb.h"
#include "IsoBoxes.h"

#include <algorithm>
#include <array>
#include <new>

#include <jxl/decode.h>
#include <jxl/thread_parallel_runner.h>

namespace hazelmark::glass {

namespace {

constexpr size_t kLargestBlock = 64u * 1024 * 1024;

struct DestroyDecoder
{
    void operator()(::JxlDecoder *decoder) const { JxlDecoderDestroy(decoder); }
};
struct DestroyRunner
{
    void operator()(void *runner) const { JxlThreadParallelRunnerDestroy(runner); }
};

/// Gathers the content of one box of metadata; one that proves to be too large is left out.
class BoxContent
{
public:
    void begin(::JxlDecoder *decoder, std::string &target)
    {
        constexpr size_t kFirst = 64u * 1024;
        m_target = &target;
        target.resize(kFirst);
        JxlDecoderSetBoxBuffer(decoder, reinterpret_cast<uint8_t *>(target.data()), target.size());
    }
    void grow(::JxlDecoder *decoder)
    {
        const size_t filled = m_target->size() - JxlDecoderReleaseBoxBuffer(decoder);
        if (filled >= kLargestBlock) { // few bytes may stand for many
            m_target->clear();
            m_target = nullptr;
            return;
        }
        m_target->resize(m_target->size() * 2);
        JxlDecoderSetBoxBuffer(decoder, reinterpret_cast<uint8_t *>(m_target->data()) + filled,
                               m_target->size() - filled);
    }
    void end(::JxlDecoder *decoder)
    {
        if (!m_target)
            return;
        m_target->resize(m_target->size() - JxlDecoderReleaseBoxBuffer(decoder));
        m_target = nullptr;
    }

private:
    std::string *m_target = nullptr;
};

/// The numbers of ITU-T H.273 are the library's too.
ColorCodes codesOf(const JxlColorEncoding &encoding)
{
    ColorCodes codes;
    codes.transfer =
        encoding.transfer_function == JXL_TRANSFER_FUNCTION_GAMMA ? uint8_t(2) : uint8_t(encoding.transfer_function);
    codes.primaries = encoding.primaries == JXL_PRIMARIES_P3 ? uint8_t(12) : uint8_t(encoding.primaries);
    return codes;
}

bool isSrgb(const JxlColorEncoding &encoding)
{
    return encoding.transfer_function == JXL_TRANSFER_FUNCTION_SRGB && encoding.white_point == JXL_WHITE_POINT_D65 &&
           (encoding.color_space == JXL_COLOR_SPACE_GRAY || encoding.primaries == JXL_PRIMARIES_SRGB);
}

class JxlPhoto : public ForeignDecoder
{
public:
    explicit JxlPhoto(const Photo &photo)
        : m_photo(photo)
    {
    }

    Header readHeader() override;
    Done decode(const Canvas &canvas) override;

private:
    void begin(int events);
    void takeInfo();
    void takeColors();
    JxlPixelFormat pixelFormat() const;
    bool isDeep() const { return m_info.bits_per_sample > 8 || m_info.exponent_bits_per_sample > 0; }

    const Photo &m_photo;
    std::unique_ptr<void, DestroyRunner> m_runner; ///< outlives the decoder
    std::unique_ptr<::JxlDecoder, DestroyDecoder> m_decoder;
    JxlBasicInfo m_info{};
    Header m_header;
    ColorCodes m_codes;
};

void JxlPhoto::begin(int events)
{
    m_decoder.reset(JxlDecoderCreate(nullptr));
    if (!m_decoder)
        throw std::bad_alloc();
    JxlDecoderSubscribeEvents(m_decoder.get(), events);
    if (m_runner)
        JxlDecoderSetParallelRunner(m_decoder.get(), JxlThreadParallelRunner, m_runner.get());
    JxlDecoderSetInput(m_decoder.get(), m_photo.data(), m_photo.bytes.size());
    JxlDecoderCloseInput(m_decoder.get());
}

JxlPixelFormat JxlPhoto::pixelFormat() const
{
    return {isGray(m_header.layout) ? 1u : 4u, glass::isDeep(m_header.layout) ? JXL_TYPE_UINT16 : JXL_TYPE_UINT8,
            JXL_NATIVE_ENDIAN, 4};
}

void JxlPhoto::takeInfo()
{
    if (JxlDecoderGetBasicInfo(m_decoder.get(), &m_info) != JXL_DEC_SUCCESS)
        throw NoPicture(Trouble::Damaged, "its header makes no sense");
    for (uint32_t index = 0; index < std::min(m_info.num_extra_channels, 256u); ++index) {
        JxlExtraChannelInfo channel{};
        JxlDecoderGetExtraChannelInfo(m_decoder.get(), index, &channel);
        if (channel.type == JXL_CHANNEL_BLACK)
            throw NoPicture(Trouble::Unsupported, "printing inks");
    }
    m_header.format = "jxl";
    m_header.frames = {{m_info.xsize, m_info.ysize}};
    m_header.bitsPerChannel = uint8_t(std::clamp(m_info.bits_per_sample, 1u, 32u));
    m_header.hasAlpha = m_info.alpha_bits > 0;
    m_header.isGray = m_info.num_color_channels == 1;
    m_header.isTurned = true;
}

void JxlPhoto::takeColors()
{
    const JxlPixelFormat format = pixelFormat();
    JxlColorEncoding encoding{};
    const bool isEncoded = JxlDecoderGetColorAsEncodedProfile(m_decoder.get(), &format, JXL_COLOR_PROFILE_TARGET_DATA,
                                                              &encoding) == JXL_DEC_SUCCESS;
    if (isEncoded && isSrgb(encoding))
        return;
    m_codes = isEncoded ? codesOf(encoding) : ColorCodes();
    if (isHighDynamicRange(m_codes)) {
        m_header.isConverted = true;
        m_header.isGray = false;
        m_header.note = "its colours are brighter than white and were converted to sRGB";
        return;
    }
    size_t size = 0;
    if (JxlDecoderGetICCProfileSize(m_decoder.get(), &format, JXL_COLOR_PROFILE_TARGET_DATA, &size) !=
            JXL_DEC_SUCCESS ||
        size > kLargestBlock)
        return;
    m_header.iccProfile.resize(size);
    if (JxlDecoderGetColorAsICCProfile(m_decoder.get(), &format, JXL_COLOR_PROFILE_TARGET_DATA,
                                       reinterpret_cast<uint8_t *>(m_header.iccProfile.data()),
                                       size) != JXL_DEC_SUCCESS)
        m_header.iccProfile.clear();
}

Header JxlPhoto::readHeader()
{
    begin(JXL_DEC_BASIC_INFO | JXL_DEC_COLOR_ENCODING | JXL_DEC_BOX);
    JxlDecoderSetDecompressBoxes(m_decoder.get(), JXL_TRUE);
    BoxContent content;
    std::string exif;
    bool hasColors = false;
    for (JxlDecoderStatus status = JxlDecoderProcessInput(m_decoder.get()); status != JXL_DEC_SUCCESS;
         status = JxlDecoderProcessInput(m_decoder.get())) {
        if (status == JXL_DEC_BASIC_INFO) {
            takeInfo();
        } else if (status == JXL_DEC_COLOR_ENCODING) {
            takeColors();
            hasColors = true;
        } else if (status == JXL_DEC_BOX) {
            content.end(m_decoder.get());
            std::array<char, 4> type{};
            JxlDecoderGetBoxType(m_decoder.get(), type.data(), JXL_TRUE);
            const std::string_view name(type.data(), type.size());
            if (name == "Exif" && exif.empty())
                content.begin(m_decoder.get(), exif);
            else if (name == "xml " && m_header.xmp.empty())
                content.begin(m_decoder.get(), m_header.xmp);
        } else if (status == JXL_DEC_BOX_NEED_MORE_OUTPUT) {
            content.grow(m_decoder.get());
        } else if (status == JXL_DEC_NEED_MORE_INPUT || hasColors) {
            break; // what is missing may be no more than a box behind the picture
        } else {
            throw NoPicture(Trouble::Damaged, "its header makes no sense");
        }
    }
    content.end(m_decoder.get());
    if (!hasColors)
        throw NoPicture(Trouble::Truncated, {});
    m_header.exif = exifIn(exif);
    m_header.layout = layoutOf(m_header.isGray, m_header.hasAlpha, isDeep() || m_header.isConverted);
    return m_header;
}

Done JxlPhoto::decode(const Canvas &canvas)
{
    m_decoder.reset();
    m_runner.reset(JxlThreadParallelRunnerCreate(nullptr, canvas.threads));
    begin(JXL_DEC_FULL_IMAGE);
    const JxlPixelFormat format = pixelFormat();
    while (true) {
        const JxlDecoderStatus status = JxlDecoderProcessInput(m_decoder.get());
        if (status == JXL_DEC_FULL_IMAGE)
            break;
        if (status == JXL_DEC_NEED_MORE_INPUT)
            throw NoPicture(Trouble::Truncated, {});
        size_t size = 0;
        if (status != JXL_DEC_NEED_IMAGE_OUT_BUFFER ||
            JxlDecoderImageOutBufferSize(m_decoder.get(), &format, &size) != JXL_DEC_SUCCESS ||
            size > canvas.stride * canvas.size.height ||
            JxlDecoderSetImageOutBuffer(m_decoder.get(), &format, canvas.memory, canvas.stride * canvas.size.height) !=
                JXL_DEC_SUCCESS)
            throw NoPicture(Trouble::Damaged, {});
    }
    finishRows(canvas, m_header, m_header.hasAlpha && m_info.alpha_premultiplied, m_codes);
    return {};
}

} // namespace

} // namespace hazelmark::glass

extern "C" hazelmark::glass::ForeignDecoder *makeForeignDecoder(const hazelmark::glass::Photo &photo)
{
    return new hazelmark::glass::JxlPhoto(photo);
}
