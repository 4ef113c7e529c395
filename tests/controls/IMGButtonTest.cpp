#include "IMGButton.h"

#include "Bundle.h"
#include "ProcessWide.h"
#include "WidgetEvents.h"

#include <QApplication>
#include <QCursor>
#include <QDir>
#include <QFontMetricsF>
#include <QImage>
#include <QTemporaryDir>
#include <QTest>

#include <gtest/gtest.h>

#include <functional>
#include <memory>
#include <vector>

using namespace hazelmark;

namespace {

/// A bundle of images of one colour each, 10 × 10 points, named after it: "#102030".
class PlainImages
{
public:
    PlainImages() { QDir(m_folder.path()).mkpath(QStringLiteral("icons")); }

    QString image(const QColor &color) const
    {
        QFile file(m_folder.filePath(QStringLiteral("icons/%1.svg").arg(color.name())));
        if (file.open(QIODevice::WriteOnly))
            file.write("<svg xmlns='http://www.w3.org/2000/svg' width='10' height='10'><rect width='10' height='10' "
                       "fill='" +
                       color.name().toLatin1() + "'/></svg>");
        return color.name();
    }

private:
    QTemporaryDir m_folder;
    Bundle m_bundle{m_folder.path()};
    ProcessWide<Bundle>::Replacement m_replaceBundle{m_bundle};
};

class IMGButtonTest : public testing::Test
{
protected:
    IMGButtonTest()
    {
        QCursor::setPos(0, 0);
        m_button.setGeometry(200, 200, 120, 32);
        QObject::connect(&m_button, &IMGButton::clicked, [this] {
            m_seen.push_back({m_button.isChecked(), m_button.isEnabled()});
            if (m_action)
                m_action();
        });
        m_button.show();
        m_button.activateWindow();
        EXPECT_TRUE(QTest::qWaitForWindowActive(&m_button));
        drawn();
    }

    void press(QPoint point = {60, 16}) { QTest::mousePress(&m_button, Qt::LeftButton, {}, point); }
    void release(QPoint point = {60, 16}) { QTest::mouseRelease(&m_button, Qt::LeftButton, {}, point); }
    QImage drawn() { return hazelmark::drawn(m_button); }
    /// The rows (or columns) that have something drawn in them, as runs without a gap.
    static std::vector<std::pair<int, int>> inked(const QImage &image, bool rows)
    {
        std::vector<std::pair<int, int>> runs;
        const int lines = rows ? image.height() : image.width(), along = rows ? image.width() : image.height();
        for (int line = 0; line < lines; ++line) {
            bool ink = false;
            for (int i = 0; i < along; ++i)
                ink |= qAlpha(rows ? image.pixel(i, line) : image.pixel(line, i)) > 0;
            if (ink && (runs.empty() || runs.back().second != line - 1))
                runs.push_back({line, line});
            else if (ink)
                runs.back().second = line;
        }
        return runs;
    }

    PlainImages m_images;
    IMGButton m_button;
    std::function<void()> m_action;
    std::vector<std::pair<bool, bool>> m_seen; ///< on and enabled, as the action saw them
};

using Seen = std::vector<std::pair<bool, bool>>;

} // namespace

TEST_F(IMGButtonTest, SendsTheActionBeforeTheStateFlipsAndIsDisabledWhileHeld)
{
    press();
    EXPECT_FALSE(m_button.isEnabled());
    EXPECT_TRUE(m_seen.empty());
    release();
    EXPECT_TRUE(m_button.isChecked() && m_button.isEnabled());
    press();
    release({120, 32}); // the far edges belong to it
    EXPECT_FALSE(m_button.isChecked());
    press();
    release({60, 33});
    EXPECT_FALSE(m_button.isChecked()) << "let go outside";
    EXPECT_TRUE(m_button.isEnabled());
    EXPECT_EQ(m_seen, (Seen{{false, false}, {true, false}}));
    m_button.click(); // as assistive technology does
    QCoreApplication::processEvents();
    EXPECT_TRUE(m_button.isChecked());
    EXPECT_EQ(m_seen.back(), std::pair(false, true));
    m_button.setEnableImmediately(false);
    for (const char *when : {"enabled", "and until somebody enables it"}) {
        press();
        release();
        EXPECT_EQ(m_seen.size(), 4U) << when;
        EXPECT_FALSE(m_button.isEnabled()) << when;
    }
}

