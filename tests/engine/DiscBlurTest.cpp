#include "PictureReference.h"

#include <gtest/gtest.h>

namespace hazelmark {
namespace {

using namespace testing;
using ::testing::Combine;
using ::testing::Values;
using ::testing::ValuesIn;

// Pictures of 16 bits show how far a result is off before it is rounded to 8.
constexpr QImage::Format kDeep = QImage::Format_RGBX64;

TEST(DiscCoverage, IsTheAreaOfEveryPixelInTheDisc)
{
    for (const double radius : {0.01, 0.5, 0.7, 1.0, 2.5, 9.3}) {
        const int reach = int(std::ceil(radius + 0.5));
        double area = 0.0;
        for (int y = -reach; y <= reach; ++y)
            for (int x = -reach; x <= reach; ++x)
                area += kernels::discCoverage(radius, x, y);
        EXPECT_NEAR(area / (M_PI * radius * radius), 1.0, 1e-9) << radius;
    }
    // One pixel that the outline crosses twice, against its area by counting.
    int inside = 0;
    constexpr int kSteps = 2000;
    for (int i = 0; i < kSteps; ++i)
        for (int j = 0; j < kSteps; ++j)
            inside += std::hypot(-0.5 + (i + 0.5) / kSteps, 1.5 + (j + 0.5) / kSteps) <= 2.0;
    EXPECT_NEAR(kernels::discCoverage(2.0, 0, 2), double(inside) / (kSteps * kSteps), 1e-4);
}

TEST(DiscSpans, FitTheirAccumulator)
{
    for (double radius = 4.0; radius <= kernels::kLargestSummedRadius; radius += 0.37)
        EXPECT_LT(kernels::makeDiscSpans(radius, 0.3 / 255.0).total * 65535.0, 4294967296.0) << radius;
}

TEST(DiscSpans, AreNoMoreThanTheyMustBeAndNoFartherFromTheDisc)
{
    struct Row
    {
        double radius, good; // of 255
        int fractions;
        std::size_t spans; // what a pixel costs
        double off;        // the weight that lies on the wrong pixels, in thousandths
    };
    for (const auto &[radius, good, fractions, spans, off] :
         {Row{4.5, 0.3, 8, 27, 9.629}, Row{7.3, 0.3, 8, 37, 6.542}, Row{7.3, 0.45, 8, 25, 7.350},
          Row{9, 0.3, 8, 51, 5.709}, Row{11.4, 0.45, 4, 31, 10.884}, Row{14, 0.3, 8, 45, 4.907},
          Row{17.7, 0.45, 2, 43, 16.496}, Row{20, 0.3, 4, 47, 5.473}, Row{27.9, 0.3, 2, 65, 9.988},
          Row{47, 0.3, 2, 109, 5.882}}) {
        const kernels::DiscSpans disc = kernels::makeDiscSpans(radius, good / 255);
        const int side = 2 * disc.reach + 1;
        std::vector<double> weights(std::size_t(side * side), 0.0);
        std::size_t found = 0;
        for (const kernels::DiscSpans::Group &group : disc.groups) {
            found += group.spans.size();
            for (int i = 0; i < int(group.spans.size()) * side; ++i) {
                const kernels::DiscSpans::Span &span = group.spans[std::size_t(i / side)];
                const double end = 0.5 + double(span.end) / disc.fractions, y = i % side - disc.reach;
                weights[std::size_t(i % side * side + disc.reach + span.dx)] +=
                    group.weight * std::max(0.0, std::min(end, y + 0.5) - std::max(-end, y - 0.5));
            }
        }
        double wrong = 0;
        for (int i = 0; i < side * side; ++i)
            wrong += std::abs(weights[std::size_t(i)] * disc.fractions / disc.total -
                              kernels::discCoverage(radius, i % side - disc.reach, i / side - disc.reach) /
                                  (M_PI * radius * radius));
        EXPECT_EQ(disc.fractions, fractions) << radius;
        EXPECT_EQ(found, spans) << radius;
        EXPECT_NEAR(1000 * wrong, off, 0.002) << radius;
    }
}

/// What is hardest to blur: contrast as full as can be, in the shapes that meet the disc's outline.
struct Content
{
    const char *name;
    Painter (*make)(double radius, QPointF centre);
};

const Content kContents[] = {
    {"disc of the same radius",
     [](double radius, QPointF centre) -> Painter {
         return [=](int x, int y, int) { return std::hypot(x - centre.x(), y - centre.y()) <= radius ? 1.0 : 0.0; };
     }},
    {"point",
     [](double, QPointF centre) -> Painter {
         return [=](int x, int y, int) { return x == int(centre.x()) && y == int(centre.y()) ? 1.0 : 0.0; };
     }},
    {"lines, level and steep",
     [](double, QPointF centre) -> Painter {
         return [=](int x, int y, int channel) { return (channel ? x - int(centre.x()) : y - int(centre.y())) == 0; };
     }},
    {"slanting edge",
     [](double, QPointF centre) -> Painter {
         return [=](int x, int y, int) { return 0.37 * (x - centre.x()) > y - centre.y() ? 1.0 : 0.0; };
     }},
    {"checkers, fine and coarse",
     [](double, QPointF) -> Painter {
         return [=](int x, int y, int channel) { return double((x / (channel + 1) + y / (channel + 1)) & 1); };
     }},
    {"black and white noise",
     [](double, QPointF) -> Painter {
         return [=](int x, int y, int channel) { return noise(x, y, channel) < 0.5 ? 0.0 : 1.0; };
     }},
};

using HardestContent = ::testing::TestWithParam<std::tuple<Content, float>>;

TEST_P(HardestContent, IsLessThanTwoStepsOff)
{
    const auto &[content, radius] = GetParam();
    const int side = int(4 * std::min(radius, 100.0f)) + 40;
    const QRectF middle(side / 2 - 5, side / 2 - 5, 11, 11);
    const int step = radius > 60 ? 3 : 1;
    std::vector<QPointF> shifts = {QPointF(0.5, 0.25), QPointF(-1.3, 0.8), QPointF(0, 0), QPointF(2.2, -3.1)};
    shifts.resize(radius > 60 ? 2 : 4); // the reference is slow
    for (const QPointF &shift : shifts) {
        const QPointF centre = QPointF(side / 2, side / 2) + shift;
        const QImage bitmap = paint(QSize(side, side), kDeep, content.make(double(radius), centre));
        const QImage result = blurred(bitmap, radius);
        const DiscBlurReference reference(bitmap, double(radius));
        EXPECT_LT(errorOf(result, reference, middle.toRect(), step).largest, 1.5) << content.name;
        EXPECT_LT(errorOf(result, reference, bitmap.rect(), side / 8).largest, 1.5) << content.name;
    }
}

INSTANTIATE_TEST_SUITE_P(Blur, HardestContent,
                         Combine(ValuesIn(kContents), Values(0.3f, 1.0f, 3.7f, 5.3f, 8.0f, 12.0f, 19.1f, 27.9f, 28.0f,
                                                             45.6f, 63.9f, 64.0f, 120.0f)));

TEST(PhotoBlur, IsWithinATenthOfAStepOnAverage)
{
    const QImage bitmap = paint(QSize(320, 240), QImage::Format_RGBX8888, [](int x, int y, int channel) {
        return 0.5 + 0.3 * std::sin(x / 97.0 + channel) * std::cos(y / 41.0) + 0.1 * (noise(x, y, channel) - 0.5);
    });
    for (const float radius : {0.6f, 4.6f, 6.0f, 11.0f, 22.5f, 28.0f, 40.0f, 64.0f, 159.9f, 160.0f, 320.0f}) {
        const PictureError error =
            errorOf(blurred(bitmap.convertToFormat(kDeep), radius), DiscBlurReference(bitmap, double(radius)),
                    bitmap.rect(), radius > 50 ? 29 : 13);
        EXPECT_LT(error.largest, 0.5) << radius;
        EXPECT_LT(error.mean, 0.1) << radius;
    }
}

using SmallPicture = ::testing::TestWithParam<std::tuple<QSize, float>>;

TEST_P(SmallPicture, IsBlurredAsIfItsEdgesWentOnForEverAndWhatIsClearHasNoColour)
{
    const auto &[size, radius] = GetParam();
    for (const QImage::Format format : {kDeep, QImage::Format_RGBA64}) {
        const QImage bitmap = paint(size, format, [](int x, int y, int c) { return noise(x, y, c) < 0.5 ? 0.0 : 1.0; });
        const QImage result = blurred(bitmap, radius);
        ASSERT_EQ(result.size(), size);
        const DiscBlurReference reference(bitmap, double(radius));
        EXPECT_LT(errorOf(result, reference, bitmap.rect(), std::max(1, size.width() / 7)).largest, 1.5) << format;
    }
}

INSTANTIATE_TEST_SUITE_P(Blur, SmallPicture,
                         Combine(Values(QSize(1, 1), QSize(1, 40), QSize(33, 1), QSize(2, 3), QSize(17, 5),
                                        QSize(90, 61)),
                                 Values(0.01f, 2.5f, 7.0f, 30.0f, 90.0f, 200.0f, 700.0f)));

TEST(DiscBlur, LeavesAPictureOfOneColourAsItIs)
{
    for (const float radius : {0.01f, 1.3f, 6.2f, 13.0f, 30.0f, 100.0f, 170.0f, 1000.0f, 1e9f}) {
        for (const int value : {0, 1, 257, 12345, 32768, 65534, 65535}) {
            const QImage bitmap = paint(QSize(40, 30), kDeep, [&](int, int, int) { return value / 65535.0; });
            EXPECT_EQ(blurred(bitmap, radius), bitmap) << value << " " << radius;
        }
    }
}

TEST(DiscBlur, GivesAPartTheSamePixelsWhateverElseIsComputed)
{
    const QImage bitmap = paint(QSize(400, 300), kDeep, noise);
    for (const float radius : {1.5f, 9.0f, 33.0f, 100.0f, 200.0f, 900.0f}) {
        const FilterImage blur = FilterImage(bitmap).clamped().discBlurred(radius);
        const QImage whole = Renderer().draw(blur);
        for (const QRect &part : {QRect(0, 0, 31, 17), QRect(211, 83, 1, 1), QRect(333, 250, 67, 50)}) {
            const QRectF source(part.x(), 300 - part.y() - part.height(), part.width(), part.height());
            const FilterImage drawn = blur.drawnInto(part.size(), QRectF(QPointF(), part.size()), source);
            EXPECT_EQ(Renderer().draw(drawn), whole.copy(part)) << part.x();
        }
    }
}

TEST(DiscBlur, IsTheSameWithAnyNumberOfThreadsAndNothingForAHundredthOfAPixel)
{
    const QImage plain = paint(QSize(67, 41), QImage::Format_RGBX8888, noise);
    EXPECT_EQ(blurred(plain, 0.01f), plain);
    const QImage bitmap = paint(QSize(700, 300), QImage::Format_RGBA8888, noise);
    for (const float radius : {3.0f, 15.0f, 50.0f, 180.0f})
        EXPECT_EQ(blurred(bitmap, radius, 1), blurred(bitmap, radius, 7)) << radius;
    std::vector<double> told;
    Renderer(3, [&](double done) { told.push_back(done); }).draw(FilterImage(bitmap));
    EXPECT_EQ(told, (std::vector<double>{1 / 6.0, 2 / 6.0, 3 / 6.0, 4 / 6.0, 5 / 6.0, 1})) << "a tile at a time";
}

} // namespace
} // namespace hazelmark
