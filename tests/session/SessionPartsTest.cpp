// The pieces of a session, each by itself.
#include "DisplayColors.h"
#include "ReadableTypes.h"
#include "WorkQueue.h"

#include <gtest/gtest.h>

#include <QColorSpace>
#include <QTest>

#include <atomic>
#include <thread>

namespace hazelmark {

TEST(DisplayColors, ShowAPhotoInTheColoursThatItsProfileMeans)
{
    // Qt's own conversion is the other way to compute it.
    const QColorSpace adobe(QColorSpace::AdobeRgb);
    for (const QImage::Format format : {QImage::Format_RGBX8888, QImage::Format_RGBA64}) {
        QImage photo(300, 200, format);
        for (int y = 0; y < photo.height(); ++y)
            for (int x = 0; x < photo.width(); ++x)
                photo.setPixelColor(x, y, QColor(80 + x / 3, 60 + y / 2, 140));
        const QImage shown = DisplayColors().shown(photo, adobe.iccProfile());
        QImage expected = photo;
        expected.setColorSpace(adobe);
        expected.convertToColorSpace(QColorSpace::SRgb);
        int worst = 0;
        for (int y = 0; y < photo.height(); y += 7)
            for (int x = 0; x < photo.width(); x += 7) {
                const QColor a = shown.pixelColor(x, y);
                const QColor b = expected.pixelColor(x, y);
                worst = std::max({worst, std::abs(a.red() - b.red()), std::abs(a.green() - b.green()),
                                  std::abs(a.blue() - b.blue())});
            }
        EXPECT_LE(worst, 2);
    }
}

TEST(DisplayColors, LeaveWhatNeedsNoConversionAndSurviveBrokenProfiles)
{
    QImage photo(20, 10, QImage::Format_RGBX8888);
    photo.fill(QColor(12, 34, 56));
    const QColorSpace adobe(QColorSpace::AdobeRgb);
    EXPECT_EQ(DisplayColors().shown(photo, {}).pixelColor(3, 3), QColor(12, 34, 56));
    EXPECT_EQ(DisplayColors(adobe.iccProfile()).shown(photo, adobe.iccProfile()).pixelColor(3, 3), QColor(12, 34, 56));
    EXPECT_EQ(DisplayColors("junk").shown(photo, "rubbish").pixelColor(3, 3), QColor(12, 34, 56));
    EXPECT_EQ(DisplayColors("junk").shown(photo, adobe.iccProfile()), DisplayColors().shown(photo, adobe.iccProfile()));
    QImage transparent(20, 10, QImage::Format_RGBA8888);
    transparent.fill(QColor(200, 100, 50, 128));
    const QImage shown = DisplayColors().shown(transparent, {});
    EXPECT_EQ(shown.format(), QImage::Format_ARGB32_Premultiplied);
    EXPECT_EQ(shown.pixelColor(0, 0).alpha(), 128);
}

TEST(ReadableTypes, AreTheSameForPanelAndDrop)
{
    for (const char16_t *extension : {u"jpg", u"JPEG", u"png", u"tif", u"TIFF", u"gif", u"bmp", u"webp"}) {
        EXPECT_TRUE(ReadableTypes::contains(QString::fromUtf16(extension)));
        EXPECT_TRUE(ReadableTypes::fileNamePatterns().contains(QStringLiteral("*.") + QString::fromUtf16(extension)));
    }
    for (const char16_t *extension : {u"", u"svg", u"pdf", u"tga", u"txt", u"jp"})
        EXPECT_FALSE(ReadableTypes::contains(QString::fromUtf16(extension)));
}

TEST(WorkQueue, BringsResultsInOrderAndEndsWithItsOwner)
{
    std::atomic<int> begun = 0;
    std::atomic<bool> go = false;
    int delivered = 0;
    {
        WorkQueue queue(1);
        std::vector<int> order;
        for (int i = 0; i < 50; ++i)
            queue.run([i] { return i; }, [&](int result) { order.push_back(result); });
        ASSERT_TRUE(QTest::qWaitFor([&] { return order.size() == 50; }));
        EXPECT_TRUE(std::is_sorted(order.begin(), order.end()));
        EXPECT_EQ(queue.pending(), 0);
        for (int i = 0; i < 10; ++i) {
            queue.run(
                [&] {
                    ++begun;
                    while (!go)
                        std::this_thread::yield();
                },
                [&] { ++delivered; });
        }
        EXPECT_EQ(queue.pending(), 10);
        ASSERT_TRUE(QTest::qWaitFor([&] { return begun == 1; }));
        go = true;
    }
    QTest::qWait(20);
    EXPECT_LE(begun, 10);
    EXPECT_EQ(delivered, 0);
}

} // namespace hazelmark
