// How a photo gets onto the screen, and what happens to the one before. Which of several it is: tests of Session.
#include "ScreenFixture.h"

#include "FloatSlider.h"
#include "IMGButton.h"
#include "PhotoFile.h"
#include "PhotoImageView.h"
#include "SummaryBar.h"

#include <QFile>
#include <QLabel>
#include <QPushButton>
#include <QTest>

namespace hazelmark {

namespace {

class Opening : public ScreenFixture
{
protected:
    void expectNoPhoto()
    {
        EXPECT_FALSE(m_screen->hasPhoto());
        EXPECT_EQ(m_screen->toolType(), Painting::kToolNone);
        EXPECT_TRUE(m_application.isUiDisabled() && view().vwDragging->isVisible());
        EXPECT_FALSE(view().btnExport->isEnabled() || view().btnShareService->isEnabled());
        EXPECT_FALSE(view().vwRightContainer->isVisible() || view().vwBottom->isVisible() ||
                     view().vwPreviewContainer->isVisible());
    }
};

TEST_F(Opening, APhotoIsShownWithPanelAndBarAndABrushReadyToPaint)
{
    Gate gate;
    m_work.reading.load = [&gate, real = m_work.reading.load](Photo &photo, QSize bound) {
        gate.pass();
        auto loaded = real(photo, bound);
        loaded->isPartlyDamaged = photo.path().endsWith(u"damaged.png"_qs);
        return loaded;
    };
    start();
    expectNoPhoto();
    m_screen->photoDraggedWithPath(photo(u"a.png"_qs, {300, 200}));
    const auto *note = m_screen->view()->findChild<QLabel *>(u"loadingNote"_qs);
    ASSERT_TRUE(QTest::qWaitFor([&] { return note->isVisible(); }));
    EXPECT_EQ(note->text(), u"LOADING a.png"_qs);
    gate.open();
    ASSERT_TRUE(QTest::qWaitFor([&] { return m_screen->hasPhoto(); }));
    EXPECT_EQ(shownAt({0.5, 0.5}), QColor(Qt::red)) << "the first sight of it comes with it";
    EXPECT_FALSE(note->isVisible() || view().vwDragging->isVisible());
    EXPECT_EQ(m_screen->toolType(), Painting::kToolPaint);
    EXPECT_FALSE(m_application.isUiDisabled());
    EXPECT_TRUE(view().btnExport->isEnabled() && view().btnShareService->isEnabled());
    EXPECT_TRUE(view().vwRightContainer->isVisible());
    EXPECT_EQ(view().vwBottom->txtFilePath(), u"a.png"_qs);
    EXPECT_EQ(m_application.m_file->filePath(), m_screen->imageUrl());
    open(photo(u"damaged.png"_qs, {300, 200}));
    EXPECT_EQ(view().vwBottom->notice(), u"PHOTO_PARTLY_DAMAGED %@"_qs);
    open(photo(u"whole.png"_qs, {300, 200}));
    EXPECT_EQ(view().vwBottom->notice(), QString());
}

TEST_F(Opening, ThePhotoIsCentredAndThePreviewIsMadeFromItsWholePoints)
{
    start();
    open(photo(u"a.png"_qs, {3000, 2000}));
    resizeWindow(m_window->frame().size() + QSize(1000, 800) - view().previewSize());
    const QRectF frame = view().photoFrame();
    EXPECT_NEAR(frame.height(), 666.667, 1e-3);
    EXPECT_NEAR(frame.top(), 66.667, 1e-3);
    EXPECT_EQ(canvas().frame(), frame);
    EXPECT_EQ(m_screen->resizedInputImage()->pixelSize(), QSize(1000, 666));
    ASSERT_TRUE(QTest::qWaitFor([&] { return view().imgvwAfterBokesh->image().size() == QSize(1000, 666); }));
    ASSERT_TRUE(QTest::qWaitFor([&] { return view().imgvwBeforeBokesh->image().size() == QSize(1000, 666); }));
}

TEST_F(Opening, ABrokenFileIsRefusedWithASentenceAndCostsNobodyTheirPainting)
{
    start();
    const QString text = file(u"text.jpg"_qs, "just words");
    view().btnAddPhotoOnPrompt->setFocus();
    m_screen->photoDraggedWithPath(text);
    EXPECT_FALSE(view().btnAddPhotoOnPrompt->hasFocus()) << "hidden meanwhile";
    EXPECT_EQ(answeredSheet(), u"ERROR_CANT_OPEN %@|REFUSED_NOT_A_PICTURE text.jpg"_qs);
    expectNoPhoto();
    EXPECT_EQ(m_window->focusWidget(), view().btnAddPhotoOnPrompt);
    const QString before = photo(u"before.png"_qs, {300, 200});
    open(before);
    stroke({0.3, 0.5}, {0.6, 0.5});
    panel().slider(Setting::BlurAmount)->setValue(10);
    panel().slider(Setting::Vignette)->setValue(0.04);
    m_screen->segmentPaintEraseTapped(panel().btnEraser());
    QFile whole(before);
    ASSERT_TRUE(whole.open(QIODevice::ReadOnly));
    const QString cut = file(u"cut.png"_qs, whole.read(whole.size() / 3));
    m_screen->photoDraggedWithPath(cut);
    EXPECT_EQ(answeredSheet(), u"ERROR_CANT_OPEN %@|REFUSED_TRUNCATED cut.png"_qs);
    EXPECT_EQ(m_screen->imageUrl(), before);
    EXPECT_GT(paintAt({0.4, 0.5}), 200);
    EXPECT_EQ(panel().slider(Setting::BlurAmount)->value(), 10);
    EXPECT_EQ(m_screen->toolType(), Painting::kToolErase);
    open(photo(u"after.png"_qs, {300, 200}));
    EXPECT_EQ(panel().slider(Setting::BlurAmount)->value(), 60) << "set back";
    EXPECT_EQ(panel().slider(Setting::Vignette)->value(), 0.04) << "kept";
}

} // namespace

} // namespace hazelmark
