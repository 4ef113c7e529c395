#include "RenderJobs.h"

#include "Encoder.h"
#include "Pictures.h"
#include "Utils.h"

#include <QTemporaryDir>

#include <gtest/gtest.h>

#include <cmath>
#include <vector>

namespace hazelmark {

using testing::filled;
using testing::noise;
using testing::samplesAt;

namespace {

/// How much of the unit square around (x, y) the disc of this radius around the origin covers, by fine sampling.
double coverage(double radius, int x, int y)
{
    constexpr int kSteps = 64;
    int inside = 0;
    for (int i = 0; i < kSteps * kSteps; ++i) {
        const double px = x - 0.5 + (i % kSteps + 0.5) / kSteps, py = y - 0.5 + (i / kSteps + 0.5) / kSteps;
        inside += px * px + py * py <= radius * radius;
    }
    return double(inside) / (kSteps * kSteps);
}

double decoded(double v)
{
    return v <= 0.04045 ? v / 12.92 : std::pow((v + 0.055) / 1.055, 2.4);
}

double encoded(double v)
{
    return v <= 0.0031308 ? v * 12.92 : 1.055 * std::pow(v, 1 / 2.4) - 0.055;
}

/// The whole chain at one pixel and channel, in double precision, 0..255.
class Reference
{
public:
    Reference(QImage photo, QImage mask, double blur, double vignette)
        : m_photo(std::move(photo))
        , m_mask(std::move(mask))
        , m_radius(m_photo.width() * blur / 5 / 1000)
        , m_gain(std::exp2(-10 * vignette))
    {
        m_reach = int(std::ceil(m_radius + 0.5));
        for (int y = -m_reach; y <= m_reach; ++y)
            for (int x = -m_reach; x <= m_reach; ++x)
                m_weights.push_back(m_radius > 0 ? coverage(m_radius, x, y) : x == 0 && y == 0);
    }

    double at(int x, int y, int channel) const
    {
        double sum = 0, weights = 0;
        for (int dy = -m_reach, i = 0; dy <= m_reach; ++dy) {
            for (int dx = -m_reach; dx <= m_reach; ++dx, ++i) {
                const int sx = std::clamp(x + dx, 0, m_photo.width() - 1);
                const int sy = std::clamp(y + dy, 0, m_photo.height() - 1);
                sum += m_weights[std::size_t(i)] * samplesAt(m_photo, sx, sy)[channel];
                weights += m_weights[std::size_t(i)];
            }
        }
        double layer = sum / weights / 255;
        if (m_gain != 1)
            layer = encoded(decoded(layer) * m_gain);
        const double k = samplesAt(m_mask, x, y)[1] / 255.0;
        return 255 * k * layer + (1 - k) * samplesAt(m_photo, x, y)[channel];
    }

private:
    QImage m_photo, m_mask;
    double m_radius, m_gain;
    int m_reach;
    std::vector<double> m_weights;
};

QImage softMask(QSize size)
{
    QImage mask(size, QImage::Format_RGBX8888);
    for (int y = 0; y < size.height(); ++y)
        for (int x = 0; x < size.width(); ++x)
            mask.setPixel(x, y, qRgb(255, std::clamp(x * 2 - 100, 0, 255), 90));
    return mask;
}

class RenderJobs : public ::testing::Test
{
protected:
    QString stored(const QImage &image)
    {
        const QString path = m_folder.filePath(QStringLiteral("photo.png"));
        EncodeOptions options;
        EXPECT_TRUE(bool(encodePicture(image, options, path)));
        return path;
    }

