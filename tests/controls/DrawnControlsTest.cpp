// Slider, progress bar, highlight button, page dots and the image view that fills its place.
#include "../support/Timers.h"
#include "BarProgressIndicator.h"
#include "DotPageControl.h"
#include "FloatSlider.h"
#include "HighlightButton.h"
#include "IMGButton.h"
#include "ScaleToFillImageView.h"
#include "WidgetEvents.h"

#include <QAccessible>
#include <QApplication>
#include <QImage>
#include <QSignalSpy>
#include <QTest>
#include <QWheelEvent>

#include <gtest/gtest.h>

#include <limits>

using namespace hazelmark;

namespace {

/// How many pixels `isCounted` says yes to.
template <typename Test>
int count(const QImage &image, Test isCounted)
{
    int number = 0;
    for (int y = 0; y < image.height(); ++y)
        for (int x = 0; x < image.width(); ++x)
            number += isCounted(image.pixelColor(x, y));
    return number;
}

void wheel(QWidget &widget, int angle)
{
    QWheelEvent event(QPointF(5, 5), widget.mapToGlobal(QPointF(5, 5)), {}, {0, angle}, Qt::NoButton, {},
                      Qt::NoScrollPhase, false);
    QCoreApplication::sendEvent(&widget, &event);
}

class FloatSliderTest : public testing::Test
{
protected:
    FloatSliderTest()
    {
        m_slider.resize(220, 21);
        m_slider.setRange(0, 100);
        m_slider.show();
    }

    FloatSlider m_slider;
    QSignalSpy m_action{&m_slider, &FloatSlider::valueChangedByUser};
};

} // namespace

TEST_F(FloatSliderTest, OnlyAPersonsChangeSendsTheActionAndTheRangeHolds)
{
    m_slider.setValue(12.5);
    m_slider.setRange(20, 100);
    EXPECT_DOUBLE_EQ(m_slider.value(), 20);
    m_slider.setRange(0, 100);
    constexpr double kInfinity = std::numeric_limits<double>::infinity();
    for (const auto &[given, kept] : {std::pair{-5.0, 0.0},
                                      {1e9, 100.0},
                                      {kInfinity, 100.0},
                                      {-kInfinity, 0.0},
                                      {std::numeric_limits<double>::quiet_NaN(), 0.0}}) {
        m_slider.setValue(given);
        EXPECT_EQ(m_slider.value(), kept) << given;
    }
    m_slider.setAccessibleName(QStringLiteral("Blur amount"));
    QAccessibleInterface *interface = QAccessible::queryAccessibleInterface(&m_slider);
    ASSERT_TRUE(interface && interface->valueInterface());
    EXPECT_EQ(interface->role(), QAccessible::Slider);
    EXPECT_EQ(interface->text(QAccessible::Name), QStringLiteral("Blur amount"));
    EXPECT_EQ(interface->valueInterface()->maximumValue().toDouble(), 100);
    EXPECT_TRUE(m_action.isEmpty());
    interface->valueInterface()->setCurrentValue(33.0);
    QTest::mouseClick(&m_slider, Qt::LeftButton, {}, {110, 10});
    ASSERT_EQ(m_action.size(), 2);
    EXPECT_DOUBLE_EQ(m_action[0][0].toDouble(), 33);
    EXPECT_DOUBLE_EQ(m_action[1][0].toDouble(), 50);
    m_slider.setRange(5, 5);
    EXPECT_EQ(m_slider.fraction(), 0);
    m_slider.setRange(9, 3);
    EXPECT_EQ(m_slider.maxValue(), 9);
    drawn(m_slider);
}

