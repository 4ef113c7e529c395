#pragma once

#include "Tile.h"

#include <QRect>
#include <QRegion>

#include <functional>
#include <memory>
#include <optional>
#include <vector>

namespace hazelmark {

class FilterNode;
using FilterNodePtr = std::shared_ptr<const FilterNode>;

/// What a node computed once for a whole render, before its tiles. Nodes derive their own.
struct PreparedState
{
    virtual ~PreparedState() = default;
};

/// How a node reaches its inputs and its prepared state while a tile is computed. The renderer implements it.
class TileReader
{
public:
    virtual ~TileReader() = default;
    /// The pixels of `region` of the node's given input; computed on the calling thread.
    virtual Tile read(std::size_t input, const QRect &region) const = 0;
    /// What the node's prepare() handed back in this render, or null.
    virtual const PreparedState *prepared() const { return nullptr; }
};

/// The same while a node prepares: all threads of the render are its own.
class PrepareContext : public TileReader
{
public:
    /// Calls body(0) .. body(count - 1), spread over the render's threads; returns when all are done.
    virtual void parallelFor(int count, const std::function<void(int)> &body) const = 0;
};

/// One step of a filter graph, immutable. It says which region of its inputs it needs for a region of its output and
/// how to compute that region; tiles and threads are the renderer's business.
///
/// Coordinates are whole pixels, origin at the bottom left, y upwards: QRect(x, y, w, h) covers rows y .. y + h - 1,
/// and row y lies below row y + 1.
class FilterNode
{
public:
    explicit FilterNode(std::vector<FilterNodePtr> inputs = {});
    virtual ~FilterNode();
    FilterNode(const FilterNode &) = delete;
    FilterNode &operator=(const FilterNode &) = delete;

    const std::vector<FilterNodePtr> &inputs() const { return m_inputs; }

    /// 3 or 4 planes, or 1 for a node that yields coverage alone; by default as many as the input with the most.
    virtual int channels() const;

    /// The region of input `input` that compute() reads for `region` of the output; `region` itself by default.
    virtual QRect inputRegion(std::size_t input, const QRect &region) const;

    /// Fills `result` (its rect and channel count are set; the pixels are not) from the inputs.
    virtual void compute(Tile &result, const TileReader &inputs) const = 0;

    /// The input whose pixels the output equals all over `region`, if the node can tell cheaply. The renderer then
    /// never asks for the node's own pixels there, nor for those of its other inputs.
    virtual std::optional<std::size_t> passesThrough(const QRect &region) const;

    /// The node whose pixels show in `region` of this one: itself, or the end of a chain that hands them through.
    const FilterNode *shownIn(const QRect &region) const;

    /// True only if plane `channel` is 0 all over `region`, and the node can tell without computing it.
    virtual bool isZero(int channel, const QRect &region) const;

    /// A node that yields plane `channel` of this one alone, if there is a cheaper way than computing all of them.
    virtual FilterNodePtr singlePlane(int channel) const;

    /// Called once a render, before any compute(), with every part of the output that compute() will be asked for
    /// (as far as the render needs this node at all). What it returns reaches compute() as TileReader::prepared().
    virtual std::unique_ptr<PreparedState> prepare(const QRegion &needed, const PrepareContext &context) const;

private:
    std::vector<FilterNodePtr> m_inputs;
};

} // namespace hazelmark
