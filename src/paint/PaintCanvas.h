#pragma once

#include "BrushTexture.h"
#include "Color.h"
#include "PaintSession.h"
#include "StampPlacement.h"

#include <QImage>
#include <QPointF>
#include <QRect>
#include <QSizeF>
#include <QUndoStack>

#include <functional>
#include <memory>
#include <vector>

namespace hazelmark {

/// The surface that lies over the photo and is painted on: the steps, the brush state, and the pixels that the steps
/// gave. Needs no window; PaintView shows one and feeds it with the pointer.
///
/// Places are in points of the canvas frame, origin top left, y downwards. The frame is real-valued; the buffer has
/// its truncated size and covers all of it. 8-bit premultiplied RGBA, transparent where nothing is painted; it takes
/// memory only while something is.
///
/// Each step is stamped once, when it is appended, onto what the buffer holds already. The whole list is drawn only
/// by restoreDrawedPoints(). Drawing a step leaves the brush state equal to that step's, except where the step covers
/// the canvas: that is no brush.
///
/// Main thread only.
class PaintCanvas
{
public:
    PaintCanvas();
    virtual ~PaintCanvas();
    PaintCanvas(const PaintCanvas &) = delete;
    PaintCanvas &operator=(const PaintCanvas &) = delete;

    QSizeF canvasSize() const { return m_canvasSize; }
    /// What is painted is stretched to the new size, so that it stays right until restoreDrawedPoints() draws it
    /// sharply.
    void setCanvasSize(QSizeF canvasSize);
    /// The frame's size truncated to whole pixels; empty when the frame is.
    QSize bufferSize() const;

    // The brush state. Setting a value draws nothing.
    const QImage &brush() const { return m_brush; }
    void setBrush(const QImage &brush) { m_brush = brush; }
    const Color &brushColor() const { return m_brushColor; }
    void setBrushColor(const Color &brushColor) { m_brushColor = brushColor; }
    /// Stamp diameter in points.
    float pointSize() const { return m_pointSize; }
    void setPointSize(float pointSize) { m_pointSize = pointSize; }
    /// Distance between two stamps in points.
    float brushPixelStep() const { return m_brushPixelStep; }
    void setBrushPixelStep(float brushPixelStep) { m_brushPixelStep = brushPixelStep; }
    float pointAlpha() const { return m_pointAlpha; }
    void setPointAlpha(float pointAlpha) { m_pointAlpha = pointAlpha; }
    float hardness() const { return m_hardness; }
    void setHardness(float hardness) { m_hardness = hardness; }
    bool eraser() const { return m_eraser; }
    void setEraser(bool eraser) { m_eraser = eraser; }
    /// The screen's tool (4 paints, 13 erases). Stored for the screen; nothing here reads it.
    int toolType() const { return m_toolType; }
    void setToolType(int toolType) { m_toolType = toolType; }

    struct BrushState
    {
        QImage brush;
        Color brushColor;
        float pointSize = 0;
        float brushPixelStep = 0;
        float pointAlpha = 0;
        float hardness = 0;
        bool eraser = false;
    };
    BrushState brushState() const
    {
        return {m_brush, m_brushColor, m_pointSize, m_brushPixelStep, m_pointAlpha, m_hardness, m_eraser};
    }
    void setBrushState(const BrushState &state);

    /// Whether point sizes and pixel steps are scaled with the frame's width since the step was painted, so that what
    /// was covered stays covered. Off at first: sizes are points of the present frame.
    bool scalesStrokes() const { return m_scalesStrokes; }
    void setScalesStrokes(bool scales) { m_scalesStrokes = scales; }

    const std::shared_ptr<PaintSession> &paintSession() const { return m_paintSession; }
    /// `session` must be there.
    void setPaintSession(std::shared_ptr<PaintSession> session) { m_paintSession = std::move(session); }
    /// The session's list object itself.
    std::shared_ptr<PaintStepList> arrDrawedPoints() const { return m_paintSession->steps(); }

    /// A step of the present brush state between two fractions of the frame.
    PaintStep paintStepFromPoint(QPointF from, QPointF to) const;
    /// Adds the step to the session and stamps it.
    void appendStep(const PaintStep &step);
    /// Stamps the newest step, unless one of its ends lies outside the frame: then it changes nothing, the brush state
    /// neither. An empty session clears the buffer.
    void drawNewestStep();
    /// Stamps a segment, in points, with the brush state as it is and the tip that was bound last. The start is
    /// stamped, the end is left to the segment that goes on from there.
    void renderLineFromPoint(QPointF from, QPointF to);

