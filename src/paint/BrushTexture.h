#pragma once

#include <QImage>

#include <memory>
#include <utility>
#include <vector>

namespace hazelmark {

/// A brush tip made ready for stamping: premultiplied 8-bit samples as floats in 0..1, and the same at half the size,
/// a quarter and so on, each made when it is first asked for.
class BrushTexture
{
public:
    /// The tip at one size: one plane (a white tip, whose four components are equal) or four (R, G, B, A).
    struct Level
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

    bool isEmpty() const { return m_levels.empty(); }
    /// Whether this is the texture of the very same pixels.
    bool isMadeFrom(const QImage &tip) const { return m_tipKey == tip.cacheKey(); }

    /// The size to sample bilinearly for a stamp `pointSize` wide: the tip itself, halved for as long as it stays at
    /// least as large as the stamp. So a stamp never steps over texels, and its edge is as smooth as the tip's.
    /// Null for the empty texture.
    std::shared_ptr<const Level> levelFor(float pointSize);

private:
    qint64 m_tipKey = 0;
    std::vector<std::shared_ptr<const Level>> m_levels;
};

} // namespace hazelmark
