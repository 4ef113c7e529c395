#include "TestFiles.h"
#include "TestPictures.h"

namespace hazelmark {

using JpegKinds = FolderTest;

TEST_F(JpegKinds, EveryCodingGivesTheSamePixels)
{
    std::vector<uint8_t> samples;
    QRandomGenerator random(3);
    for (int i = 0; i < 50 * 37 * 3; ++i)
        samples.push_back(uint8_t(i / 30 + random.bounded(30)));
    const Picture plain = decoded(makeJpeg({}, 50, 37, samples));
    ASSERT_EQ(plain.pixels.format(), QImage::Format_RGBX8888);
    for (const TestJpeg &kind : {TestJpeg{.isProgressive = true}, TestJpeg{.restartInterval = 3}})
        EXPECT_TRUE(samePixels(decodedEvenly(makeJpeg(kind, 50, 37, samples)), plain.pixels));
}

TEST_F(JpegKinds, ReducedDecodeIsNeverSmallerThanAskedFor)
{
    const std::vector<uint8_t> samples(size_t(203 * 101 * 3), 90);
    const QByteArray file = makeJpeg({}, 203, 101, samples);
    for (const auto &[atLeast, expected] : {std::pair(QSize(), QSize(203, 101)),
                                            {{150, 10}, {203, 101}},
                                            {{102, 51}, {102, 51}},
                                            {{52, 26}, {102, 51}},
                                            {{1, 1}, {26, 13}}})
        EXPECT_EQ(decoded(file, atLeast).pixels.size(), expected) << atLeast.width() << "x" << atLeast.height();
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
    for (const TestJpeg &kind : {TestJpeg{}, TestJpeg{.isProgressive = true}, TestJpeg{.restartInterval = 8}}) {
        const QByteArray file = makeJpeg(kind, 64, 64, samples);
        ASSERT_TRUE(file.endsWith(end));
        const QByteArray picture = file.chopped(2);
        const QByteArray half = picture.left(picture.size() / 2);
        const bool isPlain = !kind.isProgressive && kind.restartInterval == 0;
        const struct
        {
            const char *what;
            QByteArray file;
            Outcome outcome;
        } rows[] = {
            {"trailing data", file + "of a maker's own", Whole},
            {"padded with zeros", picture + QByteArray(5000, '\0') + end, Whole},
            {"many bytes too many", picture + QByteArray(5000, 'z') + end, Damaged},
            {"overwritten with noise", overwritten(file, noiseBytes(300, 6)), Damaged},
            {"with another frame in it", overwritten(file, "\xff\xc0"), Damaged},
            {"with another start in it", overwritten(file, "\xff\xd8"), Damaged},
            {"with an unknown marker in it", overwritten(file, "\xff\xf0"), Damaged},
            {"nothing behind the first half", half, CutOff},
            {"an end marker too early", half + end, CutOff},
            {"zeros for the second half", half + QByteArray(picture.size() / 2, '\0'), isPlain ? Damaged : CutOff},
            {"no end marker", picture, Whole},
        };
        for (const auto &row : rows) {
            const auto got = decodePicture(write(QStringLiteral("picture"), row.file));
            const Outcome outcome = !got ? CutOff : got->isPartlyDamaged ? Damaged : Whole;
            EXPECT_EQ(outcome, row.outcome) << row.what << " " << kind.isProgressive << " " << kind.restartInterval;
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
