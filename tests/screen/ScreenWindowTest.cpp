// The main screen and its window: closing.
#include "ScreenFixture.h"

#include "IMGButton.h"
#include "NotificationNames.h"
#include "SaveChangesSheet.h"
#include "SheetQueue.h"
#include "TipsWindow.h"

#include <QPushButton>
#include <QTest>

namespace hazelmark {

namespace {

class ScreenWindow : public ScreenFixture
{
protected:
    SaveChangesSheet *sheet() const
    {
        return qobject_cast<SaveChangesSheet *>(SheetQueue::forWindow(*m_window).current());
    }
    void answer(const char16_t *button)
    {
        QTest::mouseClick(sheet()->findChild<QPushButton *>(QString::fromUtf16(button)), Qt::LeftButton);
        ASSERT_TRUE(QTest::qWaitFor([&] { return sheet() == nullptr; }));
    }
};

TEST_F(ScreenWindow, ClosesAtOnceWhenNothingWaitsToBeProcessedOrTheResultIsExported)
{
    openPhoto();
    post(kNotificationClosePhotoFromMenuTapped);
    EXPECT_FALSE(m_window->isVisible());

    m_window->show();
    m_application.m_toProcess = {u"/more.jpg"_qs};
    m_screen->session().setLastExportedImage(m_screen->inputImage());
    QTest::mouseClick(m_window->closeButton(), Qt::LeftButton);
    EXPECT_FALSE(m_window->isVisible());
}

TEST_F(ScreenWindow, AsksFirstWhenPhotosWaitHoweverItIsClosed)
{
    m_application.m_toProcess = {u"/more.jpg"_qs};
    start();
    m_window->close();
    m_window->close();
    EXPECT_TRUE(m_window->isVisible());
    ASSERT_NE(sheet(), nullptr);
    EXPECT_EQ(SheetQueue::forWindow(*m_window).waiting(), 0) << "asks once";
    answer(u"btnSave");
    EXPECT_TRUE(m_window->isVisible());

    m_screen->chrome().setIsExportingWithAddingNewImage(true);
    m_window->close();
    QTest::keyClick(sheet(), Qt::Key_Escape);
    ASSERT_TRUE(QTest::qWaitFor([&] { return sheet() == nullptr; }));
    EXPECT_TRUE(m_window->isVisible());
    EXPECT_FALSE(m_screen->chrome().isExportingWithAddingNewImage()) << "cancelling forgets it";

    m_window->close();
    m_screen->chrome().setIsExportingWithAddingNewImage(true);
    answer(u"btnDontSave");
    EXPECT_TRUE(m_window->isVisible()) << "the flag keeps it open once";
    EXPECT_FALSE(m_screen->chrome().isExportingWithAddingNewImage());

    m_window->close();
    answer(u"btnDontSave");
    EXPECT_FALSE(m_window->isVisible());
}

TEST_F(ScreenWindow, ItsButtonsMinimiseAndZoomUnlessAPreviewIsUnderWay)
{
    start();
    QTest::mouseClick(m_window->minimizeButton(), Qt::LeftButton);
    EXPECT_TRUE(m_window->isMinimized());
    m_window->showNormal();
    for (const bool isBusy : {true, false}) {
        m_screen->session().setIsRunningAlgorithm(isBusy);
        QTest::mouseClick(m_window->zoomButton(), Qt::LeftButton);
        EXPECT_EQ(m_window->isMaximized(), !isBusy);
    }
    for (const bool isFull : {true, false}) {
        perform(MenuCommand::FullScreen);
        EXPECT_EQ(m_window->isFullScreen(), isFull);
    }
    post(kNotificationShowTipsFromMenuTapped);
    auto *tips = m_window->findChild<TipsWindow *>();
    ASSERT_TRUE(tips && tips->isVisible());
    post(kNotificationUpdateLanguage);
    EXPECT_EQ(tips->windowTitle(), QStringLiteral("TIPS_TITLE %@"));
}

} // namespace

} // namespace hazelmark
