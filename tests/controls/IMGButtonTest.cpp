#include "IMGButton.h"

#include "Bundle.h"
#include "ProcessWide.h"
#include "WidgetEvents.h"

#include <QApplication>
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

TEST_F(IMGButtonTest, DrawsThePictureOfItsState)
{
    const QColor off(10, 20, 30), offDisabled(1, 2, 3), on(200, 0, 0), onDisabled(0, 200, 0), hover(0, 0, 200);
    m_button.setEndCaps({m_images.image(off), m_images.image(offDisabled), m_images.image(on),
                         m_images.image(onDisabled), m_images.image(hover)});
    const auto color = [this] { return drawn().pixelColor(5, 5); };
    for (const auto &[isOn, whole, disabled] : {std::tuple{false, off, offDisabled}, {true, on, onDisabled}}) {
        m_button.setChecked(isOn);
        EXPECT_EQ(color(), whole);
        press({5, 5});
        EXPECT_EQ(color(), disabled) << "while it is held";
        release({50, 50});
        send(m_button, QEvent::Enter);
        EXPECT_EQ(color(), isOn ? on : hover);
        send(m_button, QEvent::Leave);
    }
    // A pointer that it appears under does not light it.
    m_button.setChecked(false);
    m_button.hide();
    QCursor::setPos(205, 205);
    m_button.show();
    drawn();
    send(m_button, QEvent::Enter);
    EXPECT_EQ(color(), off);
}
