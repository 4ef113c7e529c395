#pragma once

#include "CanvasSnapshots.h"
#include "PaintStep.h"

#include <QSizeF>

#include <cstddef>
#include <memory>
#include <optional>
#include <vector>

namespace hazelmark {

class PaintCanvas;

/// What a person did in one go, from press to release or by one command.
enum class PaintEdit {
    Stroke,
    Erase,
    Clear,
    Everything, ///< the whole canvas was filled
    Restore,    ///< a painting that was kept in a file took the place of the one that was there
};

/// What was painted on a canvas as edits that can be undone, on the canvas's undo stack.
///
/// Every state of the painting is the beginning of one list of steps: clearing and restoring append a step that covers
/// the canvas. So each step is kept once, in the canvas's list or, when it was undone, with its edit. Undoing takes the
/// edit's steps out of the list and draws anew what they had reached, beginning with the nearest of a few snapshots of
/// the canvas. The brush state stays as it is.
///
/// It is what updatePaintCanvasBySessionDataArray() does, on the same undo stack, but for steps: that operation would
/// copy all of the painting into records with every stroke, and would leave the canvas as it was. Main thread only.
class PaintHistory
{
public:
    /// No more than so many snapshots of the canvas are kept.
    static constexpr std::size_t kMostSnapshots = 4;

    /// `canvas` outlives the history.
    explicit PaintHistory(PaintCanvas &canvas);

    /// What was painted since the last edit becomes one: an erasing when its last step erases. False when there was
    /// nothing.
    bool commitStroke();
    /// Whether something was painted since the last edit.
    bool isStrokeUnderWay() const;
    /// Appends `steps` to the canvas's list, draws them and makes them one edit. Not during a stroke.
    void append(PaintEdit edit, const PaintStepList &steps);

    // Nothing happens where there is nothing to undo or to redo, or during a stroke.
    std::optional<PaintEdit> undoEdit() const;
    std::optional<PaintEdit> redoEdit() const;
    bool undo();
    bool redo();

    /// Forgets all edits; what is in the canvas's list now is where a history begins.
    void forget();
    /// Draws `list`, which the edits are about, anew at the frame's present size, as restoreDrawedPoints() does.
    void redraw(const std::shared_ptr<PaintStepList> &list);

    /// Tells one state of the painting from every other; undoing brings back the former one.
    quint64 state() const { return m_state; }

private:
    class Edit;
    const PaintStepList &steps() const;
    bool isBetweenEdits() const { return steps().size() == m_committed; }
    void push(PaintEdit edit, std::size_t begin);
    const Edit *editAt(int index) const;
    double workOf(std::size_t begin, std::size_t end) const;
    void keepSnapshotNow();
    void drawWithout(const PaintStepList &taken);

    PaintCanvas &m_canvas;
    CanvasSnapshots m_snapshots{kMostSnapshots};
    QSizeF m_snapshotFrame;
    std::size_t m_committed = 0; ///< steps that belong to edits
    double m_work = 0;           ///< of them
    quint64 m_state = 0;
    quint64 m_lastState = 0;
};

} // namespace hazelmark
