#include "BrushControls.h"

#include "FloatSlider.h"
#include "IMGButton.h"
#include "PaintView.h"
#include "Painting.h"
#include "SettingsPanel.h"

#include <cmath>

namespace hazelmark {

namespace {

QString truncated(double value)
{
    return QString::number(static_cast<int>(value));
}

} // namespace

BrushControls::BrushControls(SettingsPanel &panel, PaintView &canvas, Painting &painting)
    : m_panel(panel)
    , m_canvas(canvas)
    , m_painting(painting)
    , m_paintControl(&canvas)
{
    m_paintControl.setColor({0, 1, 0, 1});
    connect(&panel, &SettingsPanel::segmentPaintEraseTapped, this,
            [this](bool eraser) { segmentPaintEraseTapped(eraser ? m_panel.btnEraser() : m_panel.btnPaint()); });
    connect(&panel, &SettingsPanel::brushDiameterSlid, this, &BrushControls::hadleSliderBrushDiameter);
    connect(&panel, &SettingsPanel::brushHardnessSlid, this, &BrushControls::hadleSliderBrushHardness);
    connect(&panel, &SettingsPanel::brushSizeAutoSlid, this, &BrushControls::handleSliderBrushSizeAutoMode);
    connect(&panel, &SettingsPanel::brushValuesSet, this, [this] {
        if (m_painting.isPainting()) { // the texts are rounded already
            setHardness();
            setDiameter();
        }
    });
}

void BrushControls::segmentPaintEraseTapped(const QObject *sender)
{
    const bool paints = sender == m_panel.btnPaint();
    m_paintControl.setEraser(!paints);
    m_painting.setToolType(paints ? Painting::kToolPaint : Painting::kToolErase);
    showToolInForce();
}

void BrushControls::hadleSliderBrushDiameter()
{
    if (!m_painting.isPainting())
        return;
    setDiameter();
    m_panel.field(Setting::BrushDiameter)->setText(truncated(m_panel.slider(Setting::BrushDiameter)->value()));
}

void BrushControls::hadleSliderBrushHardness()
{
    if (!m_painting.isPainting())
        return;
    setHardness();
    m_panel.field(Setting::BrushHardness)->setText(truncated(m_panel.slider(Setting::BrushHardness)->value()));
    m_canvas.setCursor(Qt::ArrowCursor);
}

void BrushControls::handleSliderBrushSizeAutoMode()
{
    m_panel.setAllTextsForSliders();
    const double value = m_panel.slider(Setting::BrushSizeAuto)->value();
    m_paintControl.setLineWidth(static_cast<float>(static_cast<int>(std::round(static_cast<float>(value)))));
    m_panel.field(Setting::BrushDiameter)->setText(truncated(value));
    m_canvas.setCursor(Qt::ArrowCursor);
}

void BrushControls::apply()
{
    setHardness();
    setDiameter();
    m_paintControl.setEraser(m_painting.toolType() != Painting::kToolPaint);
    setHardness();
    showToolInForce();
}

void BrushControls::showToolInForce()
{
    m_panel.showTool(m_canvas.eraser());
}

void BrushControls::setDiameter()
{
    m_paintControl.setLineWidth(static_cast<float>(m_panel.slider(Setting::BrushDiameter)->value()));
}

void BrushControls::setHardness()
{
    const double value = m_panel.slider(Setting::BrushHardness)->value();
    const float hardness = std::round(static_cast<float>(value)) / 100;
    m_paintControl.setHardness(hardness);
    m_canvas.setHardness(hardness);
}

} // namespace hazelmark
