#include "IMGButton.h"

#include <QApplication>
#include <QFontMetricsF>
#include <QImage>
#include <QSignalSpy>
#include <QTest>

#include <gtest/gtest.h>

#include <memory>
#include <vector>

using namespace hazelmark;

namespace {

class IMGButtonTest : public testing::Test
{
protected:
    IMGButtonTest()
    {
        m_button.resize(120, 32);
        QObject::connect(&m_button, &IMGButton::clicked, [this] {
            m_stateSeen.push_back(m_button.isChecked());
            m_enabledSeen.push_back(m_button.isEnabled());
        });
        m_button.show();
    }

    void press(QPoint point = {60, 16}) { QTest::mousePress(&m_button, Qt::LeftButton, {}, point); }
    void release(QPoint point = {60, 16}) { QTest::mouseRelease(&m_button, Qt::LeftButton, {}, point); }
    QImage drawn() { return m_button.grab().toImage().convertToFormat(QImage::Format_ARGB32); }
    bool shows(const QColor &color)
    {
        const QImage image = drawn();
        for (int y = 0; y < image.height(); ++y)
            for (int x = 0; x < image.width(); ++x)
                if (image.pixelColor(x, y).rgb() == color.rgb())
                    return true;
        return false;
    }

    IMGButton m_button;
    std::vector<bool> m_stateSeen;
    std::vector<bool> m_enabledSeen;
};

} // namespace

TEST_F(IMGButtonTest, SendsTheActionBeforeTheStateFlipsAndIsDisabledWhileHeld)
{
    press();
    EXPECT_FALSE(m_button.isEnabled());
    EXPECT_TRUE(m_stateSeen.empty());
    release();
    EXPECT_TRUE(m_button.isChecked());
    EXPECT_TRUE(m_button.isEnabled());
    press();
    release();
    EXPECT_FALSE(m_button.isChecked());
    EXPECT_EQ(m_stateSeen, (std::vector<bool>{false, true}));
    EXPECT_EQ(m_enabledSeen, (std::vector<bool>{false, false}));
}

TEST_F(IMGButtonTest, AReleaseOutsideOnlyEnablesItAgain)
{
    press();
    release({60, 33});
    EXPECT_TRUE(m_stateSeen.empty());
    EXPECT_FALSE(m_button.isChecked());
    EXPECT_TRUE(m_button.isEnabled());
    press();
    release({120, 32}); // the far edges belong to it
    EXPECT_EQ(m_stateSeen.size(), 1U);
}

TEST_F(IMGButtonTest, StaysDisabledUntilItsOwnerEnablesItWhenAskedTo)
{
    m_button.setEnableImmediately(false);
    press();
    release();
    EXPECT_TRUE(m_button.isChecked());
    EXPECT_FALSE(m_button.isEnabled());
    press();
    release();
    EXPECT_EQ(m_stateSeen.size(), 1U) << "a disabled button took a click";
    m_button.setEnabled(true);
    press();
    m_button.hide(); // the release goes elsewhere
    EXPECT_TRUE(m_button.isEnabled());
}

TEST_F(IMGButtonTest, ActsOnTheKeyboardAndKeepsTheFocusWhileHeld)
{
    m_button.activateWindow();
    ASSERT_TRUE(QTest::qWaitForWindowActive(&m_button));
    m_button.setFocus();
    QTest::keyClick(&m_button, Qt::Key_Space);
    QTest::keyClick(&m_button, Qt::Key_Return);
    EXPECT_EQ(m_stateSeen, (std::vector<bool>{false, true}));
    EXPECT_FALSE(m_button.isChecked());
    press();
    EXPECT_TRUE(m_button.hasFocus());
    release();
    EXPECT_TRUE(m_button.hasFocus());
}

TEST_F(IMGButtonTest, AnActionMayEndTheButton)
{
    auto button = std::make_unique<IMGButton>();
    button->resize(40, 20);
    button->show();
    QObject::connect(button.get(), &IMGButton::clicked, [&] { button.reset(); });
    QTest::mousePress(button.get(), Qt::LeftButton, {}, {5, 5});
    IMGButton *raw = button.get();
    QMouseEvent release(QEvent::MouseButtonRelease, QPointF(5, 5), QPointF(5, 5), Qt::LeftButton, Qt::NoButton, {});
    QCoreApplication::sendEvent(raw, &release);
    EXPECT_FALSE(button);
}

TEST_F(IMGButtonTest, FitsTheLargestFontThatTheMarginsLeaveRoomFor)
{
    m_button.setText(QStringLiteral("Export"));
    const QRectF bounds(0, 0, 120, 32);
    const IMGButton::Layout layout = m_button.getAttributesForRect(bounds);
    const QRectF area = bounds.adjusted(5, 5, -5, -5);
    const auto measured = [&](int size) {
        QFont font(QStringLiteral("Lucida Grande"));
        font.setPixelSize(size);
        return QFontMetricsF(font).size(0, m_button.text());
    };
    const int size = layout.font.pixelSize();
    ASSERT_GE(size, 5);
    EXPECT_TRUE(measured(size).width() <= area.width() && measured(size).height() <= area.height());
    EXPECT_TRUE(measured(size + 1).width() > area.width() || measured(size + 1).height() > area.height());
    EXPECT_EQ(layout.rect.size(), area.size());
    EXPECT_EQ(layout.rect.left(), 5);
    EXPECT_NEAR(layout.rect.top(), 5 + (area.height() - layout.measured.height()) / 2, 1e-9);
}