    /// Goes through the session with a colour that changes no pixel. What it leaves is the brush state of the last
    /// step that lies inside the frame. An empty session clears the buffer.
    void removeAllPixelsDrawed();
    /// Empties the buffer and gives the session a fresh list; a list that somebody else holds keeps its steps.
    void clearDrawing();
    /// Draws `steps` from scratch at the present frame size and makes that very list the session's. None or an empty
    /// one leaves an empty session. Steps with an end outside the frame are skipped, not clipped.
    /// `drawn` hears, now and then, how many steps the buffer holds by then.
    using Progress = std::function<void(std::size_t steps)>;
    void restoreDrawedPoints(const std::shared_ptr<PaintStepList> &steps, const Progress &drawn = {});

    // Parts of a replay.

    /// Draws the session's steps from number `first` on, onto what the buffer holds, as a replay does; pixels outside
    /// `clip` stay as they are. Unlike a replay it leaves the brush state alone.
    void drawSteps(std::size_t first, const QRect &clip);
    /// Puts `pixels`, of the buffer's size, into the buffer, inside `clip`; none stand for transparent ones.
    void setPixels(const QImage &pixels, const QRect &clip);
    /// The pixels that some steps may reach at the present frame size.
    QRect boundsOf(PaintStepList::const_iterator begin, PaintStepList::const_iterator end) const;
    /// Whether the buffer is what a replay would draw, and not stretched from another frame's size.
    bool isDrawnSharply() const { return m_buffer.isNull() || m_drawnSize == m_canvasSize; }
    /// Called after each step that the pointer appends.
    void setStepAppended(std::function<void()> stepAppended) { m_stepAppended = std::move(stepAppended); }

    /// Replaces the session's steps by those of the records, undoably (undoStack()), and draws as after one new step.
    void updatePaintCanvasBySessionDataArray(const QVariantList &dataArray);
    QUndoStack &undoStack() { return m_undoStack; }

    /// The pixels at bufferSize(), Format_RGBA8888_Premultiplied, fully transparent when nothing was painted. Shares
    /// its memory with the canvas until the next stamp. Null when the frame is empty.
    QImage snapshot();

    // The pointer, in points of the frame.
    void mouseDown(QPointF place);
    void mouseDragged(QPointF place);
    void mouseUp();
    /// Posts "notificationBurshDrawedRegionUpdated".
    void sendDrawingEndedNotification();

protected:
    /// Some pixels changed: in pixels of the buffer, clipped to it.
    virtual void bufferChanged(const QRect &rect);
    /// The pixels as they are kept: null when nothing is painted, of another size than bufferSize() when the frame
    /// changed and nobody has asked for the pixels since.
    const QImage &buffer() const { return m_buffer; }
    void clearBuffer();

private:
    void syncBrushState(const PaintStep &step);
    void bindBrush();
    void drawStep(const PaintStep &step);
    void loadSession(const QVariantList &dataArray);
    void fitBufferToFrame();

    StampPainter boundPainter();
    void drawSegments(const std::vector<StampedSegment> &segments, const QRect &clip);
    void replay(std::size_t first, const QRect &clip, const Progress &drawn);
    PaintStep asDrawn(const PaintStep &step) const
    {
        return m_scalesStrokes ? step.scaledTo(m_canvasSize.width()) : step;
    }

    std::shared_ptr<PaintSession> m_paintSession;
    QSizeF m_canvasSize;
    QImage m_buffer;
    QSizeF m_drawnSize; ///< the frame that the buffer's content was drawn for; empty once it was stretched
    bool m_scalesStrokes = false;

    QImage m_brush;
    BrushTexture m_brushTexture;
    Color m_brushColor;
    float m_pointSize = 0;
    float m_brushPixelStep = 0;
    float m_pointAlpha = 0;
    float m_hardness = 0;
    bool m_eraser = false;
    int m_toolType = 0;

    QPointF m_firstLocation; ///< the previous pointer position, as a fraction of the frame
    QVariantList m_sessionPrevDataArray;
    StampCentres m_centres; ///< reused by every segment, never shrunk
    QUndoStack m_undoStack;
    std::function<void()> m_stepAppended;
};

} // namespace hazelmark
