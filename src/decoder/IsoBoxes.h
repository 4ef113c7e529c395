#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace hazelmark::glass {

/// Big-endian fields, one after another; 0 beyond the end.
class BoxFields
{
public:
    explicit BoxFields(std::span<const std::byte> bytes)
        : m_bytes(bytes)
    {
    }
    /// A number of `size` bytes.
    uint64_t next(size_t size);
    bool isBeyond() const { return m_at > m_bytes.size(); }

private:
    std::span<const std::byte> m_bytes;
    size_t m_at = 0;
};

/// A box of the ISO base media file format.
struct Box
{
    std::string_view type;
    std::span<const std::byte> content;
};

/// Boxes in a row; the last one may reach to the end. Those behind one that makes no sense are left out.
std::vector<Box> boxesIn(std::span<const std::byte> bytes);

/// Of a block that begins with the distance of what matters, which some writers give a lead-in. Empty when it makes no
/// sense.
std::string exifIn(const std::string &block);

/// The content of the first box of the type.
std::optional<std::span<const std::byte>> contentOf(const std::vector<Box> &boxes, std::string_view type);

} // namespace hazelmark::glass
