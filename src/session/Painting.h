#pragma once

#include "PaintHistory.h"
#include "PaintStep.h"
#include "PhotoImage.h"
#include "ScaledPainting.h"
#include "StrokesFile.h"

#include <QImage>
#include <QSizeF>

#include <cstddef>
#include <memory>
#include <vector>

namespace hazelmark {

class PaintCanvas;

/// What is painted over the open photo: the tool, the strokes on the canvas, and the mask that was made of them last.
/// Main thread only.
class Painting
{
public:
    enum Tool : qint32 {
        kToolPaint = 4,
        kToolErase = 13,
        kToolNone = 14, ///< no painting: before a photo is open, and for a moment while one is opened
    };

    /// `canvas` outlives the painting. Its strokes keep to the picture when its size changes.
    explicit Painting(PaintCanvas &canvas);

    qint32 toolType() const { return m_toolType; }
    void setToolType(qint32 toolType) { m_toolType = toolType; }
    bool isPainting() const { return m_toolType == kToolPaint || m_toolType == kToolErase; }

    /// Nothing was painted, or it was cleared since.
    bool isEmpty() const;
    /// Everything was blurred, and nothing was done since.
    bool isFull() const;
    /// The canvas's own list, as it was kept last. A redraw draws it.
    const std::shared_ptr<PaintStepList> &strokes() const { return m_strokes; }
    void keepStrokes();
    /// Draws the strokes sharply at the canvas's present size, and as wide in the picture as they were painted.
    void redraw();

    /// The edits since the last clearing.
    PaintHistory &history() { return m_history; }
    const PaintHistory &history() const { return m_history; }
    /// Fills the canvas or empties it; one edit. Not during a stroke.
    void blurEverything();
    void clearPainting();
    /// What is painted, for a file: the steps before the last one that covers the canvas are left out, the others have
    /// the sizes that they have on the canvas as it is.
    StrokesFile file() const;
    /// Puts the steps of a file in the place of what is painted; one edit. Not during a stroke.
    void replaceBy(const StrokesFile &painting);
    /// How much of the canvas is painted, 0..1; of a large one to within a few thousandths.
    double paintedFraction() const;
    /// In pixels: a painting has no more.
    void setPhotoSize(QSizeF photo) { m_photoSize = photo; }
    /// A stroke begins at `zoom` times the size at fit: from now on the painting is drawn at least as finely.
    void raiseScale(double zoom);
    /// That stroke was taken back.
    void lowerScale(double zoom);
    /// All of it as it is now, at the scale at which it is as fine as it was painted.
    ScaledPainting scaled() const;
    /// The pixels of the canvas; null when nothing is painted.
    QImage canvas() const;

    /// Every clearing leaves the canvas with a list of its own, and that is the one which is kept: strokes on the photo
    /// before never come back, and one that is under way is in it.
    void clear();
    /// No tool, no mask, no strokes.
    void reset();

    /// The canvas over opaque black: green where the photo is to be blurred. Null after a reset.
    const PhotoImagePtr &maskImage() const { return m_maskImage; }
    /// Makes the mask from the canvas, where a tool is in force; else the one that is there stays.
    void updateMask();

    /// Two blank images at the photo's size on the screen, which nothing draws into.
    void loadInitMaskImages(QSizeF size);
    void scaleInitMaskImages(QSizeF size);

    /// Tells one state of the painting from another: a redraw changes nothing of it.
    struct Version
    {
        quint64 state = 0; ///< of the history
        std::size_t steps = 0;
        bool operator==(const Version &) const = default;
    };
    Version version() const { return {m_history.state(), m_strokes->size()}; }

private:
    /// A stroke that was begun near the photo, also one that was undone: what is done again is as fine.
    struct BegunAt
    {
        std::size_t step;
        double canvasWidth; ///< of the canvas as it was seen, in points
    };

    PaintCanvas &m_canvas;
    PaintHistory m_history;
    qint32 m_toolType = kToolNone;
    std::shared_ptr<PaintStepList> m_strokes = std::make_shared<PaintStepList>();
    std::vector<BegunAt> m_scales;
    QSizeF m_photoSize;
    PhotoImagePtr m_maskImage;
    qint64 m_maskCanvasKey = 0; ///< which pixels of the canvas `m_maskImage` was made from
    PhotoImagePtr m_maskGreenImageWithCustomPaint;
    PhotoImagePtr m_maskImageWithCustomPaint;
};

} // namespace hazelmark