TEST_F(FloatSliderTest, FollowsThePointerFromWhereItTookTheKnobAndWaitsForWhatThatHasStarted)
{
    m_slider.setValue(50); // knob centre at x = 110
    QTest::mousePress(&m_slider, Qt::LeftButton, {}, {114, 10});
    EXPECT_TRUE(m_action.isEmpty()) << "taking hold of the knob moved it";
    QTest::mouseMove(&m_slider, {124, 10});
    EXPECT_DOUBLE_EQ(m_slider.value(), 55) << "the first move counts at once";
    for (int x = 125; x < 1000; ++x) {
        QMouseEvent move(QEvent::MouseMove, QPointF(x, -50), QPointF(x, -50), Qt::NoButton, Qt::LeftButton, {});
        QCoreApplication::sendEvent(&m_slider, &move);
    }
    EXPECT_EQ(m_action.size(), 1) << "no more than one a frame";
    EXPECT_TRUE(QTest::qWaitFor([this] { return m_slider.value() == 100; }));
    QTest::mouseMove(&m_slider, {1100, -50});
    letTimersFire(50);
    EXPECT_EQ(m_action.size(), 2) << "no action without a change";
    bool isBusy = true;
    m_slider.setBusyTest([&] { return isBusy; });
    QTest::mouseMove(&m_slider, {134, -50});
    letTimersFire(50);
    EXPECT_DOUBLE_EQ(m_slider.value(), 100);
    QTest::mouseMove(&m_slider, {154, -50});
    isBusy = false;
    EXPECT_TRUE(QTest::qWaitFor([this] { return m_slider.value() == 70; }));
    isBusy = true;
    QTest::mouseMove(&m_slider, {115, -50});
    QTest::mouseMove(&m_slider, {94, -50});
    QTest::mouseRelease(&m_slider, Qt::LeftButton, {}, {94, -50});
    EXPECT_DOUBLE_EQ(m_slider.value(), 40) << "the last move counts, whatever is being done";
    QTest::mouseMove(&m_slider, {30, 10});
    EXPECT_DOUBLE_EQ(m_slider.value(), 40);
}

TEST_F(FloatSliderTest, StepsWithKeysAndWheel)
{
    m_slider.activateWindow();
    ASSERT_TRUE(QTest::qWaitForWindowActive(&m_slider));
    m_slider.clearFocus();
    m_slider.setValue(40);
    wheel(m_slider, 120);
    EXPECT_DOUBLE_EQ(m_slider.value(), 40) << "scrolling past a slider changed it";
    m_slider.setFocus();
    wheel(m_slider, 120);
    EXPECT_DOUBLE_EQ(m_slider.value(), 41);
    wheel(m_slider, -240);
    EXPECT_DOUBLE_EQ(m_slider.value(), 39);
    const std::pair<Qt::Key, double> keys[] = {{Qt::Key_Right, 40},  {Qt::Key_Up, 41},   {Qt::Key_Left, 40},
                                               {Qt::Key_PageUp, 50}, {Qt::Key_End, 100}, {Qt::Key_Home, 0},
                                               {Qt::Key_Down, 0}};
    for (const auto &[key, value] : keys) {
        QTest::keyClick(&m_slider, key);
        EXPECT_DOUBLE_EQ(m_slider.value(), value) << key;
    }
    EXPECT_EQ(m_action.size(), 8);
    m_slider.setRange(0, 1);
    m_slider.stepBy(3);
    EXPECT_DOUBLE_EQ(m_slider.value(), 0.03);
}

TEST_F(FloatSliderTest, DrawsAGrayTrackAndAGreenPart)
{
    constexpr int kTrackTop = 8; // 5 rows in the middle of 21
    const QImage empty = drawn(m_slider);
    const QColor track = empty.pixelColor(100, kTrackTop);
    EXPECT_EQ(track.alpha(), 128);
    EXPECT_NEAR(track.red(), 167, 1); // stored premultiplied
    EXPECT_NEAR(track.blue(), 165, 1);
    EXPECT_EQ(empty.pixelColor(18, kTrackTop), track) << "nothing of the track is green";
    EXPECT_EQ(empty.pixelColor(215, kTrackTop), track);
    EXPECT_EQ(empty.pixelColor(216, kTrackTop).alpha(), 0);
    m_slider.setValue(100);
    const QImage full = drawn(m_slider);
    // 8 points shorter than the view, 5 high, and no knob in the topmost row of the track but at the end.
    for (const auto &[x, y, isGreen] : {std::tuple{3, 8, false},
                                        {4, 8, true},
                                        {215, 8, true},
                                        {216, 8, false},
                                        {20, 7, false},
                                        {20, 12, true},
                                        {20, 13, false},
                                        {210, 10, true},
                                        {210, 5, true}})
        EXPECT_EQ(full.pixelColor(x, y) == QColor(52, 215, 64), isGreen) << x << ' ' << y;
}

