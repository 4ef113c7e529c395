#include "FilterNode.h"

#include <algorithm>

namespace hazelmark {

FilterNode::FilterNode(std::vector<FilterNodePtr> inputs)
    : m_inputs(std::move(inputs))
{
}

FilterNode::~FilterNode() = default;

int FilterNode::channels() const
{
    int most = 1;
    for (const FilterNodePtr &input : m_inputs)
        most = std::max(most, input->channels());
    return most;
}

QRect FilterNode::inputRegion(std::size_t, const QRect &region) const
{
    return region;
}

std::optional<std::size_t> FilterNode::passesThrough(const QRect &) const
{
    return std::nullopt;
}

const FilterNode *FilterNode::shownIn(const QRect &region) const
{
    const FilterNode *node = this;
    while (const std::optional<std::size_t> input = node->passesThrough(region))
        node = node->inputs()[*input].get();
    return node;
}

bool FilterNode::isZero(int, const QRect &) const
{
    return false;
}

FilterNodePtr FilterNode::singlePlane(int) const
{
    return nullptr;
}

std::unique_ptr<PreparedState> FilterNode::prepare(const QRegion &, const PrepareContext &) const
{
    return nullptr;
}

} // namespace hazelmark
