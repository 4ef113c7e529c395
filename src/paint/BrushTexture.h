#pragma once

#include <QImage>

#include <memory>
#include <utility>
#include <vector>

namespace hazelmark {

/// A brush tip made ready for stamping: its premultiplied 8-bit samples as floats in 0..1.
class BrushTexture
{
public:
    /// One plane (a white tip, whose four components are equal) or four (R, G, B, A).
    struct Texels
    {
        int width = 0;
        int height = 0;
        int planes = 0;
        std::vector<float> samples; ///< plane by plane, row by row from the top
        /// For each row the first and the last texel with alpha above 0; (width, -1) when there is none.
        std::vector<std::pair<int, int>> covered;

        float *row(int plane, int y) { return samples.data() + offset(plane, y); }
        const float *row(int plane, int y) const { return samples.data() + offset(plane, y); }

    private:
        std::size_t offset(int plane, int y) const
        {
            return (std::size_t(plane) * std::size_t(height) + std::size_t(y)) * std::size_t(width);
        }
    };

    /// The empty texture: it stamps nothing.
    BrushTexture() = default;
    /// A tip without pixels gives the empty texture.
    explicit BrushTexture(const QImage &tip);

    /// Whether this is the texture of the very same pixels.
    bool isMadeFrom(const QImage &tip) const { return m_tipKey == tip.cacheKey(); }

    /// Null for the empty texture.
    const std::shared_ptr<const Texels> &texels() const { return m_texels; }

private:
    qint64 m_tipKey = 0;
    std::shared_ptr<const Texels> m_texels;
};

} // namespace hazelmark
