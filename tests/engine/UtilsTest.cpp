#include "Utils.h"

#include "FlippedImage.h"
#include "PictureReference.h"
#include "Pictures.h"

#include <gtest/gtest.h>

#include <thread>

namespace hazelmark {

using namespace testing;

namespace {

const Utils &utils = Utils::sharedUtils();

/// A picture scaled by Keys' cubic, which widens where it shrinks, beyond its edges as if they went on.
class ScaleReference
{
public:
    ScaleReference(const QImage &bitmap, QSize size)
        : m_pixels(bitmap)
        , m_across(axis(bitmap.width(), size.width()))
        , m_along(axis(bitmap.height(), size.height()))
    {
    }

    Colour operator()(int x, int y) const
    {
        WeightedSum sum;
        for (const auto &[line, weight] : m_along[std::size_t(y)])
            for (const auto &[column, share] : m_across[std::size_t(x)])
                sum.add(weight * share, m_pixels(column, line));
        return sum.colour();
    }

private:
    using Axis = std::vector<std::vector<std::pair<int, double>>>;

    static Axis axis(int from, int to)
    {
        const double step = double(from) / to, stretch = std::max(1.0, step);
        Axis axis(static_cast<std::size_t>(to));
        for (int i = 0; i < to; ++i) {
            const double centre = (i + 0.5) * step - 0.5;
            double sum = 0;
            for (int at = int(centre - 2 * stretch) - 1; at < centre + 2 * stretch; ++at) {
                const double x = std::abs(at - centre) / stretch;
                const double weight = x < 1   ? 1 - 2.5 * x * x + 1.5 * x * x * x
                                      : x < 2 ? 2 - 4 * x + 2.5 * x * x - 0.5 * x * x * x
                                              : 0;
                axis[std::size_t(i)].emplace_back(at, weight);
                sum += weight;
            }
            for (auto &[at, weight] : axis[std::size_t(i)])
                weight /= sum;
        }
        return axis;
    }

    Pixels m_pixels;
    Axis m_across, m_along;
};

} // namespace

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
    EXPECT_EQ(scaled->bitmap().size(), QSize(50, 40));
    EXPECT_EQ(scaled->iccProfile(), "a profile");
    EXPECT_EQ(utils.scaleImage(PhotoImage::fromBitmap({}), {5, 5}), nullptr);
}

TEST(ScaleImage, AgreesWithDoublePrecisionAtEverySizeAndDepth)
{
    for (const QImage::Format format : {QImage::Format_RGBX8888, QImage::Format_RGBA8888, QImage::Format_RGBX64}) {
        const QImage bitmap = noise({97, 61}, format);
        for (const QSize size : {QSize(1, 1), QSize(3, 200), QSize(97, 130), QSize(300, 61), QSize(40, 200),
                                 QSize(600, 16), QSize(96, 60), QSize(530, 140)}) {
            const QImage scaled = utils.scaleImage(PhotoImage::fromBitmap(bitmap), size)->bitmap();
            ASSERT_EQ(scaled.size(), size);
            ASSERT_EQ(scaled.format(), format);
            const double off =
                errorOf(scaled, ScaleReference(bitmap, size), scaled.rect(), 1 + size.width() / 50).largest;
            EXPECT_LT(off, format == QImage::Format_RGBX64 ? 0.01 : 0.51) << size.width() << " " << format;
        }
    }
}

