// Where the photo stands, and what the preview is made from.
#include "ScreenFixture.h"

#include "DrawTrackingView.h"
#include "NotificationNames.h"
#include "PaintView.h"
#include "PhotoImageView.h"

#include <QTest>

namespace hazelmark {

namespace {

class Fitting : public ScreenFixture
{
protected:
    /// Gives the preview container this size.
    void setBox(QSize box)
    {
        const QSize now = m_screen->mainScreenView()->previewSize();
        resizeWindow(m_window->frame().size() + box - now);
        ASSERT_EQ(m_screen->mainScreenView()->previewSize(), box);
    }
};

TEST_F(Fitting, ThePhotoIsCentredAndThePreviewIsMadeFromItsWholePoints)
{
    start();
    open(photo(u"a.png"_qs, {3000, 2000}));
    setBox({1000, 800});
    const MainScreenView *view = m_screen->mainScreenView();
    const QRectF frame = view->photoFrame();
    EXPECT_NEAR(frame.width(), 1000, 1e-3);
    EXPECT_NEAR(frame.height(), 666.667, 1e-3);
    EXPECT_NEAR(frame.top(), 66.667, 1e-3);
    EXPECT_EQ(view->paintView->frame(), frame);
    EXPECT_EQ(view->drawTrackingView->geometry(), view->paintView->geometry());
    EXPECT_EQ(m_screen->resizedInputImage()->pixelSize(), QSize(1000, 666));
    EXPECT_EQ(view->imgvwBeforeBokesh->size(), QSize(1000, 800));
    ASSERT_TRUE(QTest::qWaitFor([&] { return view->imgvwAfterBokesh->image().size() == QSize(1000, 666); }));
    ASSERT_TRUE(QTest::qWaitFor([&] { return view->imgvwBeforeBokesh->image().size() == QSize(1000, 666); }));

    // A name that says nothing opens by its content, and is shown.
    open(photo(u"photo"_qs, {300, 200}, Qt::blue));
    EXPECT_TRUE(view->vwPreviewContainer->isVisible());
    m_screen->resizeImageToFitContainer(nullptr);
    EXPECT_FALSE(view->vwPreviewContainer->isVisible());
    EXPECT_TRUE(view->vwDragging->isVisible());
}

} // namespace

} // namespace hazelmark
