#include "IsoBoxes.h"

#include <algorithm>

namespace hazelmark::glass {

uint64_t BoxFields::next(size_t size)
{
    uint64_t value = 0;
    for (size_t index = 0; index < size; ++index)
        value = value << 8 | (m_at + index < m_bytes.size() ? std::to_integer<uint64_t>(m_bytes[m_at + index]) : 0);
    m_at += size;
    return value;
}

std::vector<Box> boxesIn(std::span<const std::byte> bytes)
{
    constexpr size_t kMost = 10000;
    std::vector<Box> boxes;
    while (bytes.size() >= 8 && boxes.size() < kMost) {
        BoxFields head(bytes);
        uint64_t size = head.next(4);
        const std::string_view type(reinterpret_cast<const char *>(bytes.data()) + 4, 4);
        size_t headSize = 8;
        if (size == 1) {
            head.next(4);
            size = head.next(8);
            headSize = 16;
        } else if (size == 0) {
            size = bytes.size();
        }
        if (size < headSize || size > bytes.size())
            break;
        boxes.push_back({type, bytes.subspan(headSize, size - headSize)});
        bytes = bytes.subspan(size);
    }
    return boxes;
}

std::string exifIn(const std::string &block)
{
    constexpr std::string_view kLeadIn("Exif\0\0", 6);
    const size_t begin = 4 + BoxFields(std::as_bytes(std::span(block))).next(4);
    if (begin > block.size())
        return {};
    const bool isLedIn = std::string_view(block).substr(begin).starts_with(kLeadIn);
    return block.substr(begin + (isLedIn ? kLeadIn.size() : 0));
}

std::optional<std::span<const std::byte>> contentOf(const std::vector<Box> &boxes, std::string_view type)
{
    const auto found = std::find_if(boxes.begin(), boxes.end(), [type](const Box &box) { return box.type == type; });
    return found == boxes.end() ? std::nullopt : std::optional(found->content);
}

} // namespace hazelmark::glass