TEST(PhotoImage, IsLaidOverAColourFadedAndDarkenedInEveryFormat)
{
    const QColor color(200, 0, 40);
    const Colour behind{200 / 255.0, 0, 40 / 255.0, 1};
    for (const QImage::Format format :
         {QImage::Format_RGBX8888, QImage::Format_RGBA8888, QImage::Format_RGBA64, QImage::Format_Grayscale8}) {
        const QImage bitmap = noise({600, 140}, format); // more than one tile each way
        const PhotoImagePtr photo = PhotoImage::fromBitmap(bitmap);
        const Pixels pixels(bitmap);
        const auto expect = [&](const PhotoImagePtr &drawn, const auto &reference) {
            EXPECT_LT(errorOf(drawn->bitmap(), reference, pixels.rect(), 1).largest, 0.51) << format;
        };
        expect(utils.getTransparentImageFromImage(photo, 0.3f), [&](int x, int y) {
            const Colour &colour = pixels(x, y);
            return Colour{colour[0], colour[1], colour[2], 0.3 * colour[3]};
        });
        const auto over = [&](int x, int y) {
            WeightedSum sum;
            sum.add(1, pixels(x, y));
            sum.add(1 - pixels(x, y)[3], behind);
            return sum.colour();
        };
        expect(utils.addBackgroundToImage(photo, color), over);
        expect(FlippedImage::vignetteWithRadius(photo, 0, 0.1f, Qt::black), [&](int x, int y) {
            Colour colour = pixels(x, y);
            for (std::size_t c = 0; c < 3; ++c) // half the light
                colour[c] = srgbFromLinear(linearFromSrgb(colour[c]) / 2);
            return colour;
        });
        for (const QColor &ground : {color, QColor(Qt::black)}) {
            const QImage canvas = bitmap.convertToFormat(QImage::Format_RGBA8888_Premultiplied);
            const QImage graph = utils.addBackgroundToImage(PhotoImage::fromBitmap(canvas), ground)->bitmap();
            EXPECT_LE(
                errorOf(utils.addBackgroundToImage(canvas, ground)->bitmap(), Pixels(graph), pixels.rect(), 1).largest,
                1.01);
        }
    }
    const PhotoImagePtr photo = PhotoImage::fromBitmap(noise({3, 2}, QImage::Format_RGBX8888));
    for (const float intensity : {0.0f, -1.0f, std::nanf("")})
        EXPECT_EQ(FlippedImage::vignetteWithRadius(photo, 0, intensity, Qt::black), photo);
    photo->setSize({0, 2});
    EXPECT_EQ(utils.getTransparentImageFromImage(photo, 0.5f), photo);
    EXPECT_EQ(utils.getTransparentImageFromImage(nullptr, 0.5f), nullptr);
    EXPECT_EQ(utils.addBackgroundToImage(PhotoImagePtr(), color), nullptr);
    EXPECT_EQ(utils.addBackgroundToImage(QImage(), color), nullptr);
}

TEST(DrawedImage, CropsPlacesAndRefusesEmptyInput)
{
    const QImage bitmap = noise({30, 20}, QImage::Format_RGBX8888);
    const FilterImage image(bitmap);
    EXPECT_EQ(utils.getDrawedImage({}, {10, 10}, {0, 0}, {0, 0, 10, 10}), nullptr);
    EXPECT_EQ(utils.getDrawedImage(image, {10, 10}, {0, 0}, {0, 0, 10, 0}), nullptr);
    // Origin bottom-left: the source rectangle's lower left corner lands at the point.
    for (const auto &[size, at, from] : {std::tuple(QSize(30, 20), QPoint(), QRect(0, 0, 30, 20)),
                                         {{12, 7}, {}, {0, 0, 12, 7}},
                                         {{40, 20}, {}, {0, 0, 40, 20}},
                                         {{30, 33}, {}, {0, 0, 30, 33}},
                                         {{30, 20}, {5, 4}, {0, 0, 30, 20}},
                                         {{30, 20}, {0, -4}, {0, 0, 30, 20}},
                                         {{30, 20}, {5, 4}, {5, 4, 30, 20}}}) {
        const QImage placed = utils.getDrawedImage(image, size, at, from)->bitmap();
        ASSERT_EQ(placed.size(), size);
        for (int y = 0; y < size.height(); ++y) {
            for (int x = 0; x < size.width(); ++x) {
                const QPoint fromBelow(x, size.height() - 1 - y);
                const QPoint source = fromBelow - at + from.topLeft();
                const bool isSeen = QRect(at, size).contains(fromBelow) && bitmap.rect().contains(source);
                ASSERT_EQ(placed.pixelColor(x, y),
                          isSeen ? bitmap.pixelColor(source.x(), 19 - source.y()) : QColor(0, 0, 0, 0))
                    << x << ' ' << y;
            }
        }
    }
    // Beyond its edges a clamped picture goes on.
    const QImage clamped = utils.getDrawedImage(image.clamped(), {40, 20}, {0, 0}, {0, 0, 40, 20})->bitmap();
    EXPECT_EQ(clamped.copy(0, 0, 30, 20), bitmap);
    EXPECT_EQ(clamped.pixelColor(39, 3), bitmap.pixelColor(29, 3));
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
