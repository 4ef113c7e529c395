#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <vector>

namespace hazelmark::glass {

/// One of the changes that the primary picture of a file in the HEIF container goes through after decoding.
struct HeifStep
{
    enum class Kind { Crop, Turn, Mirror };
    Kind kind;
    int quarterTurns = 0;       ///< anti-clockwise
    bool isTopToBottom = false; ///< of a mirror; else left to right
    uint32_t crop[4] = {};      ///< width and height, each as numerator and denominator
    int32_t cropOffset[4] = {}; ///< of the middle, likewise; denominators are positive
};

/// What the boxes say of the primary picture that the library does not tell.
struct HeifPrimary
{
    std::vector<HeifStep> steps; ///< in their order
    int channels = 0;            ///< 0 where nothing says
    bool isProtected = false;

    bool isMirrored() const;
};

/// Of the file's first bytes up to the end of its "meta" box. Nothing where it has none, or none that makes sense.
std::optional<HeifPrimary> readHeifPrimary(std::span<const std::byte> file);

/// Where a pixel of the finished picture comes from: x = across[0]·x + across[1]·y + across[2], likewise y of `down`.
struct PixelPath
{
    using Row = std::array<int64_t, 3>;
    Row across = {1, 0, 0};
    Row down = {0, 1, 0};
    int64_t width = 0; ///< of the finished picture
    int64_t height = 0;
};

/// Through all steps, beginning with a picture of this size. Nothing when a step leads out of it.
std::optional<PixelPath> pathThrough(const std::vector<HeifStep> &steps, uint32_t width, uint32_t height);

} // namespace hazelmark::glass
