#include "KeptBlur.h"

#include "AffineClampNode.h"
#include "CellPasses.h"
#include "ParallelFor.h"
#include "SourceNode.h"

#include <algorithm>
#include <vector>

namespace hazelmark {

namespace {

/// What is computed in one go begins on multiples of these, in cells.
constexpr int kBlockWidth = 128;
constexpr int kBlockHeight = 64;

QRect onBlocks(const QRect &rect, int width, int height)
{
    const auto before = [](int value, int size) { return floorDivided(value, size) * size; };
    return {QPoint(before(rect.left(), width), before(rect.top(), height)),
            QPoint(before(rect.right(), width) + width - 1, before(rect.bottom(), height) + height - 1)};
}

/// The blocks of `rect` that `wanted` touches and that are not in `there`.
std::vector<QRect> missingBlocks(const QRegion &wanted, const QRegion &there, int width, int height, const QRect &rect)
{
    const QRegion missing = wanted - there;
    std::vector<QRect> blocks;
    if (missing.isEmpty())
        return blocks;
    const QRect all = onBlocks(missing.boundingRect(), width, height);
    for (int y = all.top(); y <= all.bottom(); y += height) {
        for (int x = all.left(); x <= all.right(); x += width) {
            const QRect block = QRect(x, y, width, height) & rect;
            if (missing.intersects(block))
                blocks.push_back(block);
        }
    }
    return blocks;
}

CellPlanes movedTo(const QRect &rect, const CellPlanes &cells, int channels, QRegion &there)
{
    CellPlanes moved(rect, channels);
    there &= rect;
    for (const QRect &common : there)
        for (int c = 0; c < channels; ++c)
            for (int y = common.top(); y <= common.bottom(); ++y)
                std::copy_n(cells.at(c, common.left(), y), common.width(), moved.at(c, common.left(), y));
    return moved;
}

} // namespace

/// The bitmap without end, for those who average it into cells.
class KeptBlur::Pixels : public TileReader
{
public:
    explicit Pixels(const QImage &source)
        : m_source(std::make_shared<SourceNode>(source))
        , m_clamped(m_source, source.rect())
    {
    }

    Tile read(std::size_t, const QRect &region) const override
    {
        const FilterNode *node = m_clamped.shownIn(region);
        Tile tile(region, node->channels());
        node->compute(tile, Reader(*m_source));
        return tile;
    }

private:
    struct Reader : TileReader
    {
        explicit Reader(const SourceNode &source)
            : source(source)
        {
        }
        Tile read(std::size_t, const QRect &region) const override
        {
            Tile tile(region, source.channels());
            source.compute(tile, *this);
            return tile;
        }
        const SourceNode &source;
    };

    std::shared_ptr<const SourceNode> m_source;
    AffineClampNode m_clamped;
};

bool KeptBlur::canKeep(QSize size, double radius)
{
    if (!(radius > 0))
        return false;
    const int scale = CellGrid(QRect(QPoint(), size), radius).scale();
    return scale > 1 && scale <= CellGrid::kLargestDirectScale;
}

KeptBlur::KeptBlur(QSize size, double radius)
    : m_size(size)
    , m_radius(radius)
    , m_grid(QRect(QPoint(), size), radius)
    , m_disc(m_grid.discRadius(), kGoodOverCells)
{
}

/// Blurred cells are kept for `cells`, and all that they are the means of.
void KeptBlur::makeRoom(const QRect &cells, int channels)
{
    if (m_blurred.rect().contains(cells))
        return;
    const QRect rect = onBlocks(cells, kBlockWidth, kBlockHeight);
    const int reach = m_disc.reach();
    m_blurred = movedTo(rect, m_blurred, channels, m_blurredThere);
    m_means = movedTo(rect.adjusted(-reach, -reach, reach, reach) & m_grid.cells(), m_means, channels, m_meansThere);
}

void KeptBlur::provide(const QRegion &cells, const QImage &source, int threads)
{
    Q_ASSERT(source.size() == m_size);
    if (cells.isEmpty() || (cells - m_blurredThere).isEmpty())
        return;
    makeRoom(cells.boundingRect(), source.hasAlphaChannel() ? 4 : 3);
    const std::vector<QRect> blurred =
        missingBlocks(cells, m_blurredThere, kBlockWidth, kBlockHeight, m_blurred.rect());
    QRegion means;
    const int reach = m_disc.reach();
    for (const QRect &block : blurred)
        means += block.adjusted(-reach, -reach, reach, reach) & m_grid.cells();
    const Pixels pixels(source);
    const std::vector<QRect> averaged = missingBlocks(means, m_meansThere, kPixelBlockWidth / m_grid.scale(),
                                                      kPixelBlockHeight / m_grid.scale(), m_means.rect());
    parallelFor(int(averaged.size()), threads,
                [&](int i) { averageBlock(m_grid, averaged[std::size_t(i)], pixels, m_means); });
    for (const QRect &block : averaged)
        m_meansThere += block;
    parallelFor(int(blurred.size()), threads,
                [&](int i) { sumBlock(m_means, m_disc, blurred[std::size_t(i)], m_blurred); });
    for (const QRect &block : blurred)
        m_blurredThere += block;
}

} // namespace hazelmark
