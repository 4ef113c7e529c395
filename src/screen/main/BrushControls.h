#pragma once

#include "PaintControl.h"

#include <QObject>

namespace hazelmark {

class PaintView;
class Painting;
class SettingsPanel;

/// The brush as the panel's controls hold it, on its way to the canvas: the tool, the diameter, the hardness.
class BrushControls : public QObject
{
    Q_OBJECT

public:
    /// All outlive it. It listens to the panel by itself.
    BrushControls(SettingsPanel &panel, PaintView &canvas, Painting &painting);

    /// `sender`: the panel's button for painting; any other means erasing.
    void segmentPaintEraseTapped(const QObject *sender);
    // The sliders' actions: the first two do nothing without a tool.
    void hadleSliderBrushDiameter();
    /// The stamps keep their size.
    void hadleSliderBrushHardness();
    void handleSliderBrushSizeAutoMode();

    /// How many times its size the canvas is shown: the circle stays as large on the screen as it is.
    void setZoom(double zoom) { m_paintControl.setZoom(zoom); }

    /// All that the controls hold, whatever the tool.
    void apply();
    /// A replay leaves the canvas with the eraser flag of its last step: the highlight tells what a stroke will do.
    void showToolInForce();

private:
    void setDiameter();
    void setHardness();

    SettingsPanel &m_panel;
    PaintView &m_canvas;
    Painting &m_painting;
    PaintControl m_paintControl;
};

} // namespace hazelmark
