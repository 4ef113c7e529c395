#include "PaintHistory.h"

#include "PaintCanvas.h"

#include "StampPlacement.h"

#include <QUndoCommand>

#include <algorithm>

namespace hazelmark {

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
    m_snapshots.forgetBeyond(begin);
    m_canvas.undoStack().push(new Edit(*this, edit, begin));
    if (m_snapshots.isDue(m_work))
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
        if (drawn <= m_committed && m_snapshots.isDue(work))
            m_snapshots.keep({drawn, work, m_canvas.snapshot()});
    });
    m_work = work;
}

/// As the frame is now.
double PaintHistory::workOf(std::size_t begin, std::size_t end) const
{
    const QSizeF frame = m_canvas.canvasSize();
    double work = 0;
    for (std::size_t i = begin; i < end; ++i) {
        const PaintStep step = m_canvas.scalesStrokes() ? steps()[i].scaledTo(frame.width()) : steps()[i];
        work += stampingWork(step, frame, 1, frame);
    }
    return work;
}

void PaintHistory::keepSnapshotNow()
{
    if (m_snapshotFrame != m_canvas.canvasSize())
        m_snapshots.clear();
    m_snapshotFrame = m_canvas.canvasSize();
    if (m_canvas.isDrawnSharply() && isBetweenEdits() && m_committed > 0)
        m_snapshots.keep({m_committed, m_work, m_canvas.snapshot()});
}

/// The canvas as it is without the steps that were just taken from the end of its list.
void PaintHistory::drawWithout(const PaintStepList &taken)
{
    const std::size_t count = steps().size();
    const QRect all(QPoint(), m_canvas.bufferSize());
    const QRect clip = m_canvas.isDrawnSharply() && count > 0 ? m_canvas.boundsOf(taken.begin(), taken.end()) : all;
    CanvasSnapshots::Snapshot from{firstSeenStep(steps(), count), 0, {}};
    if (m_snapshotFrame == m_canvas.canvasSize())
        from = m_snapshots.before(count, from.steps);
    m_canvas.setPixels(from.pixels, clip);
    m_canvas.drawSteps(from.steps, clip);
}

} // namespace hazelmark
