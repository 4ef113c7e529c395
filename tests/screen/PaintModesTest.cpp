// The screen's side of painting: tools, brush sliders, the canvas coming and going, strokes across a resize.
#include "ScreenFixture.h"

#include "DrawTrackingView.h"
#include "FloatSlider.h"
#include "IMGButton.h"
#include "NotificationNames.h"

#include <QCursor>
#include <QLineEdit>
#include <QTest>
#include <QWindow>

namespace hazelmark {

namespace {

constexpr int kAfterRedraw = 1100;  ///< milliseconds
constexpr int kAfterDiameter = 600; ///< after the redraw

class PaintModes : public ScreenFixture
{
protected:
    void openPhoto()
    {
        start();
        open(photo(u"a.png"_qs, {1500, 1000}));
    }
    /// Takes eraser or brush with a click.
    void choose(IMGButton *tool) { QTest::mouseClick(tool, Qt::LeftButton); }
};

TEST_F(PaintModes, WithoutAToolNothingHappens)
{
    start();
    m_screen->prepareEditing();
    const float before = canvas().pointSize();
    panel().slider(Setting::BrushDiameter)->setValue(200);
    const QString text = panel().field(Setting::BrushDiameter)->text();
    m_screen->hadleSliderBrushDiameter();
    m_screen->hadleSliderBrushHardness();
    post(kNotificationMouseIn);
    post(kNotificationBurshDrawedRegionUpdated);
    letTimersFire(50);
    EXPECT_EQ(canvas().pointSize(), before);
    EXPECT_EQ(panel().field(Setting::BrushDiameter)->text(), text);
    EXPECT_FALSE(canvas().isVisible());
    EXPECT_EQ(m_rendered, 0);
}

TEST_F(PaintModes, TheCanvasIsVisibleOnlyWhileThePointerIsOverThePhoto)
{
    openPhoto();
    EXPECT_FALSE(canvas().isVisible()) << "the pointer was elsewhere all the time, and no event says so";
    EXPECT_TRUE(view().drawTrackingView->isVisible());
    QCursor::setPos(canvas().mapToGlobal(canvas().rect().center()));
    ASSERT_TRUE(QTest::qWaitFor([&] { return canvas().isVisible(); }));
    QCursor::setPos(m_window->mapToGlobal(QPoint(20, 20)));
    ASSERT_TRUE(QTest::qWaitFor([&] { return !canvas().isVisible(); }));

    // A drop leaves the pointer over the photo area.
    QCursor::setPos(canvas().mapToGlobal(canvas().rect().center()));
    open(photo(u"b.png"_qs, {1500, 1000}));
    EXPECT_TRUE(canvas().isVisible());
    EXPECT_TRUE(canvas().arrDrawedPoints()->empty());
}

TEST_F(PaintModes, TheBrushSlidersReachTheBrush)
{
    openPhoto();
    panel().slider(Setting::BrushHardness)->setValueByUser(49.6);
    EXPECT_FLOAT_EQ(canvas().hardness(), 0.5F);
    EXPECT_FLOAT_EQ(canvas().pointSize(), 64.8F) << "hardness alone leaves the stamp size";
    EXPECT_EQ(panel().field(Setting::BrushHardness)->text(), u"49"_qs);
    panel().slider(Setting::BrushDiameter)->setValueByUser(50.7);
    EXPECT_FLOAT_EQ(canvas().pointSize(), 1.32F * 50.7F);
    EXPECT_EQ(panel().field(Setting::BrushDiameter)->text(), u"50"_qs);
    panel().slider(Setting::BrushSizeAuto)->setValueByUser(80.6);
    EXPECT_FLOAT_EQ(canvas().pointSize(), 1.32F * 81);
    EXPECT_EQ(panel().field(Setting::BrushDiameter)->text(), u"80"_qs);
    panel().btnResetSliderSettingsTapped(SettingsPanel::kResetMasking);
    EXPECT_FLOAT_EQ(canvas().hardness(), 0);
    EXPECT_FLOAT_EQ(canvas().pointSize(), 64.8F);
}

TEST_F(PaintModes, StrokesKeepTheirPlaceAcrossAResizeAlsoOneThatIsUnderWay)
{
    openPhoto();
    stroke({0.1, 0.25}, {0.4, 0.25});
    resizeWindow({800, 600});
    EXPECT_GT(paintAt({0.3, 0.25}), 200) << "stretched at once";
    post(kNotificationWindowEndResizing);
    stroke({0.1, 0.75}, {0.4, 0.75}, false); // the button is still down when the redraw comes
    letTimersFire(kAfterRedraw);
    EXPECT_GT(paintAt({0.3, 0.25}), 200);
    EXPECT_GT(paintAt({0.3, 0.75}), 200);
    EXPECT_EQ(paintAt({0.7, 0.75}), 0);
    stroke({0.4, 0.75}, {0.8, 0.75});
    EXPECT_GT(paintAt({0.7, 0.75}), 200);
    EXPECT_EQ(m_screen->arrDrawedPointsForCustomBrushOption(), canvas().arrDrawedPoints());
    EXPECT_TRUE(QTest::qWaitFor([&] { return m_screen->maskImage()->pixelSize() == canvas().bufferSize(); }));
}

TEST_F(PaintModes, ANewLayoutEndsNoStroke)
{
    openPhoto();
    QWindow *window = m_window->windowHandle();
    const QPoint middle = canvas().mapTo(m_window.get(), canvas().rect().center());
    QCursor::setPos(m_window->mapToGlobal(middle));
    ASSERT_TRUE(QTest::qWaitFor([&] { return canvas().isVisible(); }));
    QTest::mousePress(window, Qt::LeftButton, {}, middle);
    QCursor::setPos(m_window->mapToGlobal(QPoint(20, 20)));
    post(kNotificationWindowEndResizing);
    EXPECT_TRUE(canvas().isVisible()) << "the stroke has left the photo, but goes on";
    const std::size_t steps = canvas().arrDrawedPoints()->size();
    QTest::mouseMove(window, middle);
    EXPECT_GT(canvas().arrDrawedPoints()->size(), steps);
    QCursor::setPos(m_window->mapToGlobal(QPoint(20, 20)));
    QTest::mouseRelease(window, Qt::LeftButton, {}, middle);
    waitForPreviews(1);
    EXPECT_TRUE(QTest::qWaitFor([&] { return !canvas().isVisible(); }));
}

TEST_F(PaintModes, AReplayLeavesTheLastStrokesToolAndTheHighlightSaysSo)
{
    openPhoto();
    stroke({0.2, 0.5}, {0.8, 0.5});
    choose(panel().btnEraser());
    stroke({0.2, 0.5}, {0.3, 0.5});
    choose(panel().btnPaint());
    panel().slider(Setting::BrushDiameter)->setValueByUser(100);
    post(kNotificationWindowEndResizing);
    EXPECT_FALSE(panel().btnEraser()->isChecked());
    float sizeAtRedraw = 0;
    QObject::connect(panel().btnEraser(), &QAbstractButton::toggled, &canvas(),
                     [&] { sizeAtRedraw = canvas().pointSize(); });
    ASSERT_TRUE(QTest::qWaitFor([&] { return panel().btnEraser()->isChecked(); }));
    EXPECT_TRUE(canvas().eraser());
    EXPECT_EQ(m_screen->toolType(), Painting::kToolPaint);
    EXPECT_FLOAT_EQ(sizeAtRedraw, 64.8F) << "the last stroke's";
    letTimersFire(kAfterDiameter);
    EXPECT_FLOAT_EQ(canvas().pointSize(), 162) << "the slider's again";
    choose(panel().btnPaint());
    EXPECT_FALSE(canvas().eraser());
}

TEST_F(PaintModes, ANewPhotoStartsEmptyWhateverIsStillDueOrUnderWay)
{
    openPhoto();
    stroke({0.2, 0.5}, {0.8, 0.5});
    post(kNotificationWindowEndResizing); // a redraw of that stroke is due in a second
    choose(panel().btnEraser());
    stroke({0.2, 0.5}, {0.8, 0.5}, false);
    open(photo(u"b.png"_qs, {1000, 1500}, Qt::blue));
    QTest::mouseMove(&canvas(), canvas().rect().center());
    QTest::mouseRelease(&canvas(), Qt::LeftButton, {}, canvas().rect().center());
    EXPECT_TRUE(canvas().arrDrawedPoints()->empty()) << "the stroke ended with its photo";
    EXPECT_EQ(m_screen->toolType(), Painting::kToolPaint);
    stroke({0.5, 0.1}, {0.5, 0.2});
    letTimersFire(kAfterRedraw);
    EXPECT_EQ(paintAt({0.5, 0.5}), 0) << "the stroke on the photo before";
    EXPECT_GT(paintAt({0.5, 0.15}), 200) << "the stroke on this one";
    EXPECT_EQ(canvas().arrDrawedPoints()->size(), 11U);
}

TEST_F(PaintModes, ADraggedSliderWaitsForTheOneBefore)
{
    Gate gate;
    std::atomic<bool> held = false;
    std::atomic<int> shownBlur = -1;
    m_work.render = [&](const PreviewJob &job) {
        ++m_rendered;
        if (held)
            gate.pass();
        shownBlur = int(job.settings.blurAmount.value_or(0));
        return job.resizedInputImage;
    };
    openPhoto();
    letTimersFire(kAfterRedraw);
    FloatSlider *blur = panel().slider(Setting::BlurAmount);
    blur->setValueByUser(10);
    ASSERT_TRUE(QTest::qWaitFor([&] { return shownBlur == 10; }));
    held = true;
    const int before = m_rendered;
    const int width = blur->width();
    QTest::mousePress(blur, Qt::LeftButton, {}, {width / 2, 10});
    ASSERT_TRUE(QTest::qWaitFor([&] { return m_rendered == before + 1; }));
    for (const int x : {width * 2 / 3, width - 1}) {
        QTest::mouseMove(blur, {x, 10});
        letTimersFire(50);
    }
    EXPECT_LT(blur->value(), 60) << "where it was pressed";
    held = false;
    gate.open(1);
    EXPECT_TRUE(QTest::qWaitFor([&] { return shownBlur == 100; })) << "the pointer's place";
    EXPECT_EQ(m_rendered, before + 2);
    m_screen.reset(); // its threads use what stands here
}

} // namespace

} // namespace hazelmark