TEST(BarProgressIndicatorTest, FillsWholePointsOfTheMaximum)
{
    for (const auto &[minimum, maximum, value, done] : {std::tuple{0.0, 100.0, 50.0, 150},
                                                        {50, 100, 50, 150},
                                                        {0, 100, 0, 0},
                                                        {0, 100, 100, 301},
                                                        {0, 100, 130, 301},
                                                        {0, 100, -3, 0},
                                                        {0, 0, 1, 0}}) {
        BarProgressIndicator bar({0, 0, 301, 3}, Qt::blue, Qt::red, minimum, maximum, value);
        const auto columns = [&](const QColor &color) {
            return count(drawn(bar), [&](const QColor &c) { return c == color; }) / 3.0;
        };
        EXPECT_EQ(columns(Qt::blue), done) << value;
        EXPECT_EQ(columns(Qt::red), 301 - done) << value;
        bar.setEmptyColor(Qt::transparent);
        EXPECT_EQ(columns(Qt::transparent), 301 - done) << value;
    }
}

namespace {

class HighlightButtonTest : public testing::Test
{
protected:
    void show(HighlightButton &button)
    {
        QCursor::setPos(0, 0);
        button.setText(QStringLiteral("Reset"));
        button.setGeometry(200, 200, 100, 32);
        button.show();
        button.activateWindow();
        ASSERT_TRUE(QTest::qWaitForWindowActive(&button));
        drawn(button);
        send(button, QEvent::Leave); // where the window opened the pointer may have been
    }
    /// How much of the title there is: bold letters are more.
    static int ink(QWidget &button)
    {
        return count(drawn(button), [](const QColor &color) { return color.red() > 160; });
    }
};

} // namespace

TEST_F(HighlightButtonTest, AFlatButtonTurnsLighterAndBoldUnderThePointerAndForTheMomentOfAPress)
{
    HighlightButton button(HighlightButton::kFlatTag, QStringLiteral("up"), QStringLiteral("file"));
    QSignalSpy clicked(&button, &HighlightButton::clicked);
    show(button);
    EXPECT_TRUE(button.image().isEmpty());
    EXPECT_EQ(button.backgroundColor(), QColor(55, 68, 170, 204));
    EXPECT_NEAR(drawn(button).pixelColor(50, 2).blue(), 170, 1); // stored premultiplied
    EXPECT_EQ(drawn(button).pixelColor(0, 0).alpha(), 0) << "the corner is round";
    const int resting = ink(button);
    EXPECT_GT(resting, 0);
    send(button, QEvent::Enter);
    EXPECT_EQ(button.backgroundColor(), QColor(75, 78, 190, 204));
    EXPECT_NEAR(drawn(button).pixelColor(50, 2).blue(), 190, 1);
    EXPECT_GT(ink(button), resting * 11 / 10) << "not bold";
    EXPECT_EQ(button.cursor().shape(), Qt::PointingHandCursor);
    send(button, QEvent::Leave);
    EXPECT_EQ(ink(button), resting);
    EXPECT_EQ(button.cursor().shape(), Qt::ArrowCursor);
    button.hide();
    button.show();
    send(button, QEvent::Enter);
    EXPECT_EQ(ink(button), resting) << "it appeared under the pointer";
    send(button, QEvent::Leave);
    QTest::mousePress(&button, Qt::LeftButton, {}, {5, 5});
    EXPECT_GT(ink(button), resting);
    EXPECT_TRUE(QTest::qWaitFor([&] { return !button.isHighlighted(); }));
    EXPECT_EQ(ink(button), resting);
    QTest::mouseRelease(&button, Qt::LeftButton, {}, {5, 5});
    for (const auto key : {Qt::Key_Return, Qt::Key_Space})
        QTest::keyClick(&button, key);
    EXPECT_EQ(clicked.size(), 3);
    button.setEnabled(false);
    QTest::mouseClick(&button, Qt::LeftButton, {}, {5, 5});
    EXPECT_EQ(clicked.size(), 3);
}

TEST_F(HighlightButtonTest, AnImageButtonSwapsItsImage)
{
    HighlightButton button(HighlightButton::kImageTag, QStringLiteral("brush"), QStringLiteral("brush_selected"));
    EXPECT_EQ(button.sizeHint(), QSize(40, 40));
    show(button);
    send(button, QEvent::Enter);
    EXPECT_EQ(button.image(), QStringLiteral("brush_selected"));
    button.setImgNormalState(QStringLiteral("hazelmark.png"));
    const QImage hovered = drawn(button);
    send(button, QEvent::Leave);
    EXPECT_EQ(button.image(), QStringLiteral("hazelmark.png"));
    EXPECT_NE(drawn(button), hovered);
    EXPECT_GT(drawn(button).pixelColor(50, 16).alpha(), 0) << "a name with a bitmap's extension is drawn";
}

