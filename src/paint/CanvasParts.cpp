#include "CanvasParts.h"

#include <algorithm>
#include <utility>

namespace hazelmark {

namespace {

/// Parts are this much larger than what is asked for, so that the two that a picture needs are mostly one.
constexpr int kAmple = 8;
constexpr std::size_t kMostSnapshots = 2;

} // namespace

const CanvasPart &CanvasParts::part(const ScaledPainting &painting, double scale, const QRect &rect, int threads)
{
    const QRect wanted = rect & QRect(QPoint(), CanvasPart::canvasSize(painting.frame, scale));
    const QRect ample = wanted.adjusted(-kAmple, -kAmple, kAmple, kAmple);
    const auto known = std::find_if(m_kept.begin(), m_kept.end(), [&](const Kept &kept) {
        return kept.part.frame() == painting.frame && kept.part.scale() == scale &&
               (kept.part.isOf(*painting.steps, *kept.steps) || kept.part.isAheadOf(*painting.steps, *kept.steps));
    });
    Kept part{CanvasPart(painting.frame, scale, ample), painting.steps, CanvasSnapshots(kMostSnapshots)};
    if (known != m_kept.end()) {
        part = std::move(*known);
        m_kept.erase(known);
        takeBack(part, painting.steps->size(), threads);
        move(part, part.part.rect().contains(wanted) ? part.part.rect() : ample, threads);
        part.steps = painting.steps;
    }
    drawOn(part, threads);
    if (m_kept.size() > 1)
        m_kept.pop_back();
    return m_kept.insert(m_kept.begin(), std::move(part))->part;
}

void CanvasParts::takeBack(Kept &kept, std::size_t count, int threads)
{
    if (kept.part.stepCount() <= count)
        return;
    for (std::size_t i = count; i < kept.part.stepCount(); ++i)
        kept.work -= kept.part.workOf((*kept.steps)[i]);
    kept.work = std::max(kept.work, 0.0);
    kept.snapshots.forgetBeyond(count);
    kept.part.takeBack(*kept.steps, count, kept.snapshots.before(count, 0), threads);
}

/// What is in it is about as much work wherever it is, so that a snapshot comes before the next stroke.
void CanvasParts::move(Kept &kept, const QRect &rect, int threads)
{
    if (rect == kept.part.rect())
        return;
    kept.part = kept.part.movedTo(rect, *kept.steps, threads);
    kept.snapshots.clear();
}

/// Draws what has come since, and stops for snapshots on the way.
void CanvasParts::drawOn(Kept &kept, int threads)
{
    const PaintStepList &steps = *kept.steps;
    for (std::size_t i = kept.part.stepCount(); i < steps.size(); ++i) {
        if (kept.snapshots.isDue(kept.work)) {
            kept.part.drawOn(steps, i, threads);
            kept.snapshots.keep({i, kept.work, kept.part.pixels()});
        }
        kept.work += kept.part.workOf(steps[i]);
    }
    kept.part.drawOn(steps, steps.size(), threads);
}

} // namespace hazelmark
