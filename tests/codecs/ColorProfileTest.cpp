#include "ColorProfile.h"
#include "CodedColors.h"
#include "TestFiles.h"

#include <QtEndian>

#include <cmath>

#include <lcms2.h>

namespace hazelmark {

namespace {

QByteArray saved(cmsHPROFILE profile)
{
    cmsUInt32Number size = 0;
    cmsSaveProfileToMem(profile, nullptr, &size);
    QByteArray bytes(qsizetype(size), '\0');
    cmsSaveProfileToMem(profile, bytes.data(), &size);
    cmsCloseProfile(profile);
    return bytes;
}

QByteArray grayProfile(double gamma, cmsColorSpaceSignature connection = cmsSigXYZData)
{
    cmsToneCurve *curve = cmsBuildGamma(nullptr, gamma);
    cmsHPROFILE profile = cmsCreateGrayProfile(cmsD50_xyY(), curve);
    cmsFreeToneCurve(curve);
    cmsSetPCS(profile, connection);
    return saved(profile);
}

/// Primaries wider than those of sRGB, white D65, a plain power curve.
QByteArray wideProfile(double gamma)
{
    const cmsCIExyY white = {0.3127, 0.3290, 1};
    const cmsCIExyYTRIPLE primaries = {{0.64, 0.33, 1}, {0.21, 0.71, 1}, {0.15, 0.06, 1}};
    cmsToneCurve *curve = cmsBuildGamma(nullptr, gamma);
    cmsToneCurve *curves[3] = {curve, curve, curve};
    cmsHPROFILE profile = cmsCreateRGBProfile(&white, &primaries, curves);
    cmsFreeToneCurve(curve);
    return saved(profile);
}

double srgbEncoded(double linear)
{
    linear = std::clamp(linear, 0.0, 1.0);
    return linear <= 0.0031308 ? 12.92 * linear : 1.055 * std::pow(linear, 1 / 2.4) - 0.055;
}

/// sRGB of a colour of wideProfile(gamma), by the matrices between the two sets of primaries (same white).
std::array<double, 3> expectedSrgb(const std::array<double, 3> &wide, double gamma)
{
    const double r = std::pow(wide[0], gamma);
    const double g = std::pow(wide[1], gamma);
    const double b = std::pow(wide[2], gamma);
    return {srgbEncoded(1.39836 * r - 0.39836 * g), srgbEncoded(g), srgbEncoded(-0.04293 * g + 1.04293 * b)};
}

} // namespace

TEST(ColorProfile, RgbProfileOfAGrayOneShowsTheSameLevels)
{
    for (const double gamma : {0.0, 1.0, 1.8, 2.2}) { // 0: lightness, as it is
        const QByteArray rgb = rgbProfileForGray(gamma > 0 ? grayProfile(gamma) : grayProfile(1.0, cmsSigLabData));
        QImage levels(16, 1, QImage::Format_RGBX64);
        for (int x = 0; x < 16; ++x)
            levels.setPixelColor(x, 0, QColor::fromRgba64(quint16(4369 * x), quint16(4369 * x), quint16(4369 * x)));
        const QImage shown = convertedToSrgb(levels, rgb);
        for (int x = 0; x < 16; ++x) {
            const double lightness = (100.0 * x / 15 + 16) / 116;
            const double y = gamma > 0              ? std::pow(x / 15.0, gamma)
                             : lightness > 6.0 / 29 ? std::pow(lightness, 3)
                                                    : (lightness - 16.0 / 116) / 7.787;
            EXPECT_NEAR(shown.pixelColor(x, 0).greenF(), srgbEncoded(y), 1e-3) << gamma << " " << x;
        }
    }
}

TEST(ColorProfile, RgbProfileOfAGrayPictureIsItselfAndOthersAreNone)
{
    const QByteArray rgb = wideProfile(2.2);
    EXPECT_EQ(rgbProfileForGray(rgb), rgb);
    EXPECT_TRUE(rgbProfileForGray({}).isEmpty());
    EXPECT_TRUE(rgbProfileForGray("no profile").isEmpty());
    EXPECT_TRUE(rgbProfileForGray(rgb.left(200)).isEmpty());
    EXPECT_TRUE(rgbProfileForGray(saved(cmsCreateLab4Profile(nullptr))).isEmpty());
}

TEST(ColorProfile, ConversionToSrgbMatchesTheMatricesAndKeepsAlpha)
{
    constexpr double kGamma = 2.2;
    for (const QImage::Format format :
         {QImage::Format_RGBX8888, QImage::Format_RGBA8888, QImage::Format_RGBX64, QImage::Format_RGBA64}) {
        const QImage original = makePicture(64, 73, format);
        const QImage converted = convertedToSrgb(original, wideProfile(kGamma));
        double worst = 0;
        for (int y = 0; y < 73; ++y) {
            for (int x = 0; x < 64; ++x) {
                const QRgba64 before = original.pixelColor(x, y).rgba64();
                const QRgba64 after = converted.pixelColor(x, y).rgba64();
                const auto expected =
                    expectedSrgb({before.red() / 65535.0, before.green() / 65535.0, before.blue() / 65535.0}, kGamma);
                EXPECT_EQ(after.alpha(), before.alpha());
                worst = std::max({worst, std::abs(after.red() / 65535.0 - expected[0]),
                                  std::abs(after.green() / 65535.0 - expected[1]),
                                  std::abs(after.blue() / 65535.0 - expected[2])});
            }
        }
        EXPECT_LT(worst, 1.3 / 255) << format;
    }
}

TEST(ColorProfile, PixelsThatAreSrgbAlreadyOrHaveNoUsableProfileKeepEveryBit)
{
    const QImage original = makePicture(64, 48, QImage::Format_RGBA64);
    for (const QByteArray &profile :
         {saved(cmsCreate_sRGBProfile()), QByteArray(), QByteArray("no profile"), grayProfile(2.2)})
        EXPECT_TRUE(samePixels(convertedToSrgb(original, profile), original));
    EXPECT_FALSE(ColorTransform::between(wideProfile(1.8), {}, original.format())->isIdentity());
}

TEST(ColorProfile, OfCodesHasTheirCurveAndPrimaries)
{
    // By the formulas of the curves, and by the matrices between the primaries with the curve of sRGB.
    constexpr int kSrgb = 13;
    const std::tuple<int, int, std::array<int, 3>, std::array<double, 3>> rows[] = {
        {9, 1, {10, 10, 10}, {23.3, 23.3, 23.3}},         {9, 14, {160, 160, 160}, {169.4, 169.4, 169.4}},
        {1, 4, {60, 60, 60}, {57.4, 57.4, 57.4}},         {1, 5, {160, 160, 160}, {142.2, 142.2, 142.2}},
        {1, 7, {10, 10, 10}, {25.1, 25.1, 25.1}},         {1, 7, {160, 160, 160}, {170.3, 170.3, 170.3}},
        {1, 8, {60, 60, 60}, {133.2, 133.2, 133.2}},      {1, 17, {160, 160, 160}, {148.3, 148.3, 148.3}},
        {5, kSrgb, {150, 120, 90}, {151.2, 120, 90.4}},   {6, kSrgb, {150, 120, 90}, {148.2, 120.2, 89.7}},
        {9, kSrgb, {150, 120, 90}, {167.4, 115.8, 84.6}}, {12, kSrgb, {150, 120, 90}, {155.8, 118.5, 85.3}}};
    for (const auto &[primaries, transfer, sample, expected] : rows) {
        QImage pixel(1, 1, QImage::Format_RGBX64);
        pixel.fill(QColor(sample[0], sample[1], sample[2]));
        const QRgba64 shown =
            convertedToSrgb(pixel, profileOfCodes(primaries, transfer, false)).pixelColor(0, 0).rgba64();
        EXPECT_NEAR(shown.red() / 257.0, expected[0], 0.7) << primaries << " " << transfer;
        EXPECT_NEAR(shown.green() / 257.0, expected[1], 0.7) << primaries << " " << transfer;
        EXPECT_NEAR(shown.blue() / 257.0, expected[2], 0.7) << primaries << " " << transfer;
    }
    for (const auto &[primaries, transfer, isGray] :
         {std::tuple(1, 13, false), {2, 2, false}, {9, 13, true}, {9, 16, false}, {9, 18, false}, {99, 1, false}})
        EXPECT_TRUE(profileOfCodes(primaries, transfer, isGray).isEmpty()) << primaries << " " << transfer;
    EXPECT_FALSE(profileOfCodes(9, 1, true).isEmpty());
}

/// A picture in a tag of a maker's own, in one that the colours need, and between the tags.
TEST(ColorProfile, IsCarriedWithoutPictures)
{
    const QByteArray plain = wideProfile(2.2);
    const QByteArray picture = QByteArray("\xff\xd8\xff\xdb\0\x43", 6) + QByteArray(65, '\1') +
                               QByteArray("\xff\xda\0\x08\1\1\0\0\x3f\0", 10) + noiseBytes(300, 5) + "\xff\xd9";
    const auto withTag = [&](const char *name) {
        cmsHPROFILE profile = cmsOpenProfileFromMem(plain.constData(), cmsUInt32Number(plain.size()));
        cmsWriteRawTag(profile, cmsTagSignature(qFromBigEndian<quint32>(name)), picture.constData(),
                       cmsUInt32Number(picture.size()));
        return saved(profile);
    };
    EXPECT_EQ(profileWithoutPictures(plain), plain);
    EXPECT_TRUE(profileWithoutPictures(withTag("A2B0")).isEmpty());
    const QImage pixels = makePicture(20, 10, QImage::Format_RGBX8888);
    for (const QByteArray &profile : {withTag("Acme"), plain + picture}) {
        ASSERT_TRUE(profile.contains(picture));
        const QByteArray carried = profileWithoutPictures(profile);
        EXPECT_FALSE(carried.contains(picture.mid(100, 40)));
        EXPECT_EQ(qFromBigEndian<quint32>(carried.constData()), quint32(carried.size()));
        EXPECT_TRUE(samePixels(convertedToSrgb(pixels, carried), convertedToSrgb(pixels, plain)));
        EXPECT_EQ(profileDescription(carried), profileDescription(plain));
        EXPECT_LE(carried.size(), plain.size() + 3);
    }
}

using ProfiledFiles = FolderTest;

TEST_F(ProfiledFiles, GifAndBmpAreWrittenInSrgb)
{
    const QImage pixels = makePicture(32, 20, QImage::Format_RGBX8888);
    const QByteArray profile = wideProfile(2.2);
    for (const WriteFormat format : {WriteFormat::Gif, WriteFormat::Bmp})
        EXPECT_EQ(encoded(pixels, optionsFor(format, {.iccProfile = profile})),
                  encoded(convertedToSrgb(pixels, profile), optionsFor(format)));
}

} // namespace hazelmark
