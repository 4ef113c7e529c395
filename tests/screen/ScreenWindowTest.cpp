// The main screen and its window: closing.
#include "ScreenFixture.h"

#include "IMGButton.h"
#include "NotificationNames.h"
#include "SaveChangesSheet.h"
#include "SheetQueue.h"

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
    start();
    open(photo(u"a.png"_qs, {30, 20}));
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

} // namespace

} // namespace hazelmark