TEST_F(IMGButtonTest, WhatIsToStayIsSetWhenTheClickIsOver)
{
    m_action = [this] { m_button.setChecked(false); };
    press();
    release();
    EXPECT_TRUE(m_button.isChecked()) << "what the action sets is flipped";
    m_button.setChecked(false);
    QObject::connect(&m_button, &IMGButton::clickOver, [this] {
        m_button.setChecked(false);
        m_button.setEnabled(false);
    });
    for (const auto &click :
         {std::function([this] { press(), release(); }), std::function([this] { m_button.click(); }),
          std::function([this] { QTest::keyClick(&m_button, Qt::Key_Space); }),
          std::function([this] { QTest::keyClick(&m_button, Qt::Key_Return); })}) {
        m_seen.clear();
        m_button.setEnabled(true);
        m_button.setFocus();
        click();
        QCoreApplication::processEvents();
        EXPECT_EQ(m_seen.size(), 1U);
        EXPECT_FALSE(m_button.isChecked() || m_button.isEnabled());
    }
}

TEST_F(IMGButtonTest, APressWhoseReleaseGoesElsewhereLeavesNoDeadButtonAndADeadOneNoTrace)
{
    QWidget other;
    other.show();
    m_button.setFocus();
    press();
    EXPECT_TRUE(m_button.hasFocus()) << "handed on for the length of a press";
    send(m_button, QEvent::Enter);
    EXPECT_FALSE(m_button.isEnabled()) << "still held";
    QTest::mouseRelease(&other, Qt::LeftButton); // a sheet came in between
    send(m_button, QEvent::Enter);
    EXPECT_TRUE(m_button.isEnabled());
    press();
    m_button.hide();
    EXPECT_TRUE(m_button.isEnabled());
    EXPECT_TRUE(m_seen.empty());
    // An action may end the button.
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

TEST_F(IMGButtonTest, DrawsThePiecesAndTheTitleColourOfItsState)
{
    using B = IMGButton;
    using Setter = void (B::*)(const QString &);
    struct State
    {
        Setter start, middle, end;
        bool on, enabled, held;
        QColor title;
    };
    const State states[] = {
        {&B::setImgOnState_St, &B::setImgOnState_Md, &B::setImgOnState_En, true, true, false, Qt::yellow},
        {&B::setImgOffState_St, &B::setImgOffState_Md, &B::setImgOffState_En, false, true, false, Qt::white},
        {&B::setImgOnStateDis_St, &B::setImgOnStateDis_Md, &B::setImgOnStateDis_En, true, false, false, Qt::cyan},
        {&B::setImgOffStateDis_St, &B::setImgOffStateDis_Md, &B::setImgOffStateDis_En, false, false, false,
         QColor(96, 96, 96)},
        // These are seen only if somebody enables the button while it is held.
        {&B::setImgOnStateDwn_St, &B::setImgOnStateDwn_Md, &B::setImgOnStateDwn_En, true, true, true, Qt::yellow},
        {&B::setImgOffStateDwn_St, &B::setImgOffStateDwn_Md, &B::setImgOffStateDwn_En, false, true, true, Qt::white},
    };
    const auto color = [](qsizetype state, int piece) { return QColor(int(40 * state), 0, 100 * piece); };
    for (qsizetype i = 0; i < 6; ++i) {
        std::invoke(states[i].start, m_button, m_images.image(color(i, 0)));
        std::invoke(states[i].middle, m_button, m_images.image(color(i, 1)));
        std::invoke(states[i].end, m_button, m_images.image(color(i, 2)));
    }
    EXPECT_EQ(m_button.sizeHint(), QSize(30, 10));
    m_button.setText(QStringLiteral("\u2588"));
    m_button.setColorOnState(Qt::yellow);
    m_button.setColorOnStateDis(Qt::cyan);
    const auto expectState = [&](qsizetype state, const char *how) {
        const QImage image = drawn();
        for (const auto &[x, piece] : {std::pair{9, 0}, {10, 1}, {109, 1}, {110, 2}})
            EXPECT_EQ(image.pixelColor(x, 31), color(state, piece)) << how << state << " at " << x;
        EXPECT_EQ(image.pixelColor(60, 16), states[state].title) << how << state;
    };
    for (qsizetype i = 0; i < 6; ++i) {
        m_button.setEnabled(true);
        m_button.setChecked(states[i].on);
        if (states[i].held) {
            press();
            expectState(i == 4 ? 2 : 3, "held, and so disabled: ");
        }
        m_button.setEnabled(states[i].enabled);
        expectState(i, "");
        release({200, 200});
    }
}

TEST_F(IMGButtonTest, UnderThePointerAnOffButtonIsDrawnOnceMoreWithTheHoverCap)
{
    const QColor off(10, 20, 30), start(200, 0, 0), middle(0, 200, 0), hover(0, 0, 200);
    m_button.setImgOffState_Md(m_images.image(off));
    m_button.setImgOnState_St(m_images.image(start));
    m_button.setImgOnState_Md(m_images.image(middle));
    m_button.setImgMouseHover(m_images.image(hover));
    m_button.setText(QStringLiteral("\u2588"));
    const auto colors = [this] {
        const QImage image = drawn();
        EXPECT_EQ(image.pixelColor(60, 16), QColor(Qt::white)) << "the title lies over it";
        return QList<QColor>{image.pixelColor(9, 31), image.pixelColor(10, 0), image.pixelColor(110, 31)};
    };
    EXPECT_EQ(colors(), QList<QColor>({off, off, off}));
    send(m_button, QEvent::Enter);
    EXPECT_EQ(colors(), QList<QColor>({start, middle, hover}));
    m_button.setChecked(true);
    EXPECT_EQ(colors(), QList<QColor>({start, middle, middle})) << "on: the state's own pieces, and no hover cap";
    m_button.setChecked(false);
    send(m_button, QEvent::Leave);
    EXPECT_EQ(colors(), QList<QColor>({off, off, off}));
    // A pointer that it appears under does not light it.
    for (const bool entersBeforeItIsDrawn : {true, false}) {
        m_button.hide();
        QCursor::setPos(260, 216);
        m_button.show();
        if (entersBeforeItIsDrawn)
            send(m_button, QEvent::Enter);
        drawn();
        send(m_button, QEvent::Enter);
        EXPECT_EQ(colors()[2], off);
        send(m_button, QEvent::Leave);
        EXPECT_EQ(colors()[2], off);
        send(m_button, QEvent::Enter);
        EXPECT_EQ(colors()[2], hover);
    }
    m_button.hide();
    QCursor::setPos(0, 0);
    m_button.show();
    EXPECT_EQ(colors()[2], off);
    send(m_button, QEvent::Enter);
    EXPECT_EQ(colors()[2], hover);
}

TEST_F(IMGButtonTest, FitsTheLargestFontThatTheMarginsLeaveRoomFor)
{
    m_button.setText(QStringLiteral("Export"));
    m_button.setMarginLeft(9);
    m_button.setMarginRight(6);
    m_button.setMarginTop(3);
    m_button.setMarginBottom(4);
    m_button.setMarginTopML(1);
    for (const auto &[two, area] : {std::pair{false, QRectF(9, 3, 105, 25)}, {true, QRectF(9, 1, 105, 29)}}) {
        const IMGButton::Layout layout = m_button.getAttributesForRect({0, 0, 120, 32}, two);
        const auto fits = [&, area = area](int size) {
            QFont font(QStringLiteral("Lucida Grande"));
            font.setPixelSize(size);
            const QSizeF measured = QFontMetricsF(font).size(0, m_button.text());
            return measured.width() <= area.width() && measured.height() <= area.height();
        };
        const int size = layout.font.pixelSize();
        EXPECT_TRUE(size >= 5 && fits(size) && !fits(size + 1)) << size;
        EXPECT_EQ(layout.rect, area.translated(0, (area.height() - layout.measured.height()) / 2));
    }
    const IMGButton::Layout before = m_button.getAttributesForRect({0, 0, 120, 32});
    const IMGButton::Layout after = m_button.getAttributesForRect({0, 0, 4000, 400}); // even 50 fits
    EXPECT_TRUE(after.rect == before.rect && after.font == before.font);
}

TEST_F(IMGButtonTest, ATitleOfMediumWidthMayBeBold)
{
    m_button.setText(QStringLiteral("Export the picture"));
    m_button.setMakeBoldFont(true);
    // The width that limits the title is the width at which it is measured last.
    for (const auto &[width, bold] : {std::pair{150, false}, {225, true}, {400, false}}) {
        const QFont font = m_button.getAttributesForRect(QRectF(0, 0, width, 200)).font;
        EXPECT_EQ(font.bold(), bold) << width;
        EXPECT_EQ(font.pixelSize() == 20, bold) << width;
    }
    // Larger than what was fitted: then the words of a title of two lines that is too wide are wrapped.
    m_button.resize(225, 200);
    m_button.setText(QStringLiteral("Export the picture that has been blurred to a new file on the disk"));
    const auto columns = inked(drawn(), false);
    EXPECT_TRUE(columns.front().first >= 5 && columns.back().second < 220);
    EXPECT_GT(inked(drawn(), true).size(), 2U);
    m_button.setMakeBoldFont(false);
    EXPECT_FALSE(m_button.getAttributesForRect({0, 0, 225, 200}).font.bold());
}

TEST_F(IMGButtonTest, BreaksATitleAfterItsMiddlePartWhereThatGivesItMoreRoom)
{
    struct Case
    {
        const char *title, *separator, *broken;
        QSize size;
        size_t lines; ///< that are drawn
    };
    const Case cases[] = {
        {"Save changes", " ", "Save\nchanges", {60, 40}, 2},
        {"Save changes", " ", "Save\nchanges", {400, 20}, 1},
        {"hh hh hh hh hh", " ", "hh hh\nhh hh hh", {80, 60}, 2},
        {"hh hh hh", " ", "hh\nhh hh", {60, 60}, 2},
        {"One", " ", "One", {60, 40}, 1},
        {"One\nTwo", " ", "One\nTwo", {60, 40}, 2},
        {"h/h/h/h", "/", "h/h\nh/h", {40, 60}, 2},
        {"h h", "", "h h", {40, 40}, 1},
    };
    for (const Case &c : cases) {
        m_button.resize(c.size);
        m_button.setText(QLatin1String(c.title));
        m_button.setMultiLineStr(QLatin1String(c.separator));
        const auto atRest = drawn();
        EXPECT_EQ(inked(atRest, true).size(), c.lines) << c.title << c.size.width();
        EXPECT_EQ(m_button.mTitle().toStdString(), c.broken);
        EXPECT_EQ(m_button.text().toStdString(), c.title);
        // While it is held a title that could be broken is drawn one point further right and down.
        const int shift = QLatin1String(c.title) == QLatin1String(c.broken) && c.lines == 1 ? 0 : 1;
        press({5, 5});
        const auto held = drawn();
        release({-5, -5});
        for (const bool rows : {true, false}) {
            EXPECT_EQ(inked(held, rows).front().first, inked(atRest, rows).front().first + shift) << c.title;
            EXPECT_EQ(inked(held, rows).back().second, inked(atRest, rows).back().second + shift) << c.title;
        }
    }
}
