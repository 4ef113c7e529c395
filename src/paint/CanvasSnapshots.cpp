#include "CanvasSnapshots.h"

#include <algorithm>
#include <cmath>

namespace hazelmark {

namespace {

/// To do this again takes some ten milliseconds, which is worth the memory of a snapshot.
constexpr double kWorkBetweenSnapshots = 8e7;

} // namespace

bool CanvasSnapshots::isDue(double work) const
{
    return work - (m_snapshots.empty() ? 0 : m_snapshots.back().work) >= kWorkBetweenSnapshots;
}

void CanvasSnapshots::keep(const Snapshot &snapshot)
{
    const auto place = std::find_if(m_snapshots.begin(), m_snapshots.end(),
                                    [&](const Snapshot &kept) { return kept.steps >= snapshot.steps; });
    if (place != m_snapshots.end() && place->steps == snapshot.steps)
        return;
    m_snapshots.insert(place, snapshot);
    if (m_snapshots.size() <= m_most)
        return;
    // The newest stays; of the others goes the one whose place the others fill best.
    std::size_t spare = 0;
    double least = INFINITY;
    for (std::size_t i = 0; i + 1 < m_snapshots.size(); ++i) {
        const double gap = m_snapshots[i + 1].work - (i > 0 ? m_snapshots[i - 1].work : 0);
        if (gap < least) {
            least = gap;
            spare = i;
        }
    }
    m_snapshots.erase(m_snapshots.begin() + std::ptrdiff_t(spare));
}

CanvasSnapshots::Snapshot CanvasSnapshots::before(std::size_t steps, std::size_t first) const
{
    Snapshot newest{first, 0, {}};
    for (const Snapshot &snapshot : m_snapshots) {
        if (snapshot.steps <= steps && snapshot.steps > newest.steps)
            newest = snapshot;
    }
    return newest;
}

void CanvasSnapshots::forgetBeyond(std::size_t steps)
{
    std::erase_if(m_snapshots, [&](const Snapshot &snapshot) { return snapshot.steps > steps; });
}

} // namespace hazelmark