TEST_F(IMGButtonTest, ATitleThatFitsEvenAtTheLargestSizeKeepsTheLayoutFromBefore)
{
    m_button.setText(QStringLiteral("Export"));
    const IMGButton::Layout before = m_button.getAttributesForRect({0, 0, 120, 32});
    const IMGButton::Layout after = m_button.getAttributesForRect({0, 0, 4000, 400});
    EXPECT_EQ(after.rect, before.rect);
    EXPECT_EQ(after.font, before.font);
}

TEST_F(IMGButtonTest, TakesTheBoldFontOnlyForTitlesOfMediumWidth)
{
    m_button.setMakeBoldFont(true);
    m_button.setText(QStringLiteral("Recommended applications"));
    // The width that limits the title is the width at which it is measured last.
    const IMGButton::Layout medium = m_button.getAttributesForRect({0, 0, 225, 200});
    EXPECT_TRUE(medium.font.bold());
    EXPECT_EQ(medium.font.pixelSize(), 20);
    EXPECT_FALSE(m_button.getAttributesForRect({0, 0, 150, 200}).font.bold());
    EXPECT_FALSE(m_button.getAttributesForRect({0, 0, 400, 200}).font.bold());
    m_button.setMakeBoldFont(false);
    EXPECT_FALSE(m_button.getAttributesForRect({0, 0, 225, 200}).font.bold());
}

struct BreakCase
{
    const char *title;
    const char *separator;
    const char *broken;
};

class IMGButtonBreakTest : public testing::TestWithParam<BreakCase>
{
};

TEST_P(IMGButtonBreakTest, BreaksAfterTheMiddlePart)
{
    IMGButton button;
    button.resize(60, 40);
    button.setText(QString::fromLatin1(GetParam().title));
    button.setMultiLineStr(QString::fromLatin1(GetParam().separator));
    button.grab();
    EXPECT_EQ(button.mTitle().toStdString(), GetParam().broken);
    EXPECT_EQ(button.text().toStdString(), GetParam().title);
}

INSTANTIATE_TEST_SUITE_P(Titles, IMGButtonBreakTest,
                         testing::Values(BreakCase{"Save changes", " ", "Save\nchanges"},
                                         BreakCase{"a b c d e", " ", "a b\nc d e"}, BreakCase{"a b c", " ", "a\nb c"},
                                         BreakCase{"One", " ", "One"}, BreakCase{"a/b/c/d", "/", "a/b\nc/d"},
                                         BreakCase{"a b", "", "a b"}));

TEST_F(IMGButtonTest, DrawsItsTitleAndPiecesByState)
{
    m_button.setText(QStringLiteral("XXXX"));
    m_button.setTitleColor(IMGButton::OnState, Qt::yellow);
    EXPECT_TRUE(shows(Qt::white));
    m_button.setEnabled(false);
    EXPECT_TRUE(shows(QColor(96, 96, 96)));
    m_button.setEnabled(true);
    m_button.setChecked(true);
    EXPECT_TRUE(shows(Qt::yellow));

    m_button.setText({});
    const QImage empty = drawn();
    m_button.setImgOnState_En(QStringLiteral("brush_selected"));
    EXPECT_NE(drawn(), empty);
    EXPECT_TRUE(shows(QColor(52, 215, 64)));
    EXPECT_EQ(drawn().copy(0, 0, 80, 32), empty.copy(0, 0, 80, 32)) << "the end cap keeps its own width";
    m_button.setChecked(false);
    EXPECT_EQ(drawn(), empty);
}

TEST_F(IMGButtonTest, ShowsTheHoverImageOnlyWhileOff)
{
    m_button.activateWindow();
    ASSERT_TRUE(QTest::qWaitForWindowActive(&m_button));
    m_button.setImgMouseHover(QStringLiteral("brush_selected"));
    QEvent leave(QEvent::Leave);
    QCoreApplication::sendEvent(&m_button, &leave); // the pointer may stand where the window opened
    EXPECT_FALSE(shows(QColor(52, 215, 64)));
    QEnterEvent enter(QPointF(1, 1), QPointF(1, 1), QPointF(1, 1));
    QCoreApplication::sendEvent(&m_button, &enter);
    EXPECT_TRUE(shows(QColor(52, 215, 64)));
    m_button.setChecked(true);
    EXPECT_FALSE(shows(QColor(52, 215, 64)));
    m_button.setChecked(false);
    QCoreApplication::sendEvent(&m_button, &leave);
    EXPECT_FALSE(shows(QColor(52, 215, 64)));
}
