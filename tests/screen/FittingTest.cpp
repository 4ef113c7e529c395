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
    QSize fitted() const { return m_screen->resizedInputImage()->pixelSize(); }
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
    EXPECT_EQ(fitted(), QSize(1000, 666));
    EXPECT_EQ(view->imgvwBeforeBokesh->size(), QSize(1000, 800));
    ASSERT_TRUE(QTest::qWaitFor([&] { return view->imgvwAfterBokesh->image().size() == QSize(1000, 666); }));
    ASSERT_TRUE(QTest::qWaitFor([&] { return view->imgvwBeforeBokesh->image().size() == QSize(1000, 666); }));
}

TEST_F(Fitting, HundredsOfQuickResizesLoseNothing)
{
    start();
    open(photo(u"a.png"_qs, {1500, 1000}));
    stroke({0.2, 0.5}, {0.8, 0.5});
    waitForPreviews(1);
    setBox({900, 700});
    const QRectF frame = m_screen->mainScreenView()->photoFrame();
    for (int i = 0; i < 300; ++i)
        resizeWindow({500 + (i * 37) % 1100, 400 + (i * 53) % 700});
    setBox({900, 700});
    EXPECT_EQ(m_screen->mainScreenView()->photoFrame(), frame) << "no fit builds on the rounding of the one before";
    const QSize pixels(int(frame.width()), int(frame.height()));
    EXPECT_EQ(fitted(), pixels);
    EXPECT_EQ(m_screen->inputImage()->size(), QSizeF(1500, 1000));
    EXPECT_EQ(m_screen->arrDrawedPointsForCustomBrushOption()->size(), 11U);
    m_screen->windowEndResizing();
    QTest::qWait(1100);
    EXPECT_GT(paintAt({0.5, 0.5}), 200);
    EXPECT_EQ(paintAt({0.5, 0.1}), 0);
    const MainScreenView *view = m_screen->mainScreenView();
    ASSERT_TRUE(QTest::qWaitFor([&] { return view->imgvwAfterBokesh->image().size() == pixels; }));
}

TEST_F(Fitting, ABigPhotoIsHeldOnlyAsLargeAsTheScreenButMeasuresWhatItIs)
{
    start();
    open(photo(u"big.png"_qs, {6000, 3000}));
    EXPECT_EQ(m_screen->inputImage()->size(), QSizeF(6000, 3000));
    EXPECT_LT(m_screen->inputImage()->pixelSize().width(), 3000);
    EXPECT_GE(m_screen->inputImage()->pixelSize().width(), m_screen->resizedInputImage()->pixelSize().width());
}

TEST_F(Fitting, PreviewInputAndMaskAreOfTheSameFit)
{
    std::mutex mutex;
    std::vector<std::pair<QSize, QSize>> pairs;
    m_work.render = [&](const PreviewJob &job) {
        std::lock_guard lock(mutex);
        pairs.emplace_back(job.resizedInputImage->pixelSize(), job.maskImage->pixelSize());
        return job.resizedInputImage;
    };
    start();
    open(photo(u"a.png"_qs, {1500, 1000}));
    int asked = 0;
    for (int i = 0; i < 60; ++i) {
        resizeWindow({700 + (i * 37) % 600, 500 + (i * 53) % 300});
        m_screen->applyCustomEnhanceFilterOnPreviewImage();
        ++asked;
    }
    waitForPreviews(asked);
    std::lock_guard lock(mutex);
    for (const auto &[input, mask] : pairs)
        EXPECT_EQ(input, mask);
}

TEST_F(Fitting, AnExtensionThatCannotBeReadFallsBackToTheHint)
{
    start();
    open(photo(u"a.png"_qs, {300, 200}));
    // A name that says nothing opens by its content, and is shown.
    open(photo(u"photo"_qs, {300, 200}, Qt::blue));
    EXPECT_TRUE(m_screen->mainScreenView()->vwPreviewContainer->isVisible());
    m_screen->resizeImageToFitContainer(nullptr);
    EXPECT_FALSE(m_screen->mainScreenView()->vwPreviewContainer->isVisible());
    EXPECT_TRUE(m_screen->mainScreenView()->vwDragging->isVisible());
}

} // namespace

} // namespace hazelmark
