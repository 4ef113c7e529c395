#include "DecoderMessages.h"

#include <algorithm>
#include <cmath>
#include <cstring>
#include <type_traits>

namespace hazelmark::glass {

namespace {

constexpr uint32_t kMark = 0x484d4402; // grows with the form of the messages
constexpr size_t kHeadSize = 3 * sizeof(uint32_t);

class Packer
{
public:
    template <typename Number>
    Packer &number(Number value)
    {
        static_assert(std::is_arithmetic_v<Number>);
        m_bytes.append(reinterpret_cast<const char *>(&value), sizeof(value));
        return *this;
    }
    Packer &text(std::string_view bytes)
    {
        number(uint32_t(bytes.size()));
        m_bytes += bytes;
        return *this;
    }
    /// The message, its head in front.
    std::string message(Kind kind) const
    {
        Packer head;
        head.number(kMark).number(uint32_t(kind)).number(uint32_t(m_bytes.size()));
        return head.m_bytes + m_bytes;
    }

private:
    std::string m_bytes;
};

class Unpacker
{
public:
    explicit Unpacker(std::string_view bytes)
        : m_bytes(bytes)
    {
    }
    template <typename Number>
    Number number()
    {
        Number value{};
        if (m_bytes.size() < sizeof(value)) {
            m_isGood = false;
            return value;
        }
        std::memcpy(&value, m_bytes.data(), sizeof(value));
        m_bytes.remove_prefix(sizeof(value));
        return value;
    }
    /// One of the values up to `last`.
    template <typename Enum>
    Enum oneUpTo(Enum last)
    {
        const auto value = number<std::underlying_type_t<Enum>>();
        m_isGood = m_isGood && value <= std::underlying_type_t<Enum>(last);
        return m_isGood ? Enum(value) : Enum{};
    }
    bool flag()
    {
        const auto value = number<uint8_t>();
        m_isGood = m_isGood && value <= 1;
        return value == 1;
    }
    std::string text(size_t longest)
    {
        const size_t size = number<uint32_t>();
        m_isGood = m_isGood && size <= longest && size <= m_bytes.size();
        if (!m_isGood)
            return {};
        std::string text(m_bytes.substr(0, size));
        m_bytes.remove_prefix(size);
        return text;
    }
    bool isGood() const { return m_isGood; }
    bool isDone() const { return m_isGood && m_bytes.empty(); }

private:
    std::string_view m_bytes;
    bool m_isGood = true;
};

constexpr size_t kLongestBlock = 64u * 1024 * 1024;

bool isFormatName(std::string_view name)
{
    return !name.empty() && name.size() <= 16 && std::all_of(name.begin(), name.end(), [](char c) {
        return (c >= 'a' && c <= 'z') || (c >= '0' && c <= '9');
    });
}

bool isResolution(double value)
{
    return std::isfinite(value) && value >= 0.0;
}

/// What one part says is what the others say.
bool isConsistent(const Header &header)
{
    return isFormatName(header.format) && (!isGray(header.layout) || header.isGray) && header.bitsPerChannel >= 1 &&
           header.bitsPerChannel <= (isDeep(header.layout) ? 32 : 8) && isResolution(header.dotsPerInchX) &&
           isResolution(header.dotsPerInchY);
}

} // namespace

int bytesPerPixel(Layout layout)
{
    constexpr std::array kBytes = {1, 2, 4, 4, 8, 8};
    return kBytes[size_t(layout)];
}

bool isGray(Layout layout)
{
    return layout == Layout::Gray8 || layout == Layout::Gray16;
}

bool isDeep(Layout layout)
{
    return layout == Layout::Gray16 || layout == Layout::Rgbx16 || layout == Layout::Rgba16;
}

Layout layoutOf(bool isGray, bool hasAlpha, bool isDeep)
{
    if (hasAlpha)
        return isDeep ? Layout::Rgba16 : Layout::Rgba8;
    if (isGray)
        return isDeep ? Layout::Gray16 : Layout::Gray8;
    return isDeep ? Layout::Rgbx16 : Layout::Rgbx8;
}

int64_t rowBytes(Layout layout, uint32_t width)
{
    return (int64_t(width) * bytesPerPixel(layout) + 3) / 4 * 4;
}

std::string packed(const Header &header)
{
    Packer packer;
    packer.text(header.format).number(uint32_t(header.frames.size()));
    for (const Size &size : header.frames)
        packer.number(size.width).number(size.height);
    packer.number(uint8_t(header.layout)).number(header.bitsPerChannel);
    for (const bool flag : {header.hasAlpha, header.isGray, header.isTurned, header.isPreview, header.isConverted})
        packer.number(uint8_t(flag));
    packer.number(header.dotsPerInchX).number(header.dotsPerInchY);
    packer.number(header.colors.primaries).number(header.colors.transfer);
    for (const std::string *block : {&header.iccProfile, &header.exif, &header.xmp, &header.iptc})
        packer.text(block->size() <= kLongestBlock ? std::string_view(*block) : std::string_view());
    packer.text(std::string_view(header.note).substr(0, kLongestText));
    return packer.message(Kind::Header);
}

std::string packed(const Done &done)
{
    return Packer()
        .number(uint8_t(done.isPartlyDamaged))
        .text(std::string_view(done.note).substr(0, kLongestText))
        .message(Kind::Done);
}

std::string packed(const Excuse &excuse)
{
    return Packer()
        .number(uint8_t(excuse.trouble))
        .text(std::string_view(excuse.text).substr(0, kLongestText))
        .message(Kind::Excuse);
}

std::string packed(const Go &go)
{
    return Packer().number(go.memorySize).number(go.threads).message(Kind::Go);
}

std::string packedProgress(double done)
{
    return Packer().number(done).message(Kind::Progress);
}

std::optional<Header> headerOf(std::string_view body)
{
    Unpacker from(body);
    Header header;
    header.format = from.text(16);
    const size_t count = from.number<uint32_t>();
    if (!from.isGood() || count > kMostFrames)
        return std::nullopt;
    for (size_t index = 0; index < count && from.isGood(); ++index) {
        const auto width = from.number<uint32_t>();
        header.frames.push_back({width, from.number<uint32_t>()});
    }
    header.layout = from.oneUpTo(Layout::Rgba16);
    header.bitsPerChannel = from.number<uint8_t>();
    for (bool *flag : {&header.hasAlpha, &header.isGray, &header.isTurned, &header.isPreview, &header.isConverted})
        *flag = from.flag();
    header.dotsPerInchX = from.number<double>();
    header.dotsPerInchY = from.number<double>();
    header.colors.primaries = from.number<uint8_t>();
    header.colors.transfer = from.number<uint8_t>();
    for (std::string *block : {&header.iccProfile, &header.exif, &header.xmp, &header.iptc})
        *block = from.text(kLongestBlock);
    header.note = from.text(kLongestText);
    return from.isDone() && isConsistent(header) ? std::optional(std::move(header)) : std::nullopt;
}

std::optional<Done> doneOf(std::string_view body)
{
    Unpacker from(body);
    Done done;
    done.isPartlyDamaged = from.flag();
    done.note = from.text(kLongestText);
    return from.isDone() ? std::optional(done) : std::nullopt;
}

std::optional<Excuse> excuseOf(std::string_view body)
{
    Unpacker from(body);
    Excuse excuse;
    excuse.trouble = from.oneUpTo(Trouble::TooLarge);
    excuse.text = from.text(kLongestText);
    return from.isDone() ? std::optional(excuse) : std::nullopt;
}

std::optional<Go> goOf(std::string_view body)
{
    Unpacker from(body);
    Go go;
    go.memorySize = from.number<uint64_t>();
    go.threads = from.number<uint32_t>();
    return from.isDone() ? std::optional(go) : std::nullopt;
}

std::optional<double> progressOf(std::string_view body)
{
    Unpacker from(body);
    const auto done = from.number<double>();
    return from.isDone() && done >= 0.0 && done <= 1.0 ? std::optional(done) : std::nullopt;
}

std::optional<Message> MessageReader::next()
{
    if (m_isBroken || m_bytes.size() < kHeadSize)
        return std::nullopt;
    Unpacker head(m_bytes);
    const auto mark = head.number<uint32_t>();
    const auto kind = head.number<uint32_t>();
    const size_t size = head.number<uint32_t>();
    m_isBroken = mark != kMark || kind < uint32_t(Kind::Header) || kind > uint32_t(Kind::Go) || size > kLongestMessage;
    if (m_isBroken || m_bytes.size() - kHeadSize < size)
        return std::nullopt;
    Message message{Kind(kind), m_bytes.substr(kHeadSize, size)};
    m_bytes.erase(0, kHeadSize + size);
    return message;
}

} // namespace hazelmark::glass
