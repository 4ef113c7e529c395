#include "Benches.h"
#include "BrushTips.h"
#include "Comparison.h"
#include "PaintCanvas.h"

#include <QPainter>

#include <malloc.h>
#include <memory>
#include <string>

namespace hazelmark::bench {

namespace {

constexpr QSize kScreen(3840, 2160);
constexpr float kPointSize = 200;
constexpr int kStamps = 20;
constexpr Color kGreen{0, 1, 0, 1};

/// A pointer's move of 400 points on a slope, which asks for kStamps stamps.
PaintStep segment(float hardness, bool eraser)
{
    const QPointF start(1000.3 / kScreen.width(), 900.7 / kScreen.height());
    const QPointF end(1320.3 / kScreen.width(), 1140.7 / kScreen.height());
    return {kGreen, start, end, kPointSize, hardness, eraser, 0.5F, kPointSize / 10};
}

std::shared_ptr<PaintCanvas> screenCanvas()
{
    auto canvas = std::make_shared<PaintCanvas>();
    canvas->setCanvasSize(kScreen);
    return canvas;
}

/// The same stamps with Qt.
void drawTips(QImage &picture, const QImage &tip, bool eraser)
{
    QPainter painter(&picture);
    painter.setRenderHint(QPainter::SmoothPixmapTransform);
    if (eraser)
        painter.setCompositionMode(QPainter::CompositionMode_DestinationOut);
    for (int i = 0; i < kStamps; ++i) {
        const QPointF corner(900.3 + 16.0 * i, 800.7 + 12.0 * i);
        painter.drawImage(QRectF(corner, QSizeF(kPointSize, kPointSize)), tip);
    }
}

/// A single move takes less than what a clock shows well.
constexpr int kMoves = 25;

void addSegmentRow(const std::string &what, float hardness, bool eraser)
{
    auto stamped = [=, canvas = std::shared_ptr<PaintCanvas>()]() mutable {
        if (!canvas)
            canvas = screenCanvas();
        for (int i = 0; i < kMoves; ++i)
            canvas->appendStep(segment(hardness, eraser));
    };
    auto drawn = [=, picture = QImage(), tip = QImage()]() mutable {
        if (picture.isNull()) {
            picture = QImage(kScreen, QImage::Format_ARGB32_Premultiplied);
            picture.fill(0);
            tip = BrushTips::shared().tipForHardness(hardness).convertToFormat(picture.format());
        }
        for (int i = 0; i < kMoves; ++i)
            drawTips(picture, tip, eraser);
    };
    add(Comparison{"25 moves of 20 stamps of 200 points at 3840 x 2160, " + what, "QPainter::drawImage, smooth", 0.5,
                   20, stamped, drawn});
}

/// Draws strokes all over the screen from scratch.
void replay(int steps)
{
    const auto list = std::make_shared<PaintStepList>();
    for (int i = 0; i < steps; ++i) {
        const QPointF start((i * 37 % 1000) / 1250.0 + 0.1, (i * 61 % 1000) / 1250.0 + 0.1);
        list->emplace_back(kGreen, start, start + QPointF(0.004, 0.003), 64.8F, 0.0F, i % 5 == 4, 0.5F, 6.48F);
    }
    static const std::shared_ptr<PaintCanvas> canvas = screenCanvas();
    canvas->restoreDrawedPoints(list);
}

std::size_t allocatedBytes()
{
    const struct mallinfo2 info = mallinfo2();
    return info.uordblks + info.hblkhd;
}

/// What a painted canvas takes, in canvases.
double canvasMemory()
{
    const std::size_t before = allocatedBytes();
    const auto canvas = screenCanvas();
    for (int i = 0; i < 100; ++i)
        canvas->appendStep(segment(0.5F, i % 2 == 1));
    return double(allocatedBytes() - before) / (4.0 * kScreen.width() * kScreen.height());
}

} // namespace

void addPaintRows()
{
    addSegmentRow("soft", 0, false);
    addSegmentRow("half", 0.5F, false);
    addSegmentRow("hard", 1, false);
    addSegmentRow("hard eraser", 1, true);
    add(Comparison{"replay of 5000 steps", "2500 steps", 2.2, 5, [] { replay(5000); }, [] { replay(2500); }});
    add(Figure{"memory of a painted canvas", "its pixels", 1.1, canvasMemory});
}

} // namespace hazelmark::bench
