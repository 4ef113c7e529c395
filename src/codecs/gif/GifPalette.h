#pragma once

#include <QImage>

#include <array>
#include <optional>
#include <vector>

namespace hazelmark {

/// A picture reduced to a palette of at most 256 colours, dithered. Alpha becomes one bit: half and more is opaque.
struct GifPalette
{
    using Color = std::array<uint8_t, 3>;

    /// `pixels` has one of the encoders' four formats. Empty `indices` when the reduction failed.
    static GifPalette of(const QImage &pixels);

    std::vector<Color> colors;
    std::optional<int> transparentIndex; ///< only when there are transparent pixels
    std::vector<uint8_t> indices;        ///< width · height, row by row
};

} // namespace hazelmark
