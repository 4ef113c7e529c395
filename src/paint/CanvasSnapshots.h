#pragma once

#include <QImage>

#include <cstddef>
#include <vector>

namespace hazelmark {

/// A few states of a painting's pixels on the way to the present one, from which going back begins. They are chosen so
/// that the work between them is about the same.
class CanvasSnapshots
{
public:
    struct Snapshot
    {
        std::size_t steps = 0; ///< so many are drawn in it
        double work = 0;       ///< that drawing them took, as stampingWork() counts
        QImage pixels;         ///< null where nothing is painted
    };

    /// No more than `most` are kept.
    explicit CanvasSnapshots(std::size_t most)
        : m_most(most)
    {
    }

    /// Whether drawing from the newest one on, to where `work` has been done, takes long enough for another.
    bool isDue(double work) const;
    /// Does nothing where there is one of as many steps.
    void keep(const Snapshot &snapshot);
    /// The newest one of at most `steps` and of more than `first`; without pixels and of `first` where there is none.
    Snapshot before(std::size_t steps, std::size_t first) const;
    /// Lets go of those of more steps.
    void forgetBeyond(std::size_t steps);
    void clear() { m_snapshots.clear(); }
    std::size_t count() const { return m_snapshots.size(); }

private:
    std::size_t m_most;
    std::vector<Snapshot> m_snapshots; ///< by their number of steps
};

} // namespace hazelmark
