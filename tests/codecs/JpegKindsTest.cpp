#include "TestFiles.h"
#include "TestPictures.h"

namespace hazelmark {

class JpegKinds : public FolderTest
{
protected:
    /// 16 × 16 blocks of plain colours, so that what JPEG loses is nothing: `colors` of `channels` samples.
    static std::vector<uint8_t> blocks(const std::vector<std::vector<int>> &colors)
    {
        std::vector<uint8_t> samples;
        for (int y = 0; y < 16; ++y) {
            for (size_t x = 0; x < 16 * colors.size(); ++x)
                samples.insert(samples.end(), colors[x / 16].begin(), colors[x / 16].end());
        }
        return samples;
    }
};

TEST_F(JpegKinds, GrayStaysGrayWithItsProfile)
{
    const TestJpeg kind{.colors = TestJpeg::Colors::Gray, .iccProfile = QByteArray(200, 'g')};
    const auto [info, picture] = read(makeJpeg(kind, 48, 16, blocks({{0}, {77}, {255}})));
    ASSERT_EQ(picture.pixels.format(), QImage::Format_Grayscale8);
    EXPECT_EQ(picture.fileColorModel, ColorModel::Gray);
    EXPECT_EQ(picture.iccProfile, kind.iccProfile);
    EXPECT_EQ(info.colorModel, ColorModel::Gray);
    const uchar *row = picture.pixels.constScanLine(5);
    EXPECT_EQ((std::vector{row[0], row[20], row[40]}), (std::vector<uchar>{0, 77, 255}));
}

TEST_F(JpegKinds, InkIsConvertedToSrgbWhicheverWayItIsStored)
{
    using Colors = TestJpeg::Colors;
    const std::vector<uint8_t> samples =
        blocks({{0, 0, 0, 0}, {255, 0, 0, 0}, {0, 255, 255, 0}, {0, 0, 0, 255}, {51, 102, 0, 51}});
    for (const auto &[colors, hasAdobeMarker] :
         {std::pair(Colors::Cmyk, true), std::pair(Colors::Cmyk, false), std::pair(Colors::Ycck, true)}) {
        const QByteArray profile(300, 'x'); // not usable: the plain formula is taken
        const TestJpeg kind{.colors = colors, .hasAdobeMarker = hasAdobeMarker, .iccProfile = profile};
        const auto [info, picture] = read(makeJpeg(kind, 80, 16, samples));
        EXPECT_EQ(picture.fileColorModel, ColorModel::Cmyk);
        EXPECT_TRUE(picture.convertedToSrgb);
        EXPECT_TRUE(picture.iccProfile.isEmpty());
        ASSERT_EQ(picture.pixels.format(), QImage::Format_RGBX8888);
        const QColor expected[] = {QColor(255, 255, 255), QColor(0, 255, 255), QColor(255, 0, 0), QColor(0, 0, 0),
                                   QColor(163, 122, 204)};
        for (int block = 0; block < 5; ++block) {
            const QColor color = picture.pixels.pixelColor(16 * block + 8, 8);
            EXPECT_NEAR(color.red(), expected[block].red(), 2) << block;
            EXPECT_NEAR(color.green(), expected[block].green(), 2) << block;
            EXPECT_NEAR(color.blue(), expected[block].blue(), 2) << block;
        }
        EXPECT_EQ(info.colorModel, ColorModel::Cmyk);
        EXPECT_EQ(info.iccProfile, profile);
    }
}

TEST_F(JpegKinds, EveryCodingGivesTheSamePixels)
{
    std::vector<uint8_t> samples;
    QRandomGenerator random(3);
    for (int i = 0; i < 50 * 37 * 3; ++i)
        samples.push_back(uint8_t(i / 30 + random.bounded(30)));
    const Picture plain = decoded(makeJpeg({}, 50, 37, samples));
    ASSERT_EQ(plain.pixels.format(), QImage::Format_RGBX8888);
    for (const TestJpeg &kind :
         {TestJpeg{.isProgressive = true}, TestJpeg{.isArithmetic = true}, TestJpeg{.restartInterval = 3}})
        EXPECT_TRUE(samePixels(decoded(makeJpeg(kind, 50, 37, samples)).pixels, plain.pixels));
}

TEST_F(JpegKinds, RgbIsNotTakenForLuminanceAndChroma)
{
    const QImage pixels =
        decoded(makeJpeg({.colors = TestJpeg::Colors::Rgb}, 32, 16, blocks({{200, 10, 30}, {0, 90, 250}}))).pixels;
    EXPECT_EQ(pixels.pixelColor(8, 8), QColor(200, 10, 30));
    EXPECT_EQ(pixels.pixelColor(24, 8), QColor(0, 90, 250));
}

TEST_F(JpegKinds, ReducedDecodeIsNeverSmallerThanAskedFor)
{
    const std::vector<uint8_t> samples(size_t(203 * 101 * 3), 90);
    const QByteArray file = makeJpeg({}, 203, 101, samples);
    const struct
    {
        QSize atLeast;
        QSize expected;
    } cases[] = {{{}, {203, 101}},       {{203, 101}, {203, 101}}, {{150, 10}, {203, 101}}, {{102, 51}, {102, 51}},
                 {{51, 26}, {51, 26}},   {{52, 26}, {102, 51}},    {{10, 13}, {26, 13}},    {{1, 1}, {26, 13}},
                 {{400, 1}, {203, 101}}, {{0, 0}, {203, 101}}};
    for (const auto &[atLeast, expected] : cases)
        EXPECT_EQ(decoded(file, atLeast).pixels.size(), expected) << atLeast.width() << "x" << atLeast.height();
}

TEST_F(JpegKinds, OnlyAbsoluteDensitiesAreResolutions)
{
    const std::vector<uint8_t> samples(16 * 16 * 3, 90);
    const auto dpi = [&](int unit) {
        return infoOf(makeJpeg({.densityUnit = unit, .densityX = 300, .densityY = 150}, 16, 16, samples)).dpi;
    };
    EXPECT_EQ(dpi(0), std::nullopt);
    EXPECT_EQ(dpi(1), QSizeF(300, 150));
    EXPECT_EQ(dpi(2), QSizeF(300 * 2.54, 150 * 2.54));
}

TEST_F(JpegKinds, ProfileOfSeveralSegmentsIsPutTogether)
{
    const QByteArray profile = noiseBytes(150000, 9);
    const Read got = read(makeJpeg({.iccProfile = profile}, 16, 16, std::vector<uint8_t>(16 * 16 * 3, 90)));
    EXPECT_EQ(got.info.iccProfile, profile);
    EXPECT_EQ(got.picture.iccProfile, profile);
}

/// Damage in the middle is told with the picture, a picture that is cut off is refused, and neither is mixed up with
/// what some encoders leave in their files.
TEST_F(JpegKinds, DamageIsToldFromCutsAndEncodersHabits)
{
    enum Outcome { Whole, Damaged, CutOff };
    const QByteArray end("\xff\xd9");
    const QByteArray bytes = noiseBytes(64 * 64 * 3, 3);
    const std::vector<uint8_t> samples(bytes.begin(), bytes.end());
    const auto overwritten = [](QByteArray file, const QByteArray &part) {
        return file.replace(file.size() / 2, part.size(), part);
    };
    for (const TestJpeg &kind : {TestJpeg{}, TestJpeg{.isProgressive = true}, TestJpeg{.restartInterval = 8},
                                 TestJpeg{.isArithmetic = true}}) {
        const QByteArray file = makeJpeg(kind, 64, 64, samples);
        ASSERT_TRUE(file.endsWith(end));
        const QByteArray picture = file.chopped(2);
        const QByteArray half = picture.left(picture.size() / 2);
        const bool isPlain = !kind.isProgressive && !kind.isArithmetic && kind.restartInterval == 0;
        const struct
        {
            const char *what;
            QByteArray file;
            Outcome outcome;
        } rows[] = {
            {"trailing data", file + "of a maker's own", Whole},
            {"some bytes too many", picture + QByteArray(3, 'z') + end, Whole},
            {"padded with zeros", picture + QByteArray(5000, '\0') + end, Whole},
            {"many bytes too many", picture + QByteArray(5000, 'z') + end, Damaged},
            {"overwritten with ones", overwritten(file, QByteArray(200, '\xff')), Damaged},
            {"overwritten with noise", overwritten(file, noiseBytes(300, 6)), Damaged},
            {"nothing behind the first half", half, CutOff},
            {"an end marker too early", half + end, kind.isArithmetic ? Whole : CutOff},
            {"zeros for the second half", half + QByteArray(picture.size() / 2, '\0'), isPlain ? Damaged : CutOff},
            {"no end marker", picture, kind.isArithmetic ? CutOff : Whole},
        };
        for (const auto &row : rows) {
            const auto got = decodePicture(write(QStringLiteral("picture"), row.file));
            const Outcome outcome = !got ? CutOff : got->isPartlyDamaged ? Damaged : Whole;
            EXPECT_EQ(outcome, row.outcome) << row.what
                                            << (kind.isProgressive  ? ", progressive"
                                                : kind.isArithmetic ? ", arithmetic"
                                                                    : "")
                                            << " " << kind.restartInterval;
            EXPECT_TRUE(got || got.failure().reason == Failure::Reason::Truncated) << row.what;
        }
    }
}

/// What several threads write in bands is, byte for byte, what one encoder writes with the same restart interval.
TEST_F(JpegKinds, PictureOfManyBandsIsWrittenAsByOneEncoder)
{
    // Fewer and more bands than there are restart markers; the last one short, and neither side whole blocks.
    for (const auto &[size, blocksPerBand] :
         {std::pair(QSize(1003, 1101), 126 * 65), std::pair(QSize(2001, 2693), 251 * 32)}) {
        const QImage pixels = makePicture(size.width(), size.height(), QImage::Format_RGBX8888);
        const QImage packed = pixels.convertToFormat(QImage::Format_RGB888);
        std::vector<uint8_t> samples;
        for (int y = 0; y < size.height(); ++y)
            samples.insert(samples.end(), packed.constScanLine(y), packed.constScanLine(y) + 3 * size.width());
        const QByteArray expected = makeJpeg({.restartInterval = blocksPerBand}, size.width(), size.height(), samples);
        EncodeOptions options = optionsFor(WriteFormat::Jpeg);
        options.jpegQuality = 100;
        // Opaque alpha and 16 bits take the way over converted rows.
        for (const QImage::Format format : {QImage::Format_RGBX8888, QImage::Format_RGBA8888, QImage::Format_RGBX64})
            EXPECT_TRUE(encoded(pixels.convertToFormat(format), options) == expected) << size.width() << " " << format;
    }
}

} // namespace hazelmark
