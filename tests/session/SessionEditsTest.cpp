#include "SessionFixture.h"

#include <numeric>

namespace hazelmark {

namespace {

using Edits = SessionFixture;

} // namespace

TEST_F(Edits, EachCanBeUndoneAndRedoneWithTheBrushAsItWas)
{
    start();
    open(photo("photo.png"));
    int replaced = 0;
    QObject::connect(m_session.get(), &Session::paintingReplaced, [&] { ++replaced; });
    std::vector<QImage> pictures{m_canvas.snapshot()};
    const std::vector<std::pair<PaintEdit, std::function<void()>>> edits = {
        {PaintEdit::Stroke, [&] { paint(kLeft, kRight), endStroke(); }},
        {PaintEdit::Erase,
         [&] {
             m_brush.setEraser(true), paint(kLeft, {0.4, 0.5}), endStroke();
         }},
        {PaintEdit::Everything, [&] { m_session->blurEverything(), m_session->blurEverything(); }},
        {PaintEdit::Erase, [&] { paint(kLeft, kLeft), endStroke(); }},
        {PaintEdit::Clear, [&] { m_session->clearPainting(), m_session->clearPainting(); }},
        {PaintEdit::Stroke, [&] { m_brush.setEraser(false), paint(kRight, kRight), endStroke(); }},
    };
    for (const auto &[edit, make] : edits) {
        make();
        EXPECT_EQ(m_session->undoEdit(), edit);
        EXPECT_FALSE(m_session->redoEdit());
        pictures.push_back(m_canvas.snapshot().copy());
        EXPECT_EQ(m_session->painting().isEmpty(), edit == PaintEdit::Clear);
        EXPECT_LT(m_canvas.pointSize(), 100) << "the covering stamp is no brush";
    }
    EXPECT_EQ(pictures[3].pixel(0, 0), qRgba(0, 255, 0, 255));
    EXPECT_EQ(pictures[3].pixel(pictures[3].width() - 1, pictures[3].height() - 1), qRgba(0, 255, 0, 255));
    EXPECT_EQ(pictures[5], pictures[0]);
    m_brush.setEraser(true);
    m_brush.setLineWidth(33);
    const float pointSize = m_canvas.pointSize();
    for (std::size_t left = edits.size(); left > 0; --left) {
        EXPECT_EQ(m_session->undoEdit(), edits[left - 1].first);
        m_session->undo();
        EXPECT_EQ(m_canvas.snapshot(), pictures[left - 1]) << left;
        EXPECT_EQ(m_session->redoEdit(), edits[left - 1].first);
    }
    m_session->undo(); // nothing is left
    for (std::size_t done = 0; done < edits.size(); ++done) {
        m_session->redo();
        EXPECT_EQ(m_canvas.snapshot(), pictures[done + 1]) << done;
    }
    EXPECT_EQ(replaced, 2 + 6 + 6);
    EXPECT_EQ(m_canvas.pointSize(), pointSize);
    EXPECT_TRUE(m_canvas.eraser());
}

TEST_F(Edits, ManyAreUndoneFromFewSnapshots)
{
    start();
    open(photo("photo.png", {1600, 1200}));
    std::vector<QImage> pictures;
    for (int i = 0; i < 20; ++i) {
        pictures.push_back(m_canvas.snapshot().copy());
        const QImage coverage = pictures.back().convertToFormat(QImage::Format_Alpha8); // of lines without padding
        EXPECT_NEAR(m_session->painting().paintedFraction(),
                    std::accumulate(coverage.bits(), coverage.bits() + coverage.sizeInBytes(), 0.0) / 255 / 800 / 600,
                    0.003);
        m_brush.setEraser(i % 4 == 3);
        m_brush.setHardness(float(i % 3) / 2);
        m_brush.setLineWidth(float(60 + i * 7 % 90));
        if (i % 4 == 2) { // so much work that each is worth a snapshot
            m_canvas.setPointSize(900);
            m_canvas.setBrushPixelStep(5);
        }
        paint({0.05 + i * 37 % 90 / 100.0, 0.1 + i * 61 % 80 / 100.0}, {0.1 + i * 13 % 80 / 100.0, 0.5});
        endStroke();
    }
    for (const bool resizes : {false, true}) {
        if (resizes) { // with snapshots of its own
            m_canvas.setCanvasSize(m_canvas.canvasSize() / 2);
            m_session->painting().redraw();
        }
        for (std::size_t left = pictures.size(); left > 0; --left) {
            m_session->undo();
            if (resizes) {
                PaintCanvas fresh;
                fresh.setScalesStrokes(true);
                fresh.setCanvasSize(m_canvas.canvasSize());
                fresh.restoreDrawedPoints(std::make_shared<PaintStepList>(*m_canvas.arrDrawedPoints()));
                pictures[left - 1] = fresh.snapshot();
            }
            ASSERT_EQ(m_canvas.snapshot(), pictures[left - 1]) << left;
        }
        while (m_session->redoEdit())
            m_session->redo();
    }
}

TEST_F(Edits, KeepToThePictureWhateverSizesTheCanvasHad)
{
    start();
    open(photo("photo.png", {600, 400}));
    m_brush.setLineWidth(60);
    paint({0.3, 0.5}, {0.3, 0.5});
    endStroke();
    exportTo(out("out.png"));
    const auto strokes = m_session->painting().strokes();
    const QImage first = m_canvas.snapshot().copy();
    m_session->blurEverything();
    m_session->undo();
    const auto alphaBeside = [&](double diameters) {
        const QImage pixels = m_canvas.snapshot();
        return qAlpha(pixels.pixel(int(pixels.width() * (0.3 + diameters * 0.2)), pixels.height() / 2));
    };
    for (int i = 1; i <= 40; ++i) {
        m_canvas.setCanvasSize(i == 40 ? QSizeF(300, 200) : QSizeF(300, 200) * (0.31 + i * 17 % 40 / 9.7));
        if (i == 20)
            m_session->redo(); // onto pixels that are stretched still
        if (i == 21)
            m_session->undo(); // past a snapshot of another size
        m_session->painting().redraw();
        if (i == 20)
            continue;
        EXPECT_EQ(alphaBeside(0.45), 255) << i;
        EXPECT_EQ(alphaBeside(0.6), 0) << i;
    }
    EXPECT_EQ(m_canvas.snapshot(), first);
    EXPECT_EQ(m_session->painting().strokes(), strokes);
    EXPECT_TRUE(m_session->isSaved(m_settings)) << "a redraw is no new work";
    open(photo("next.png"));
    m_session->painting().redraw();
    EXPECT_TRUE(m_session->painting().isEmpty()) << "another photo's strokes never come back";
    EXPECT_FALSE(strokes->empty());
}

TEST_F(Edits, AreNeverUndoneByHalf)
{
    Gate gate;
    m_work.exporting.write = [&](const auto &, const QString &, const PhotoImagePtr &) -> Outcome<Done> {
        gate.pass();
        return Done();
    };
    start();
    open(photo("photo.png"));
    paint(kLeft, kLeft);
    endStroke();
    const QImage first = m_canvas.snapshot().copy();
    paint(kRight, kRight); // is still under way
    const QImage second = m_canvas.snapshot().copy();
    m_session->undo();
    m_session->clearPainting();
    EXPECT_EQ(m_canvas.snapshot(), second);
    endStroke();

    m_session->startExport(exportRequest(out("out.png")));
    EXPECT_FALSE(m_session->undoEdit());
    m_session->undo();
    EXPECT_EQ(m_canvas.snapshot(), second);
    gate.open();
    ASSERT_TRUE(QTest::qWaitFor([&] { return !m_results.empty(); }));
    EXPECT_TRUE(m_session->isSaved(m_settings));
    m_session->undo();
    EXPECT_EQ(m_canvas.snapshot(), first);
    EXPECT_FALSE(m_session->isSaved(m_settings));
    paint({0.5, 0.25}, {0.5, 0.25}); // as many steps as were written, but others
    endStroke();
    EXPECT_FALSE(m_session->isSaved(m_settings));
}

} // namespace hazelmark
