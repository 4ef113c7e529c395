// Previews as a person sees them. Which are rendered, and which of them arrives: tests of Session.
#include "ScreenFixture.h"

#include "FloatSlider.h"
#include "NotificationNames.h"
#include "SettingsPanel.h"

#include <QTest>

namespace hazelmark {

using Previews = ScreenFixture;

TEST_F(Previews, AStrokeShowsInThePhotoOnceTheMouseIsReleased)
{
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
    m_screen->panel().slider(Setting::BlurAmount)->setValue(100);
    stroke({0.5, 0.4}, {0.5, 0.6}, false);
    QTest::qWait(50);
    EXPECT_EQ(m_shown, 0);
    letGo({0.5, 0.6});
    waitForPreviews(1);
    EXPECT_NEAR(shownAt({0.499, 0.5}).red(), 127, 60) << "the edge is soft where it was painted";
    EXPECT_LT(shownAt({0.49, 0.1}).red(), 5) << "and hard where it was not";
    post(kNotificationApplyPreviewEffect);
    waitForPreviews(2);
}

TEST_F(Previews, ADraggedSliderWaitsForTheOneBeforeAndTheScreenMayGoMeanwhile)
{
    Gate gate;
    std::atomic<bool> held = false;
    std::atomic<int> shownBlur = -1;
    m_work.render = [&](const PreviewJob &job) {
        ++m_rendered;
        if (held)
            gate.pass();
        shownBlur = int(job.settings.blurAmount.value_or(0));
        return job.resizedInputImage;
    };
    start();
    open(photo(u"a.png"_qs, {600, 400}));
    FloatSlider *blur = m_screen->panel().slider(Setting::BlurAmount);
    blur->setValueByUser(10);
    ASSERT_TRUE(QTest::qWaitFor([&] { return shownBlur == 10; }));
    held = true;
    const int before = m_rendered;
    const int width = blur->width();
    QTest::mousePress(blur, Qt::LeftButton, {}, {width / 2, 10});
    ASSERT_TRUE(QTest::qWaitFor([&] { return m_rendered == before + 1; }));
    for (int x = width / 2; x < width; ++x) {
        QTest::mouseMove(blur, {x, 10});
        QTest::qWait(2);
    }
    EXPECT_LT(blur->value(), 60) << "where it was pressed";
    held = false;
    gate.open(1);
    EXPECT_TRUE(QTest::qWaitFor([&] { return shownBlur == 100; })) << "the pointer's place";
    EXPECT_EQ(m_rendered, before + 2);
    QTest::mouseRelease(blur, Qt::LeftButton, {}, {width - 1, 10});

    waitForPreviews(m_rendered);
    held = true;
    const int shown = m_shown;
    for (int i = 0; i < 5; ++i)
        m_screen->btnProcessTapped();
    ASSERT_TRUE(QTest::qWaitFor([&] { return m_rendered > before + 2; }));
    gate.open();
    m_screen.reset();
    m_window.reset();
    EXPECT_EQ(m_shown, shown);
}

} // namespace hazelmark
