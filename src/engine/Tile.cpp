#include "Tile.h"

#include "kernels/PixelRows.h"

#include <algorithm>
#include <new>
#include <vector>

namespace hazelmark {

namespace {

constexpr std::align_val_t kRowAlignment{64};

/// What stands before the floats of a block; as long as the alignment.
struct alignas(64) BlockHeader
{
    std::size_t floats;
};

/// Blocks that a thread has done with and will soon want again. A render takes and releases a few large blocks for
/// every tile; handed back to the system each time they would have to be filled with zeros by it each time, which
/// takes longer than what is computed in them.
class BlockCache
{
public:
    ~BlockCache()
    {
        for (BlockHeader *block : m_blocks)
            destroy(block);
    }

    /// A block of at least `floats`, not much larger.
    BlockHeader *take(std::size_t floats)
    {
        const auto fits = [floats](const BlockHeader *block) {
            return block->floats >= floats && block->floats / 2 <= floats;
        };
        const auto found = std::find_if(m_blocks.rbegin(), m_blocks.rend(), fits);
        if (found == m_blocks.rend()) {
            auto *block =
                static_cast<BlockHeader *>(::operator new(sizeof(BlockHeader) + floats * sizeof(float), kRowAlignment));
            block->floats = floats;
            return block;
        }
        BlockHeader *block = *found;
        m_kept -= block->floats;
        m_blocks.erase(std::next(found).base());
        return block;
    }

    void giveBack(BlockHeader *block)
    {
        m_kept += block->floats;
        m_blocks.push_back(block);
        while (m_kept > kMostFloats) {
            m_kept -= m_blocks.front()->floats;
            destroy(m_blocks.front());
            m_blocks.erase(m_blocks.begin());
        }
    }

private:
    /// The tiles of one node with all its inputs, several times over.
    static constexpr std::size_t kMostFloats = 8 << 20;

    static void destroy(BlockHeader *block) { ::operator delete(block, kRowAlignment); }

    std::vector<BlockHeader *> m_blocks; ///< the one given back last at the end
    std::size_t m_kept = 0;
};

BlockCache &cacheOfThread()
{
    thread_local BlockCache cache;
    return cache;
}

} // namespace

Tile::Tile(const QRect &rect, int channels)
    : m_rect(rect)
    , m_channels(channels)
    , m_stride((std::size_t(rect.width()) + kRowPadding - 1) / kRowPadding * kRowPadding)
{
    const std::size_t floats = m_stride * std::size_t(rect.height()) * std::size_t(channels);
    m_data.reset(reinterpret_cast<float *>(cacheOfThread().take(floats) + 1));
}

void Tile::premultiply()
{
    forColours(kernels::pixelRows().premultiply);
}

void Tile::unpremultiply()
{
    forColours(kernels::pixelRows().unpremultiply);
}

void Tile::forColours(void (*operation)(float *const *colours, const float *alpha, std::size_t width))
{
    if (!hasAlpha())
        return;
    for (int y = m_rect.top(); y <= m_rect.bottom(); ++y) {
        float *const colours[3] = {row(0, y), row(1, y), row(2, y)};
        operation(colours, row(3, y), std::size_t(width()));
    }
}

void Tile::Release::operator()(float *data) const
{
    cacheOfThread().giveBack(reinterpret_cast<BlockHeader *>(data) - 1);
}

} // namespace hazelmark
