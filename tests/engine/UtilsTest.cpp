#include "Utils.h"

#include "Pictures.h"
#include "Renderer.h"

#include <gtest/gtest.h>

#include <thread>

namespace hazelmark {

using namespace testing;

namespace {
const Utils &utils = Utils::sharedUtils();
}

TEST(PhotoImage, FilterImageMeasuresTheLogicalSize)
{
    const PhotoImagePtr photo = PhotoImage::fromBitmap(noise({200, 200}, QImage::Format_RGBX8888));
    photo->setSize({100, 100});
    EXPECT_EQ(utils.getCIImageFromNSImage(photo).extent(), QRectF(0, 0, 100, 100));
    EXPECT_EQ(photo->pixelSize(), QSize(200, 200));
    const PhotoImagePtr odd = PhotoImage::fromBitmap(noise({1199, 799}, QImage::Format_RGBX8888));
    const FilterImage large = utils.getCIImageFromNSImage(utils.scaleImage(odd, {6000, 4000}));
    EXPECT_EQ(large.extent().width(), 6000.0); // to the bit, or it would be scaled once more
    EXPECT_EQ(large.extent().height(), 4000.0);
    EXPECT_TRUE(utils.getCIImageFromNSImage(PhotoImage::fromBitmap({})).isEmpty());
}

TEST(PhotoImage, ManyThreadsMayAskForThePixelsAtOnce)
{
    const PhotoImagePtr photo = PhotoImage::fromBitmap(noise({900, 600}, QImage::Format_RGBX8888));
    const PhotoImagePtr scaled = utils.scaleImage(photo, {450, 300});
    QImage seen[4];
    std::vector<std::thread> threads;
    for (QImage &image : seen)
        threads.emplace_back([&] {
            scaled->setSize({100, 100});
            image = scaled->bitmap();
        });
    for (std::thread &thread : threads)
        thread.join();
    for (const QImage &image : seen)
        EXPECT_EQ(image.constBits(), seen[0].constBits());
}

TEST(ScaleImage, SourceReportsTheNewSizeAfterwards)
{
    const PhotoImagePtr photo = PhotoImage::fromBitmap(noise({200, 100}, QImage::Format_RGBX8888), "a profile");
    const PhotoImagePtr scaled = utils.scaleImage(photo, {50, 40});
    EXPECT_EQ(photo->size(), QSizeF(50, 40));
    EXPECT_EQ(photo->pixelSize(), QSize(200, 100));
    EXPECT_EQ(scaled->bitmap().size(), QSize(50, 40));
    EXPECT_EQ(scaled->iccProfile(), "a profile");
    EXPECT_EQ(utils.scaleImage(PhotoImage::fromBitmap({}), {5, 5}), nullptr);
}

TEST(ScaleImage, FlatAreasAndMeansAreKept)
{
    for (const QSize &size : {QSize(1, 1), QSize(3, 200), QSize(640, 480), QSize(1500, 7)}) {
        const PhotoImagePtr flat =
            PhotoImage::fromBitmap(filled({97, 61}, QImage::Format_RGBX8888, QColor(255, 0, 77)));
        const QImage scaled = utils.scaleImage(flat, size)->bitmap();
        EXPECT_EQ(scaled, filled(size, QImage::Format_RGBX8888, QColor(255, 0, 77))) << size.width();
    }
    const QImage fine = noise({512, 512}, QImage::Format_RGBX8888);
    double mean = 0;
    for (int y = 0; y < 512; ++y)
        for (int x = 0; x < 512; ++x)
            mean += samplesAt(fine, x, y)[0] / (512.0 * 512.0);
    const QImage small = utils.scaleImage(PhotoImage::fromBitmap(fine), {4, 4})->bitmap();
    double smallMean = 0;
    for (int i = 0; i < 16; ++i)
        smallMean += samplesAt(small, i % 4, i / 4)[0] / 16.0;
    EXPECT_NEAR(smallMean, mean, 1.5); // every source pixel counts
}

TEST(ScaleImage, SmoothRampsStaySmoothAndInPlaceAlsoInOneDirectionOnly)
{
    const QImage ramp = drawn({64, 48}, QImage::Format_RGBX8888, [](int x, int y) { return QColor(x * 4, y * 5, 0); });
    for (const QSize &size : {QSize(640, 480), QSize(64, 480), QSize(640, 48), QSize(32, 480), QSize(640, 16)}) {
        const QImage scaled = utils.scaleImage(PhotoImage::fromBitmap(ramp), size)->bitmap();
        ASSERT_EQ(scaled.size(), size);
        const double across = 64.0 / size.width(), along = 48.0 / size.height();
        // Away from the edges, whose pixels are repeated.
        for (int y = int(8 / along); y < int(40 / along); y += 1 + size.height() / 37) {
            for (int x = int(8 / across); x < int(56 / across); x += 1 + size.width() / 41) {
                EXPECT_NEAR(samplesAt(scaled, x, y)[0], ((x + 0.5) * across - 0.5) * 4, 0.51) << size.width();
                EXPECT_NEAR(samplesAt(scaled, x, y)[1], ((y + 0.5) * along - 0.5) * 5, 0.51) << size.height();
            }
        }
    }
}

TEST(ScaleImage, TransparentColoursDoNotBleed)
{
    const QImage image = drawn({20, 20}, QImage::Format_RGBA8888, [](int x, int) {
        return x < 10 ? QColor(255, 0, 0, 0) : QColor(0, 0, 255, 255); // red nobody sees
    });
    const QImage scaled = utils.scaleImage(PhotoImage::fromBitmap(image), {70, 70})->bitmap();
    for (int x = 0; x < 70; ++x) {
        if (samplesAt(scaled, x, 35)[3] > 0) {
            EXPECT_EQ(samplesAt(scaled, x, 35)[0], 0) << x;
        }
    }
}

TEST(DrawedImage, CropsPlacesAndRefusesEmptyInput)
{
    const QImage bitmap = noise({30, 20}, QImage::Format_RGBX8888);
    const FilterImage image(bitmap);
    EXPECT_EQ(utils.getDrawedImage({}, {10, 10}, {0, 0}, {0, 0, 10, 10}), nullptr);
    const PhotoImagePtr whole = utils.getDrawedImage(image.clamped(), {30, 20}, {0, 0}, {0, 0, 30, 20});
    EXPECT_EQ(whole->bitmap(), bitmap);
    // Origin bottom-left: the source rectangle's lower left corner lands at the point, 5 from the left, 4 from below.
    const QImage placed = utils.getDrawedImage(image, {30, 20}, {5, 4}, {0, 0, 30, 20})->bitmap();
    EXPECT_EQ(placed.pixelColor(5, 15), bitmap.pixelColor(0, 19));
    EXPECT_EQ(placed.pixelColor(4, 15).alpha(), 0);
    EXPECT_EQ(placed.pixelColor(5, 16).alpha(), 0);
    // A part that lands where it lay comes alone.
    const QImage part = utils.getDrawedImage(image, {30, 20}, {5, 4}, {5, 4, 30, 20})->bitmap();
    EXPECT_EQ(part.pixelColor(5, 15), bitmap.pixelColor(5, 15));
    EXPECT_EQ(part.pixelColor(4, 15).alpha(), 0);
    EXPECT_EQ(part.pixelColor(5, 16).alpha(), 0);
}

TEST(BlurPass, RadiusFollowsTheWidthAndBordersKeepTheirColour)
{
    // b = 5 on a picture 2000 wide blurs with radius 2: a point spreads two pixels and no further.
    QImage point = filled({2000, 20}, QImage::Format_RGBX8888, Qt::black);
    point.setPixelColor(1000, 10, Qt::white);
    CoreFilterObject settings;
    settings.blurAmount = 5.0f;
    const QImage blurred = utils.applyfilterOnBlurImage(PhotoImage::fromBitmap(point), {}, settings)->bitmap();
    EXPECT_NEAR(samplesAt(blurred, 1000, 10)[0], 255 / (4 * 3.14159), 1);
    EXPECT_NEAR(samplesAt(blurred, 1001, 10)[0], 255 / (4 * 3.14159), 1);
    EXPECT_GT(samplesAt(blurred, 1002, 10)[0], 0);
    EXPECT_EQ(samplesAt(blurred, 1003, 10)[0], 0);
}

} // namespace hazelmark
