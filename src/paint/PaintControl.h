#pragma once

#include "Color.h"

#include <QImage>

namespace hazelmark {

class PaintCanvas;

/// The brush as the person sets it. Turns diameter, hardness, opacity, colour and erase mode into the drawing
/// parameters of a canvas and pushes every change to it at once. It never reads back: what a replay leaves in the
/// canvas stays there until the value is set here again.
class PaintControl
{
public:
    /// With the defaults, but without a canvas that could take them: see awakeFromNib().
    PaintControl();
    explicit PaintControl(PaintCanvas *paintView);
    /// Pushes the defaults to a canvas that was set after construction.
    void awakeFromNib();

    bool eraser() const { return m_eraser; }
    void setEraser(bool eraser);
    const Color &color() const { return m_color; }
    /// The default colour is transparent: it paints nothing until a colour is set.
    void setColor(const Color &color);
    /// The opacity setting, 0..1. No tip depends on it.
    float alpha() const { return m_alpha; }
    void setAlpha(float alpha);
    /// 0..1. Changes the tip alone: the stamp size follows at the next setLineWidth().
    float hardness() const { return m_hardness; }
    void setHardness(float hardness);
    /// The brush diameter in canvas points. A soft brush gets stamps larger than that.
    float lineWidth() const { return m_lineWidth; }
    void setLineWidth(float lineWidth);

    /// How many times its size the canvas is shown. The diameter is one on the screen: the canvas gets it divided by
    /// this, the one that was set last at once.
    void setZoom(double zoom);

    /// The tip of the current settings, looked up anew.
    QImage brushImage() const;
    /// Keeps an image that nothing here reads: the getter looks the tip up.
    void setBrushImage(const QImage &brushImage) { m_brushImage = brushImage; }
    /// The tip for a hardness. The same tip serves paint and erase, and opacity never changes it.
    static QImage brushImageWithHardness(float hardness, bool eraser, float alpha);

    PaintCanvas *paintView() const { return m_paintView; }
    void setPaintView(PaintCanvas *paintView) { m_paintView = paintView; }

private:
    void loadDefaults();
    void pushSizes();

    PaintCanvas *m_paintView = nullptr;
    Color m_color;
    QImage m_brushImage;
    float m_lineWidth = 0;
    float m_stampSize = 0; ///< on the screen
    double m_zoom = 1;
    float m_alpha = 0;
    float m_hardness = 0;
    bool m_eraser = false;
};

} // namespace hazelmark
