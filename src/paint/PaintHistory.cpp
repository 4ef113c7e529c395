#include "PaintHistory.h"

#include "PaintCanvas.h"

#include <QLineF>
#include <QUndoCommand>

#include <algorithm>
#include <cmath>

namespace hazelmark {

namespace {

/// After so many stamped pixels a snapshot is worth its memory: to stamp them again takes some ten milliseconds.
constexpr double kWorkBetweenSnapshots = 4e7;

} // namespace

class PaintHistory::Edit : public QUndoCommand
{
public:
    Edit(PaintHistory &history, PaintEdit edit, std::size_t begin)
        : m_history(history)
        , m_edit(edit)
        , m_begin(begin)
        , m_before(history.m_state)
        , m_after(++history.m_lastState)
        , m_work(history.workOf(begin, history.steps().size()))
    {
    }

    PaintEdit edit() const { return m_edit; }

    void undo() override
    {
        m_taken = m_history.m_canvas.paintSession()->takeSteps(m_begin);
        m_history.m_committed = m_begin;
        m_history.m_work -= m_work;
        m_history.m_state = m_before;
        m_history.drawWithout(m_taken);
    }

    void redo() override
    {
        PaintCanvas &canvas = m_history.m_canvas;
        if (!m_taken.empty()) { // else they are drawn: the edit has just been made
            canvas.paintSession()->addSteps(m_taken);
            canvas.drawSteps(m_begin, QRect(QPoint(), canvas.bufferSize()));
            m_taken = {};
        }
        m_history.m_committed = m_history.steps().size();
        m_history.m_work += m_work;
        m_history.m_state = m_after;
    }

private:
    PaintHistory &m_history;
    PaintEdit m_edit;
    std::size_t m_begin;
    quint64 m_before;
    quint64 m_after;
    double m_work;
    PaintStepList m_taken; ///< the edit's steps while it is undone
};

PaintHistory::PaintHistory(PaintCanvas &canvas)
    : m_canvas(canvas)
{
}

const PaintStepList &PaintHistory::steps() const
{
    return *m_canvas.arrDrawedPoints();
}

bool PaintHistory::isStrokeUnderWay() const
{
    return steps().size() > m_committed;
}

bool PaintHistory::commitStroke()
{
    if (!isStrokeUnderWay())
        return false;
    push(steps().back().eraser() ? PaintEdit::Erase : PaintEdit::Stroke, m_committed);
    return true;
}

void PaintHistory::append(PaintEdit edit, const PaintStepList &steps)
{
    keepSnapshotNow(); // to undo it would need all that it covers
    const std::size_t begin = m_committed;
    m_canvas.paintSession()->addSteps(steps);
    m_canvas.drawSteps(begin, QRect(QPoint(), m_canvas.bufferSize()));
    push(edit, begin);
}

void PaintHistory::push(PaintEdit edit, std::size_t begin)
{
    // What was undone does not come back: neither do snapshots of it.
    std::erase_if(m_snapshots, [&](const Snapshot &snapshot) { return snapshot.steps > begin; });
    m_canvas.undoStack().push(new Edit(*this, edit, begin));
    const double kept = m_snapshots.empty() ? 0 : m_snapshots.back().work;
    if (m_work - kept >= kWorkBetweenSnapshots)
        keepSnapshotNow();
}

const PaintHistory::Edit *PaintHistory::editAt(int index) const
{
    return dynamic_cast<const Edit *>(m_canvas.undoStack().command(index));
}

std::optional<PaintEdit> PaintHistory::undoEdit() const
{
    const Edit *edit = editAt(m_canvas.undoStack().index() - 1);
    return edit && isBetweenEdits() ? std::optional(edit->edit()) : std::nullopt;
}

std::optional<PaintEdit> PaintHistory::redoEdit() const
{
    const Edit *edit = editAt(m_canvas.undoStack().index());
    return edit && isBetweenEdits() ? std::optional(edit->edit()) : std::nullopt;
}

bool PaintHistory::undo()
{
    if (!undoEdit())
        return false;
    m_canvas.undoStack().undo();
    return true;
}

bool PaintHistory::redo()
{
    if (!redoEdit())
        return false;
    m_canvas.undoStack().redo();
    return true;
}

void PaintHistory::forget()
{
    m_canvas.undoStack().clear();
    m_snapshots.clear();
    m_committed = steps().size();
    m_work = 0;
    m_state = ++m_lastState;
}

void PaintHistory::redraw(const std::shared_ptr<PaintStepList> &list)
{
    m_snapshots.clear();
    m_snapshotFrame = m_canvas.canvasSize();
    std::size_t counted = 0;
    double work = 0;
    m_canvas.restoreDrawedPoints(list, [&](std::size_t drawn) {
        const std::size_t end = std::min(drawn, m_committed);
        work += workOf(counted, end);
        counted = end;
        const double kept = m_snapshots.empty() ? 0 : m_snapshots.back().work;
        if (drawn <= m_committed && work - kept >= kWorkBetweenSnapshots)
            keepSnapshot(drawn, work, m_canvas.snapshot());
    });
    m_work = work;
}

/// In stamped pixels, as the frame is now.
double PaintHistory::workOf(std::size_t begin, std::size_t end) const
{
    const QSizeF frame = m_canvas.canvasSize();
    double work = 0;
    for (std::size_t i = begin; i < end; ++i) {
        const PaintStep step = m_canvas.scalesStrokes() ? steps()[i].scaledTo(frame.width()) : steps()[i];
        const QPointF way = step.end() - step.start();
        const double length = std::hypot(way.x() * frame.width(), way.y() * frame.height());
        const double stamps = std::clamp(std::ceil(length / step.brushPixelStep()), 1.0, 1e4);
        const double stamp = std::min(double(step.pointSize()) * step.pointSize(), frame.width() * frame.height());
        work += stamps * stamp;
    }
    return std::isfinite(work) ? work : 0;
}

void PaintHistory::keepSnapshotNow()
{
    if (m_snapshotFrame != m_canvas.canvasSize())
        m_snapshots.clear();
    m_snapshotFrame = m_canvas.canvasSize();
    if (m_canvas.isDrawnSharply() && isBetweenEdits() && m_committed > 0)
        keepSnapshot(m_committed, m_work, m_canvas.snapshot());
}

void PaintHistory::keepSnapshot(std::size_t steps, double work, const QImage &pixels)
{
    const auto place = std::find_if(m_snapshots.begin(), m_snapshots.end(),
                                    [&](const Snapshot &snapshot) { return snapshot.steps >= steps; });
    if (place != m_snapshots.end() && place->steps == steps)
        return;
    m_snapshots.insert(place, {steps, work, pixels});
    if (m_snapshots.size() <= kMostSnapshots)
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

/// The canvas as it is without the steps that were just taken from the end of its list.
void PaintHistory::drawWithout(const PaintStepList &taken)
{
    const std::size_t count = steps().size();
    const bool hasSnapshots = m_snapshotFrame == m_canvas.canvasSize();
    const QRect all(QPoint(), m_canvas.bufferSize());
    const QRect clip = m_canvas.isDrawnSharply() && count > 0 ? m_canvas.boundsOf(taken.begin(), taken.end()) : all;
    std::size_t first = firstSeenStep(steps(), count);
    QImage pixels;
    for (const Snapshot &snapshot : m_snapshots) {
        if (hasSnapshots && snapshot.steps <= count && snapshot.steps > first) {
            first = snapshot.steps;
            pixels = snapshot.pixels;
        }
    }
    m_canvas.setPixels(pixels, clip);
    m_canvas.drawSteps(first, clip);
}

} // namespace hazelmark
