#include "IMGButton.h"

#include "Bundle.h"
#include "ProcessWide.h"
#include "WidgetEvents.h"

#include <QApplication>
#include <QBitmap>
#include <QCursor>
#include <QDir>
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
        });
        m_button.show();
        m_button.activateWindow();
        EXPECT_TRUE(QTest::qWaitForWindowActive(&m_button));
        drawn();
    }

    void press(QPoint point = {60, 16}) { QTest::mousePress(&m_button, Qt::LeftButton, {}, point); }
    void release(QPoint point = {60, 16}) { QTest::mouseRelease(&m_button, Qt::LeftButton, {}, point); }
    QImage drawn() { return hazelmark::drawn(m_button); }
    PlainImages m_images;
    IMGButton m_button;
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
    for (int i = 0; i < 2; ++i) // the second finds it disabled
        press(), release();
    EXPECT_EQ(m_seen.size(), 4U);
    EXPECT_FALSE(m_button.isEnabled()) << "until somebody enables it";
}

TEST_F(IMGButtonTest, WhatIsToStayIsSetWhenTheClickIsOver)
{
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
        bool on, enabled;
        QColor title;
    };
    const State states[] = {
        {&B::setImgOnState_St, &B::setImgOnState_Md, &B::setImgOnState_En, true, true, Qt::yellow},
        {&B::setImgOffState_St, &B::setImgOffState_Md, &B::setImgOffState_En, false, true, Qt::white},
        {&B::setImgOnStateDis_St, &B::setImgOnStateDis_Md, &B::setImgOnStateDis_En, true, false, Qt::cyan},
        {&B::setImgOffStateDis_St, &B::setImgOffStateDis_Md, &B::setImgOffStateDis_En, false, false,
         QColor(96, 96, 96)},
    };
    m_button.setText(QStringLiteral("\u2588"));
    m_button.setColorOnState(Qt::yellow);
    m_button.setColorOnStateDis(Qt::cyan);
    int number = 0;
    for (const State &state : states) {
        const QColor colors[] = {{++number, 0, 0}, {number, 0, 100}, {number, 0, 200}};
        std::invoke(state.start, m_button, m_images.image(colors[0]));
        std::invoke(state.middle, m_button, m_images.image(colors[1]));
        std::invoke(state.end, m_button, m_images.image(colors[2]));
        m_button.setEnabled(state.enabled);
        m_button.setChecked(state.on);
        const QImage image = drawn();
        for (const auto &[x, piece] : {std::pair{9, 0}, {10, 1}, {109, 1}, {110, 2}})
            EXPECT_EQ(image.pixelColor(x, 31), colors[piece]) << number << " at " << x;
        EXPECT_EQ(image.pixelColor(60, 16), state.title) << number;
    }
}

TEST_F(IMGButtonTest, BreaksItsTitleWhereTwoLinesAreLarger)
{
    // The title, the button's size, the working copy of the title, whether that is drawn.
    const std::tuple<const char *, QSize, const char *, bool> rows[] = {
        {"two words", {60, 60}, "two\nwords", true},
        {"one two three four five", {90, 60}, "one two\nthree four five", true},
        {"two words", {240, 30}, "two\nwords", false}};
    for (const auto &[text, size, lines, areTwo] : rows) {
        m_button.resize(size);
        m_button.setText(QLatin1String(text));
        const QRect inked = QRegion(QBitmap::fromImage(drawn().createAlphaMask())).boundingRect();
        EXPECT_EQ(m_button.mTitle(), QLatin1String(lines));
        const IMGButton::Layout layout = m_button.getAttributesForRect(m_button.rect(), areTwo);
        EXPECT_NEAR(inked.width(), layout.measured.width(), 4) << text;
        EXPECT_NEAR(inked.center().y(), size.height() / 2, 4) << text;
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
    // A pointer that it appears under does not light it.
    m_button.hide();
    QCursor::setPos(260, 216);
    m_button.show();
    drawn();
    send(m_button, QEvent::Enter);
    EXPECT_EQ(colors()[2], off);
}