    QTemporaryDir m_folder;
};

} // namespace

TEST_F(RenderJobs, ExportAgreesWithDoublePrecision)
{
    const QSize size(300, 200);
    const QImage photo = noise(size, QImage::Format_RGBX8888);
    const QImage mask = softMask(size);
    for (const auto &[blur, vignette] : {std::pair(60.0f, 0.0f), {60.0f, 0.1f}, {0.0f, 0.05f}, {13.7f, 0.0f}}) {
        ExportJob job;
        job.imageUrl = stored(photo);
        job.maskImage = PhotoImage::fromBitmap(mask);
        job.settings.blurAmount = blur;
        job.settings.vignetteAmount = vignette;
        const Outcome<ImageLoader::Loaded> result = job.run();
        ASSERT_TRUE(bool(result));
        const QImage picture = result->photo->bitmap();
        const Reference reference(photo, mask, blur, vignette);
        for (int i = 0; i < 600; ++i) {
            const int x = i * 37 % size.width(), y = i * 11 % size.height(), c = i % 3;
            ASSERT_NEAR(samplesAt(picture, x, y)[c], reference.at(x, y, c), 1.01)
                << x << ", " << y << " blur " << blur << " vignette " << vignette;
        }
    }
}

TEST_F(RenderJobs, ExportWithoutMaskOrEffectKeepsEveryBit)
{
    const QImage photo = noise({200, 100}, QImage::Format_RGBA8888);
    ExportJob job;
    job.imageUrl = stored(photo);
    EXPECT_EQ((*job.run()).photo->bitmap(), photo);
    job.maskImage = PhotoImage::fromBitmap(filled({50, 50}, QImage::Format_RGBX8888, Qt::green));
    job.settings.blurAmount = -3.0f;
    job.settings.vignetteAmount = 0.0f;
    job.settings.motionBlurAmount = 10.0f;
    EXPECT_EQ((*job.run()).photo->bitmap(), photo);
    EXPECT_EQ(job.maskImage->size(), QSizeF(200, 100)); // relabelled to the photo's size
    job.maskImage = PhotoImage::fromBitmap(filled({50, 50}, QImage::Format_RGBX8888, Qt::red));
    job.settings.blurAmount = 60.0f;
    job.settings.vignetteAmount = 1.0f;
    EXPECT_EQ((*job.run()).photo->bitmap(), photo);
}

TEST_F(RenderJobs, AFreshRecordDarkensAnExportButNoPreview)
{
    const QImage photo = filled({90, 60}, QImage::Format_RGBX8888, Qt::white);
    const PhotoImagePtr mask = PhotoImage::fromBitmap(filled({90, 60}, QImage::Format_RGBX8888, Qt::green));
    ExportJob job;
    job.imageUrl = stored(photo);
    job.maskImage = mask;
    EXPECT_EQ(samplesAt((*job.run()).photo->bitmap(), 40, 30)[0], 3); // 1/1024 of the light
    PreviewJob preview{PhotoImage::fromBitmap(photo), mask, CoreFilterObject()};
    EXPECT_EQ(preview.run()->bitmap(), photo);
}

TEST_F(RenderJobs, PreviewLooksLikeTheExportScaledDown)
{
    const QSize large(800, 600), small(400, 300);
    QImage photo(large, QImage::Format_RGBX8888);
    for (int y = 0; y < large.height(); ++y)
        for (int x = 0; x < large.width(); ++x)
            photo.setPixel(x, y, (x / 80 + y / 80) % 2 ? qRgb(240, 200, 30) : qRgb(10, 40, 120));
    ExportJob job;
    job.imageUrl = stored(photo);
    job.maskImage = PhotoImage::fromBitmap(filled(small, QImage::Format_RGBX8888, Qt::green));
    job.settings.blurAmount = 60.0f;
    job.settings.vignetteAmount = 0.0f;
    const QImage exported = (*job.run()).photo->bitmap();
    const PhotoImagePtr input = Utils::sharedUtils().scaleImage(PhotoImage::fromBitmap(photo), small);
    const QImage preview = PreviewJob{input, job.maskImage, job.settings}.run()->bitmap();
    for (int i = 0; i < 500; ++i) {
        const int x = i * 31 % small.width(), y = i * 17 % small.height();
        EXPECT_NEAR(samplesAt(preview, x, y)[0], samplesAt(exported, 2 * x, 2 * y)[0], 8);
    }
}

TEST_F(RenderJobs, WhatCannotBeLoadedIsAFailureOrNothing)
{
    ExportJob job;
    job.imageUrl = m_folder.filePath(QStringLiteral("none.jpg"));
    const auto result = job.run();
    ASSERT_FALSE(bool(result));
    EXPECT_EQ(result.failure().reason, Failure::Reason::NoSuchFile);
    EXPECT_EQ(PreviewJob().run(), nullptr);
}

} // namespace hazelmark