TEST(DotPageControlTest, OnlyAPersonsChoiceIsSent)
{
    DotPageControl control;
    control.setDotSize(25, 5);
    control.setNumberOfPages(3);
    EXPECT_EQ(control.sizeHint(), QSize(95, 35));
    control.resize(control.sizeHint());
    control.show();
    QSignalSpy selected(&control, &DotPageControl::pageSelected);
    control.setCurrentPage(7);
    EXPECT_EQ(control.currentPage(), 2);
    EXPECT_TRUE(selected.isEmpty());
    QTest::mouseClick(&control, Qt::LeftButton, {}, {48, 17});
    EXPECT_EQ(control.currentPage(), 1);
    QTest::keyClick(&control, Qt::Key_Left);
    QTest::keyClick(&control, Qt::Key_Left); // no page there
    ASSERT_EQ(selected.size(), 2);
    EXPECT_EQ(selected[0][0].toInt(), 1);
    EXPECT_EQ(selected[1][0].toInt(), 0);
    control.setNumberOfPages(0);
    EXPECT_EQ(control.currentPage(), 0);
    QTest::mouseClick(&control, Qt::LeftButton, {}, {48, 17});
    EXPECT_EQ(selected.size(), 2);
}

TEST(ScaleToFillImageViewTest, CoversTheViewWithoutDistortion)
{
    QImage picture(200, 100, QImage::Format_RGB32); // red | green | blue, of 50, 100 and 50 columns
    for (int x = 0; x < 200; ++x)
        for (int y = 0; y < 100; ++y)
            picture.setPixelColor(x, y, x < 50 ? Qt::red : x < 150 ? Qt::green : Qt::blue);
    ScaleToFillImageView view;
    view.setImage(QPixmap::fromImage(picture));
    for (const auto &[width, x, color] :
         {std::tuple{100, 2, Qt::green}, {100, 97, Qt::green}, {400, 90, Qt::red}, {400, 110, Qt::green}}) {
        view.resize(width, 100);
        EXPECT_EQ(view.grab().toImage().pixelColor(x, 50), QColor(color)) << width << ' ' << x;
    }
    view.setImage({});
    EXPECT_EQ(view.grab().toImage().pixelColor(5, 5), view.palette().color(QPalette::Window));
}

TEST(DrawnControlsTest, WhatIsSeenToChangeIsDrawnAnew)
{
    QWidget window;
    FloatSlider slider(&window);
    BarProgressIndicator bar({0, 30, 100, 3}, Qt::blue, Qt::red, 0, 100, 0, &window);
    HighlightButton button(HighlightButton::kFlatTag, {}, {}, &window);
    DotPageControl dots(&window);
    IMGButton image(&window);
    const std::tuple<const char *, QWidget *, std::function<void()>> changes[]{
        {"value", &slider, [&] { slider.setValue(0.5); }},
        {"range", &slider, [&] { slider.setRange(0, 5); }},
        {"progress", &bar, [&] { bar.setValue(50); }},
        {"colour of what is done", &bar, [&] { bar.setProgressColor(Qt::green); }},
        {"pointer", &button, [&] { send(button, QEvent::Enter); }},
        {"no pointer", &button, [&] { send(button, QEvent::Leave); }},
        {"press", &button, [&] { QTest::mousePress(&button, Qt::LeftButton); }},
        {"pages", &dots, [&] { dots.setNumberOfPages(3); }},
        {"page", &dots, [&] { dots.setCurrentPage(1); }},
        {"state", &image, [&] { image.setChecked(true); }},
        {"pointer over an image", &image, [&] { send(image, QEvent::Enter); }},
        {"held", &image, [&] { QTest::mousePress(&image, Qt::LeftButton); }},
    };
    int top = 0;
    for (QWidget *control : window.findChildren<QWidget *>(QString(), Qt::FindDirectChildrenOnly))
        control->setGeometry(0, top += 40, 100, 32);
    window.resize(200, 300);
    window.show();
    ASSERT_TRUE(QTest::qWaitForWindowExposed(&window));
    struct Paints : QObject
    {
        bool eventFilter(QObject *, QEvent *event) override { return seen |= event->type() == QEvent::Paint, false; }
        bool seen = false;
    };
    for (const auto &[what, control, change] : changes) {
        QCoreApplication::processEvents(); // what is due from before
        Paints paints;
        control->installEventFilter(&paints);
        change();
        EXPECT_TRUE(QTest::qWaitFor([&] { return paints.seen; })) << what;
    }
}
