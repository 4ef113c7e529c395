// Previews: what starts one, that each is rendered to its end, and which of them is shown.
#include "ScreenFixture.h"

#include "FloatSlider.h"
#include "NotificationNames.h"
#include "PhotoImageView.h"
#include "SettingsPanel.h"

#include <QTest>

namespace hazelmark {

namespace {

/// Renders a picture in one colour: red is the blur amount, so that a test sees whose result is on show.
class Previews : public ScreenFixture
{
protected:
    Previews()
    {
        m_work.render = [this](const PreviewJob &job) {
            ++m_rendered;
            if (m_held)
                m_gate.pass();
            if (!m_isDrawable)
                return PhotoImagePtr();
            QImage result(job.resizedInputImage ? job.resizedInputImage->pixelSize() : QSize(1, 1),
                          QImage::Format_RGBX8888);
            result.fill(QColor(int(job.settings.blurAmount.value_or(0)), 0, 200));
            return PhotoImage::fromBitmap(result);
        };
    }
    ~Previews() override { m_gate.open(); }

    void openPhoto()
    {
        start();
        open(photo(u"a.png"_qs, {600, 400}));
    }
    FloatSlider *blur() const { return m_screen->panel().slider(Setting::BlurAmount); }
    int shownBlur() const { return shownAt({0.5, 0.5}).blue() == 200 ? shownAt({0.5, 0.5}).red() : -1; }

    Gate m_gate;
    std::atomic<bool> m_held = false;
    std::atomic<bool> m_isDrawable = true;
};

TEST_F(Previews, AStrokeShowsInThePhotoOnceTheMouseIsReleased)
{
    m_work.render = PreviewRunner::realRender();
    start();
    QImage halves(600, 400, QImage::Format_RGB32);
    halves.fill(Qt::white);
    for (int x = 0; x < 300; ++x)
        for (int y = 0; y < 400; ++y)
            halves.setPixelColor(x, y, Qt::black);
    const QString path = m_folder.filePath(u"halves.png"_qs);
    ASSERT_TRUE(halves.save(path));
    open(path);
    ASSERT_TRUE(QTest::qWaitFor([&] { return shownAt({0.49, 0.5}).red() < 5; }));
    blur()->setValue(100);
    stroke({0.5, 0.4}, {0.5, 0.6}, false);
    QTest::qWait(50);
    EXPECT_EQ(m_shown, 0);
    letGo({0.5, 0.6});
    waitForPreviews(1);
    EXPECT_NEAR(shownAt({0.499, 0.5}).red(), 127, 60) << "the edge is soft where it was painted";
    EXPECT_LT(shownAt({0.49, 0.1}).red(), 5) << "and hard where it was not";
}

TEST_F(Previews, EveryRequestIsRenderedAndTheLastToFinishStays)
{
    openPhoto();
    for (int value = 1; value <= 40; ++value)
        blur()->setValueByUser(value);
    waitForPreviews(40);
    EXPECT_EQ(m_rendered, 40);
    EXPECT_EQ(shownBlur(), 40);
}

TEST_F(Previews, ADraggedSliderWaitsForTheOneBefore)
{
    openPhoto();
    blur()->setValueByUser(10);
    ASSERT_TRUE(QTest::qWaitFor([&] { return shownBlur() == 10; }));
    m_held = true;
    const int before = m_rendered;
    const int width = blur()->width();
    QTest::mousePress(blur(), Qt::LeftButton, {}, {width / 2, 10});
    ASSERT_TRUE(QTest::qWaitFor([&] { return m_rendered == before + 1; }));
    for (int x = width / 2; x < width; ++x) {
        QTest::mouseMove(blur(), {x, 10});
        QTest::qWait(2);
    }
    EXPECT_LT(blur()->value(), 60) << "where it was pressed";
    m_held = false;
    m_gate.open();
    EXPECT_TRUE(QTest::qWaitFor([&] { return shownBlur() == 100; })) << "the pointer's place";
    EXPECT_EQ(m_rendered, before + 2);
    QTest::mouseRelease(blur(), Qt::LeftButton, {}, {width - 1, 10});
}

TEST_F(Previews, OneOfAPhotoThatIsNoLongerOpenIsDropped)
{
    openPhoto();
    m_held = true;
    blur()->setValueByUser(77);
    ASSERT_TRUE(QTest::qWaitFor([&] { return m_rendered == 1; }));
    m_held = false;
    open(photo(u"b.png"_qs, {600, 400}, Qt::green));
    m_gate.open();
    ASSERT_TRUE(QTest::qWaitFor([&] { return shownAt({0.5, 0.5}) == QColor(Qt::green); }));
    QTest::qWait(100);
    EXPECT_EQ(m_shown, 0);
    EXPECT_EQ(shownAt({0.5, 0.5}), QColor(Qt::green));
}

TEST_F(Previews, AreNotStartedWithoutAPhotoOrWithoutMaskAndOverlay)
{
    start();
    m_screen->btnProcessTapped();
    QTest::qWait(50);
    EXPECT_EQ(m_rendered, 0);
    open(photo(u"a.png"_qs, {600, 400}));
    m_screen->btnResetTapped(); // no tool, no mask
    m_screen->applyCustomEnhanceFilterOnPreviewImage();
    QTest::qWait(50);
    EXPECT_EQ(m_rendered, 0);
    m_screen->setOverlayImage(m_screen->inputImage());
    m_screen->applyCustomEnhanceFilterOnPreviewImage();
    waitForPreviews(1);
}

TEST_F(Previews, AResultFreesTheScreenAndEveryRequestForgetsTheLastExport)
{
    openPhoto();
    m_screen->setIsRunningAlgorithm(true);
    m_screen->setLastExportedImage(m_screen->inputImage());
    post(kNotificationApplyPreviewEffect);
    waitForPreviews(1);
    EXPECT_FALSE(m_screen->isRunningAlgorithm());
    EXPECT_EQ(m_screen->lastExportedImage(), nullptr);
}

TEST_F(Previews, OneThatCannotBeDrawnFreesTheScreenToo)
{
    openPhoto();
    blur()->setValueByUser(33);
    waitForPreviews(1);
    m_isDrawable = false;
    m_screen->setIsRunningAlgorithm(true);
    m_screen->btnProcessTapped();
    EXPECT_TRUE(QTest::qWaitFor([&] { return !m_screen->isRunningAlgorithm(); }));
    EXPECT_EQ(shownBlur(), 33) << "what was there before stays";
}

TEST_F(Previews, TheScreenMayGoWhileTheyAreRendered)
{
    openPhoto();
    m_held = true;
    for (int i = 0; i < 5; ++i)
        m_screen->btnProcessTapped();
    ASSERT_TRUE(QTest::qWaitFor([&] { return m_rendered == 1; }));
    m_gate.open();
    m_screen.reset();
    m_window.reset();
    EXPECT_EQ(m_shown, 0);
}

} // namespace

} // namespace hazelmark
