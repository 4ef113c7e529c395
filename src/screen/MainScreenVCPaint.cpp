// The screen's side of painting, and the previews that it asks for.
#include "MainScreenVC.h"

#include "DrawTrackingView.h"
#include "FloatSlider.h"
#include "IMGButton.h"
#include "PaintView.h"
#include "SettingsPanel.h"
#include "Utils.h"

#include <QCursor>
#include <QLineEdit>
#include <QTimer>

#include <chrono>
#include <cmath>

namespace hazelmark {

namespace {

using namespace std::chrono_literals;

constexpr auto kRedrawDelay = 1000ms;
/// The replay leaves the stamp size of the last step behind; so much later the slider's is back.
constexpr auto kDiameterDelay = 500ms;

QString truncated(double value)
{
    return QString::number(static_cast<int>(value));
}

} // namespace

void MainScreenVC::segmentPaintEraseTapped(const QObject *sender)
{
    const bool paints = sender == panel().btnPaint();
    m_paintControl.setEraser(!paints);
    m_toolType = paints ? kToolPaint : kToolErase;
    showToolInForce();
}

/// A replay leaves the canvas with the eraser flag of its last step: the highlight tells what a stroke will do.
void MainScreenVC::showToolInForce()
{
    panel().showTool(m_view->paintView->eraser());
}

void MainScreenVC::hadleSliderBrushDiameter()
{
    if (!isPainting())
        return;
    SettingsPanel *settings = &panel();
    const double value = settings->slider(Setting::BrushDiameter)->value();
    m_paintControl.setLineWidth(static_cast<float>(value));
    settings->field(Setting::BrushDiameter)->setText(truncated(value));
}

void MainScreenVC::applyBrushHardness()
{
    const double value = panel().slider(Setting::BrushHardness)->value();
    const float hardness = std::round(static_cast<float>(value)) / 100;
    m_paintControl.setHardness(hardness);
    m_view->paintView->setHardness(hardness);
}

void MainScreenVC::hadleSliderBrushHardness()
{
    if (!isPainting())
        return;
    applyBrushHardness();
    SettingsPanel *settings = &panel();
    settings->field(Setting::BrushHardness)->setText(truncated(settings->slider(Setting::BrushHardness)->value()));
    setArrowCursor();
}

void MainScreenVC::handleSliderBrushSizeAutoMode()
{
    SettingsPanel *settings = &panel();
    settings->setAllTextsForSliders();
    const double value = settings->slider(Setting::BrushSizeAuto)->value();
    m_paintControl.setLineWidth(static_cast<float>(static_cast<int>(std::round(static_cast<float>(value)))));
    settings->field(Setting::BrushDiameter)->setText(truncated(value));
    setArrowCursor();
}

/// Diameter or hardness were typed or reset: both reach the brush, the texts are rounded already.
void MainScreenVC::applyBrushValues()
{
    if (!isPainting())
        return;
    applyBrushHardness();
    const double diameter = panel().slider(Setting::BrushDiameter)->value();
    m_paintControl.setLineWidth(static_cast<float>(diameter));
}

void MainScreenVC::setArrowCursor()
{
    m_view->paintView->setCursor(Qt::ArrowCursor);
}

void MainScreenVC::mousemoveOutFromImageRegion()
{
    if (!isPainting())
        return;
    m_view->paintView->hide();
    m_view->drawTrackingView->show();
}

void MainScreenVC::mousemoveInsideImageRegion()
{
    if (isPainting())
        m_view->paintView->show();
}

/// After an opening or a new layout no event tells whether the pointer is over the photo. A stroke that has left it
/// goes on; the canvas notices by itself when the button is let go.
void MainScreenVC::checkPointerOverPhoto()
{
    if (!isPainting())
        return;
    const QPointF pointer = m_view->vwPreviewContainer->mapFromGlobal(QPointF(QCursor::pos()));
    if (m_view->photoFrame().contains(pointer))
        mousemoveInsideImageRegion();
    else if (!m_view->paintView->isStrokeUnderWay())
        mousemoveOutFromImageRegion();
}

void MainScreenVC::brushDrawedRegionUpdate()
{
    if (!isPainting())
        return;
    m_arrDrawedPoints = m_view->paintView->arrDrawedPoints();
    btnProcessTapped();
}

void MainScreenVC::loadInitMaskImages()
{
    const auto blank = [this] {
        const PhotoImagePtr image = PhotoImage::fromBitmap({});
        image->setSize(m_view->photoFrame().size());
        return image;
    };
    m_maskGreenImageWithCustomPaint = blank();
    m_maskImageWithCustomPaint = blank();
}

/// Every clearing leaves the canvas with a list of its own, and the one that is redrawn later is always that: strokes
/// on the photo before never come back, and one that is under way is in it.
void MainScreenVC::clearCanvas()
{
    m_view->paintView->clearDrawing();
    m_arrDrawedPoints = m_view->paintView->arrDrawedPoints();
    updateUnsavedMark();
}

void MainScreenVC::adjustPaintEraseview()
{
    resizeImageToFitContainer(m_inputImage);
    const QSizeF size = m_view->photoFrame().size();
    m_maskGreenImageWithCustomPaint = Utils::sharedUtils().scaleImage(m_maskGreenImageWithCustomPaint, size);
    m_maskImageWithCustomPaint = Utils::sharedUtils().scaleImage(m_maskImageWithCustomPaint, size);
    m_view->paintView->show();
    m_view->paintView->setToolType(m_toolType);
    applyBrushHardness();
    const double diameter = panel().slider(Setting::BrushDiameter)->value();
    m_paintControl.setLineWidth(static_cast<float>(diameter));
    m_paintControl.setEraser(m_toolType != kToolPaint);
    applyBrushHardness();
    showToolInForce();
    QTimer::singleShot(kRedrawDelay, this, &MainScreenVC::drawPaintCustomAlfterDelay);
    checkPointerOverPhoto();
}

void MainScreenVC::drawPaintCustomAlfterDelay()
{
    PaintView *canvas = m_view->paintView;
    canvas->clearDrawing();
    canvas->restoreDrawedPoints(m_arrDrawedPoints);
    m_arrDrawedPoints = canvas->arrDrawedPoints();
    showToolInForce();
    btnProcessTapped();
    QTimer::singleShot(kDiameterDelay, this, &MainScreenVC::hadleSliderBrushDiameter);
}

/// In any other tool state the mask that is there is kept.
void MainScreenVC::takeMask()
{
    if (!isPainting())
        return;
    const QImage canvas = m_view->paintView->snapshot();
    // A slider that is dragged asks again and again over the same strokes.
    if (!m_maskImage || canvas.cacheKey() != m_maskCanvasKey) {
        const PhotoImagePtr picture = canvas.isNull() ? nullptr : PhotoImage::fromBitmap(canvas);
        m_maskImage = Utils::sharedUtils().addBackgroundToImage(picture, Qt::black);
    }
    m_maskCanvasKey = canvas.cacheKey();
}

/// All the green that is seen goes into the export: a stroke that is under way, and one whose preview is still to come.
void MainScreenVC::finishPainting()
{
    m_view->paintView->finishStroke();
    if (!m_view->paintView->arrDrawedPoints()->empty())
        takeMask();
}

void MainScreenVC::btnProcessTapped()
{
    m_previewRequests.run([this] { applyeffectOnPreviewInBackground(); }, [] {});
}

/// On a thread of the request queue: the work itself starts on the main thread.
void MainScreenVC::applyeffectOnPreviewInBackground()
{
    QMetaObject::invokeMethod(this, &MainScreenVC::applyCustomEnhanceFilterOnPreviewImage, Qt::QueuedConnection);
}

void MainScreenVC::applyCustomEnhanceFilterOnPreviewImage()
{
    setLastExportedImage(nullptr);
    takeMask();
    if (!m_resizedInputImage || (!m_maskImage && !m_overlayImage))
        return;
    m_previews.setSource(m_resizedInputImage, m_maskImage);
    m_previews.request(createPresetObjectFromSettingWithTitle(QString()));
}

} // namespace hazelmark
