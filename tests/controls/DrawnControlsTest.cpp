// Slider, progress bar, highlight button and page dots.
#include "../support/Timers.h"
#include "BarProgressIndicator.h"
#include "DotPageControl.h"
#include "FloatSlider.h"
#include "HighlightButton.h"
#include "IMGButton.h"
#include "WidgetEvents.h"

#include <QAccessible>
#include <QApplication>
#include <QImage>
#include <QPalette>
#include <QSignalSpy>
#include <QTest>

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

using namespace hazelmark;

namespace {

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
    for (const auto &[given, kept] :
         {std::pair{-5.0, 0.0}, {1e9, 100.0}, {std::numeric_limits<double>::quiet_NaN(), 0.0}}) {
        m_slider.setValue(given);
        EXPECT_EQ(m_slider.value(), kept) << given;
    }
    QAccessibleInterface *interface = QAccessible::queryAccessibleInterface(&m_slider);
    ASSERT_TRUE(interface && interface->valueInterface());
    EXPECT_EQ(interface->valueInterface()->maximumValue().toDouble(), 100);
    EXPECT_TRUE(m_action.isEmpty());
    interface->valueInterface()->setCurrentValue(33.0);
    QTest::mouseClick(&m_slider, Qt::LeftButton, {}, {110, 10});
    ASSERT_EQ(m_action.size(), 2);
    EXPECT_DOUBLE_EQ(m_action[0][0].toDouble(), 33);
    EXPECT_DOUBLE_EQ(m_action[1][0].toDouble(), 50);
    m_slider.setRange(5, 5);
    EXPECT_EQ(m_slider.fraction(), 0);
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
    bool isBusy = true;
    m_slider.setBusyTest([&] { return isBusy; });
    QTest::mouseMove(&m_slider, {134, -50});
    letTimersFire(50);
    EXPECT_DOUBLE_EQ(m_slider.value(), 100);
    QTest::mouseMove(&m_slider, {154, -50});
    isBusy = false;
    EXPECT_TRUE(QTest::qWaitFor([this] { return m_slider.value() == 70; }));
    isBusy = true;
    QTest::mouseMove(&m_slider, {94, -50});
    QTest::mouseRelease(&m_slider, Qt::LeftButton, {}, {94, -50});
    EXPECT_DOUBLE_EQ(m_slider.value(), 40) << "the last move counts, whatever is being done";
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

/// By the formula for contrast of the guidelines for accessible content.
TEST(ThemeTest, LettersAreLegibleOnTheirGroundAndPalerWhereDisabled)
{
    const auto luminance = [](const QColor &color) {
        double sum = 0;
        for (const auto &[value, weight] :
             {std::pair(color.redF(), 0.2126), {color.greenF(), 0.7152}, {color.blueF(), 0.0722}})
            sum += weight * (value <= 0.04045F ? value / 12.92 : std::pow((value + 0.055) / 1.055, 2.4));
        return sum;
    };
    const auto contrast = [&](QPalette::ColorGroup group, QPalette::ColorRole letters, QPalette::ColorRole ground) {
        const QPalette palette = QApplication::palette();
        return (luminance(palette.color(group, letters)) + 0.05) / (luminance(palette.color(group, ground)) + 0.05);
    };
    using P = QPalette;
    for (const auto &[letters, ground] : {std::pair(P::WindowText, P::Window),
                                          {P::Link, P::Window},
                                          {P::LinkVisited, P::Window},
                                          {P::Text, P::Base},
                                          {P::Text, P::AlternateBase},
                                          {P::PlaceholderText, P::Base},
                                          {P::ButtonText, P::Button},
                                          {P::BrightText, P::Window},
                                          {P::ToolTipText, P::ToolTipBase},
                                          {P::HighlightedText, P::Highlight}}) {
        EXPECT_GT(contrast(P::Active, letters, ground), 4.5) << letters;
    }
    for (const auto &[letters, ground] : {std::pair(P::WindowText, P::Window),
                                          {P::Text, P::Base},
                                          {P::ButtonText, P::Button},
                                          {P::HighlightedText, P::Highlight}}) {
        EXPECT_GT(contrast(P::Disabled, letters, ground), 2) << letters;
        EXPECT_LT(contrast(P::Disabled, letters, ground), 4.5) << letters;
    }
}

TEST(BarProgressIndicatorTest, FillsWholePointsOfTheMaximum)
{
    for (const auto &[minimum, maximum, value, profile] : {std::tuple{0.0, 100.0, 50.0, "2x150 5x151"},
                                                           {50, 100, 50, "2x150 5x151"},
                                                           {0, 100, 130, "2x301"},
                                                           {0, 100, -3, "5x301"},
                                                           {0, 0, 1, "5x301"}}) {
        BarProgressIndicator bar({0, 0, 301, 3}, Qt::blue, Qt::red, minimum, maximum, value);
        EXPECT_EQ(profileOf(drawn(bar), {0, 2}), profile) << value;
    }
}

TEST(HighlightButtonTest, AFlatButtonTurnsLighterUnderThePointerAndForTheMomentOfAPress)
{
    QCursor::setPos(0, 0);
    HighlightButton button(HighlightButton::kFlatTag);
    button.setText(QStringLiteral("Reset"));
    button.setGeometry(200, 200, 100, 32);
    button.show();
    button.activateWindow();
    ASSERT_TRUE(QTest::qWaitForWindowActive(&button));
    drawn(button);
    send(button, QEvent::Leave); // where the window opened the pointer may have been
    const auto blue = [&] { return drawn(button).pixelColor(50, 2).blue(); }; // stored premultiplied
    EXPECT_NEAR(blue(), 170, 1);
    EXPECT_TRUE(QString::fromStdString(profileOf(drawn(button), {0, 16})).contains(u'f')) << "white letters";
    send(button, QEvent::Enter);
    EXPECT_NEAR(blue(), 190, 1);
    send(button, QEvent::Leave);
    EXPECT_NEAR(blue(), 170, 1);
    QTest::mousePress(&button, Qt::LeftButton, {}, {5, 5});
    EXPECT_NEAR(blue(), 190, 1);
    EXPECT_TRUE(QTest::qWaitFor([&] { return !button.isHighlighted(); }));
    QTest::mouseRelease(&button, Qt::LeftButton, {}, {5, 5});
    QSignalSpy clicked(&button, &HighlightButton::clicked);
    for (const auto key : {Qt::Key_Return, Qt::Key_Space})
        QTest::keyClick(&button, key);
    EXPECT_EQ(clicked.size(), 2);
}

TEST(DrawnControlsTest, StandWhereTheirSizesPutThem)
{
    FloatSlider slider;
    slider.setRange(-20, 60);
    slider.resize(220, 21);
    slider.setValue(0);
    FloatSlider dimmed;
    dimmed.resize(220, 21);
    dimmed.setValue(0.25);
    dimmed.setEnabled(false);
    DotPageControl dots;
    dots.setDotSize(25, 5);
    dots.setNumberOfPages(3);
    dots.setCurrentPage(1);
    dots.resize(110, 41);
    EXPECT_EQ(dots.sizeHint(), QSize(95, 35));
    HighlightButton button(HighlightButton::kFlatTag);
    button.resize(60, 24);
    const std::tuple<QWidget *, QPoint, const char *> lines[] = {
        {&slider, {0, 10}, "0x4 8x62 6x1 5x149 0x4"},
        {&slider, {60, 0}, "0x4 8x13 0x4"},
        {&slider, {200, 0}, "0x8 5x5 0x8"},
        {&dimmed, {0, 10}, "0x4 4x49 5x1 6x3 4x9 3x1 2x149 0x4"},
        {&dots, {0, 20}, "0x12 4x1 7x1 4x22 7x1 4x1 0x4 4x1 cx1 ex22 cx1 4x1 0x4 4x1 7x1 4x22 7x1 4x1 0x12"},
        {&button, {0, 0}, "0x2 2x1 3x54 2x1 0x2"},
    };
    for (const auto &[control, from, profile] : lines)
        EXPECT_EQ(profileOf(drawn(*control), from), profile);
    // With the focus that came by Tab.
    const std::tuple<QWidget *, QPoint, const char *> rings[] = {
        {&slider, {0, 10}, "0x4 8x46 ax2 8x14 6x1 5x1 ax2 5x146 0x4"},
        {&slider, {60, 0}, "4x1 ax1 6x1 0x1 8x13 0x1 6x1 ax1 4x1"},
        {&dots, {0, 20}, "ax2 0x10 4x1 7x1 4x22 7x1 4x1 0x4 4x1 cx1 ex22 cx1 4x1 0x4 4x1 7x1 4x22 7x1 4x1 0x10 ax2"},
        {&button, {0, 12}, "ax2 3x56 ax2"},
    };
    for (const auto &[control, from, profile] : rings) {
        focusByKeyboard(*control);
        EXPECT_EQ(profileOf(drawn(*control), from), profile);
    }
}
