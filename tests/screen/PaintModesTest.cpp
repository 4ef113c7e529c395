// The screen's side of painting: brush sliders, strokes across a resize.
#include "ScreenFixture.h"

#include "FloatSlider.h"
#include "IMGButton.h"
#include "NotificationNames.h"

#include <QLineEdit>
#include <QTest>

namespace hazelmark {

namespace {

constexpr int kAfterRedraw = 1100; ///< milliseconds

class PaintModes : public ScreenFixture
{
protected:
    void openPhoto()
    {
        start();
        open(photo(u"a.png"_qs, {1500, 1000}));
    }
};

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
    EXPECT_TRUE(QTest::qWaitFor([&] { return m_screen->maskImage()->pixelSize() == canvas().bufferSize(); }));
}

TEST_F(PaintModes, ANewPhotoStartsEmptyWhateverIsStillDueOrUnderWay)
{
    openPhoto();
    stroke({0.2, 0.5}, {0.8, 0.5});
    post(kNotificationWindowEndResizing); // a redraw of that stroke is due in a second
    QTest::mouseClick(panel().btnEraser(), Qt::LeftButton);
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

} // namespace

} // namespace hazelmark
