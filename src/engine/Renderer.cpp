#include "Renderer.h"

#include "LargeMemory.h"
#include "ParallelFor.h"
#include "filters/SourceNode.h"
#include "kernels/PixelRows.h"

#include <cstring>
#include <map>
#include <mutex>
#include <new>

namespace hazelmark {

namespace {

// Wide enough that a tile's rows stream, low enough that the tiles of one blend stay in the second-level cache.
constexpr int kTileWidth = 512;
constexpr int kTileHeight = 128;

struct NodeState
{
    QRegion needed;
    std::unique_ptr<PreparedState> prepared;
};
using NodeStates = std::map<const FilterNode *, NodeState>;

Tile computeTile(const FilterNode *node, const QRect &region, const NodeStates &states);

class Reader : public TileReader
{
public:
    Reader(const FilterNode *node, const NodeStates &states)
        : m_node(node)
        , m_states(states)
    {
    }

    Tile read(std::size_t input, const QRect &region) const override
    {
        return computeTile(m_node->inputs()[input].get(), region, m_states);
    }

    const PreparedState *prepared() const override
    {
        const auto state = m_states.find(m_node);
        return state == m_states.end() ? nullptr : state->second.prepared.get();
    }

private:
    const FilterNode *m_node;
    const NodeStates &m_states;
};

class Preparer : public PrepareContext
{
public:
    Preparer(const FilterNode *node, const NodeStates &states, int threads)
        : m_reader(node, states)
        , m_threads(threads)
    {
    }

    Tile read(std::size_t input, const QRect &region) const override { return m_reader.read(input, region); }
    void parallelFor(int count, const std::function<void(int)> &body) const override
    {
        hazelmark::parallelFor(count, m_threads, body);
    }

private:
    Reader m_reader;
    int m_threads;
};

Tile computeTile(const FilterNode *node, const QRect &region, const NodeStates &states)
{
    node = node->shownIn(region);
    Tile tile(region, node->channels());
    node->compute(tile, Reader(node, states));
    return tile;
}

/// Notes which parts of which nodes the render of `region` will ask for, inputs before the nodes that read them.
void collectNeeds(const FilterNode *node, const QRect &region, NodeStates &states,
                  std::vector<const FilterNode *> &order)
{
    node = node->shownIn(region);
    for (std::size_t i = 0; i < node->inputs().size(); ++i)
        collectNeeds(node->inputs()[i].get(), node->inputRegion(i, region), states, order);
    if (states.try_emplace(node).second)
        order.push_back(node);
    states[node].needed += region;
}

std::vector<QRect> tilesOf(const QRect &extent)
{
    std::vector<QRect> tiles;
    for (int y = 0; y < extent.height(); y += kTileHeight)
        for (int x = 0; x < extent.width(); x += kTileWidth)
            tiles.push_back(QRect(extent.left() + x, extent.top() + y, kTileWidth, kTileHeight) & extent);
    return tiles;
}

/// The same tiles, those of every thread's share of the picture by turns. Threads at work at the same time then write
/// to different pages of the bitmap's memory, and none waits while the system clears one for another.
std::vector<QRect> dealtOut(const std::vector<QRect> &tiles, int threads)
{
    const std::size_t shares = std::size_t(threads);
    const std::size_t size = (tiles.size() + shares - 1) / shares;
    std::vector<QRect> dealt;
    for (std::size_t i = 0; i < size; ++i)
        for (std::size_t tile = i; tile < tiles.size(); tile += size)
            dealt.push_back(tiles[tile]);
    return dealt;
}

/// Stored pixels that nothing touches go straight from bitmap to bitmap.
bool copyStored(const FilterNode *node, const QRect &region, QImage &drawn, uchar *bits, const QRect &extent)
{
    const auto *source = dynamic_cast<const SourceNode *>(node);
    if (!source || source->bitmap().format() != drawn.format())
        return false;
    const int pixelBytes = drawn.depth() / 8;
    for (int y = region.top(); y <= region.bottom(); ++y)
        std::memcpy(bits + (extent.bottom() - y) * drawn.bytesPerLine() +
                        std::size_t(region.left() - extent.left()) * std::size_t(pixelBytes),
                    source->rowAt(y) + std::size_t(region.left()) * std::size_t(pixelBytes),
                    std::size_t(region.width()) * std::size_t(pixelBytes));
    return true;
}

void packTile(const Tile &tile, int channels, QImage &drawn, uchar *bits, const QRect &extent)
{
    const QRect &region = tile.rect();
    const std::size_t width = std::size_t(region.width());
    const std::size_t offset = std::size_t(region.left() - extent.left()) * 4;
    const bool lendAlpha = channels == 4 && !tile.hasAlpha();
    const std::vector<float> ones(lendAlpha ? width : 0, 1.0f);
    for (int y = region.top(); y <= region.bottom(); ++y) {
        const float *planes[4];
        for (int c = 0; c < 4; ++c)
            planes[c] = c < tile.channels() ? tile.row(c, y) : ones.data();
        uchar *line = bits + (extent.bottom() - y) * drawn.bytesPerLine();
        if (drawn.depth() == 64)
            kernels::pixelRows().sixteen.packRgb(planes, channels, reinterpret_cast<std::uint16_t *>(line) + offset,
                                                 width);
        else
            kernels::pixelRows().eight.packRgb(planes, channels, line + offset, width);
    }
}

} // namespace

Renderer::Renderer(int threads, Progress progress)
    : m_threads(threads)
    , m_progress(std::move(progress))
{
}

QImage Renderer::draw(const FilterImage &image) const
{
    if (image.isEmpty())
        return {};
    const QRect extent = image.pixelExtent();
    const FilterNode *last = image.node().get();
    const int channels = image.hasAlpha() ? 4 : 3;
    const QImage::Format format = image.isSixteenBit()
                                      ? (channels == 4 ? QImage::Format_RGBA64 : QImage::Format_RGBX64)
                                      : (channels == 4 ? QImage::Format_RGBA8888 : QImage::Format_RGBX8888);
    QImage drawn = makeLargeBitmap(extent.size(), format);
    if (drawn.isNull())
        throw std::bad_alloc();
    uchar *const bits = drawn.bits();

    std::vector<QRect> tiles = tilesOf(extent);
    NodeStates states;
    std::vector<const FilterNode *> order;
    for (const QRect &tile : tiles)
        collectNeeds(last, tile, states, order);
    for (const FilterNode *node : order)
        states[node].prepared = node->prepare(states[node].needed, Preparer(node, states, m_threads));

    tiles = dealtOut(tiles, m_threads);
    std::mutex progressMutex;
    int done = 0;
    parallelFor(int(tiles.size()), m_threads, [&](int index) {
        const QRect &region = tiles[std::size_t(index)];
        const FilterNode *node = last->shownIn(region);
        if (!copyStored(node, region, drawn, bits, extent))
            packTile(computeTile(node, region, states), channels, drawn, bits, extent);
        if (m_progress) {
            std::lock_guard lock(progressMutex);
            m_progress(double(++done) / double(tiles.size()));
        }
    });
    return drawn;
}

} // namespace hazelmark
