#include "Benches.h"
#include "Comparison.h"
#include "PaintCanvas.h"
#include "Painting.h"
#include "PaintingKeeper.h"
#include "PhotoFile.h"

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QTemporaryDir>

#include <algorithm>
#include <cmath>
#include <limits>

namespace hazelmark::bench {

namespace {

constexpr int kStrokes = 500;
constexpr int kMovesOfAStroke = 30;

/// 500 strokes all over a large screen: curves of some 600 points with a soft brush of 100 points, every fifth erasing.
class PaintedScreen
{
public:
    PaintedScreen()
    {
        m_canvas.setCanvasSize({3840, 2160});
        m_painting.setToolType(Painting::kToolPaint);
        m_canvas.setBrushColor({0, 1, 0, 1});
        m_canvas.setPointSize(162);
        m_canvas.setBrushPixelStep(16.2F);
        for (int i = 0; i < kStrokes; ++i)
            stroke(i);
    }

    void stroke(int number)
    {
        m_canvas.setEraser(number % 5 == 4);
        const QPointF start(400 + number * 373 % 3000, 300 + number * 619 % 1500);
        m_canvas.mouseDown(start);
        for (int move = 1; move <= kMovesOfAStroke; ++move) {
            const double turn = move * 0.1 + number;
            m_canvas.mouseDragged(start + move * QPointF(12 * std::cos(turn), 12 * std::sin(turn)));
        }
        m_painting.keepStrokes();
        m_painting.history().commitStroke();
    }

    Painting &painting() { return m_painting; }

private:
    PaintCanvas m_canvas;
    Painting m_painting{m_canvas};
};

double secondsSince(const QElapsedTimer &clock)
{
    return double(clock.nsecsElapsed()) * 1e-9;
}

/// The slowest of all that can be undone, each after the other; the least of some turns counts.
double undoRatio(bool redrawn)
{
    PaintedScreen screen;
    double least = std::numeric_limits<double>::infinity();
    for (int turn = 0; turn < 3; ++turn) {
        if (redrawn)
            screen.painting().redraw();
        double slowest = 0;
        for (bool undone = true; undone;) {
            QElapsedTimer clock;
            clock.start();
            undone = screen.painting().history().undo();
            slowest = std::max(slowest, secondsSince(clock));
        }
        least = std::min(least, slowest);
        while (screen.painting().history().redo()) {
        }
    }
    return least / 0.050;
}

/// What the main thread gives to the keeping of such a painting.
double keepRatio()
{
    int count = 1;
    char name[] = "bench";
    char *words[] = {name, nullptr};
    const std::unique_ptr<QCoreApplication> application(
        QCoreApplication::instance() ? nullptr : new QCoreApplication(count, words));
    const QTemporaryDir folder;
    PaintedScreen screen;
    PaintingKeeper keeper(screen.painting(), folder.filePath(QStringLiteral("paintings")));
    const QString photo = folder.filePath(QStringLiteral("photo.png"));
    QImage(8, 8, QImage::Format_RGB32).save(photo);
    keeper.startPhoto(std::make_shared<PhotoFile>(photo));
    double least = std::numeric_limits<double>::infinity();
    for (int turn = 0; turn < 10; ++turn) {
        screen.stroke(turn);
        QElapsedTimer clock;
        clock.start();
        keeper.keep();
        least = std::min(least, secondsSince(clock));
    }
    return least / 0.002;
}

} // namespace

void addEditRows()
{
    add(Figure{"the slowest undo of 500 strokes, one after the other, 3840 x 2160", "50 ms", 1,
               [] { return undoRatio(false); }});
    add(Figure{"the same after the window has changed its size", "50 ms", 1, [] { return undoRatio(true); }});
    add(Figure{"main thread held up by the keeping of 500 strokes", "2 ms", 1, keepRatio});
}

} // namespace hazelmark::bench
