#include "RenderJobs.h"

#include "DiscBlurReference.h"
#include "Pictures.h"
#include "SamplePhotos.h"
#include "Utils.h"

#include <QTemporaryDir>

#include <gtest/gtest.h>

#include <cmath>

namespace hazelmark {

using namespace testing;

namespace {

/// The whole chain at one pixel and channel, in double precision, 0..255.
class Reference
{
public:
    Reference(const QImage &photo, const QImage &mask, double blur, double vignette)
        : m_photo(photo)
        , m_mask(mask)
        , m_isBlurred(blur > 0)
        , m_blur(photo, m_isBlurred ? photo.width() * blur / 5 / 1000 : 1)
        , m_gain(std::exp2(-10 * vignette))
    {
    }

    double at(int x, int y, int channel) const
    {
        const double plain = samplesAt(m_photo, x, y)[channel];
        double layer = m_isBlurred ? m_blur.at(x, y)[std::size_t(channel)] : plain / 255;
        if (m_gain != 1)
            layer = srgbFromLinear(linearFromSrgb(layer) * m_gain);
        const double k = samplesAt(m_mask, x, y)[1] / 255.0;
        return 255 * k * layer + (1 - k) * plain;
    }

private:
    const QImage &m_photo;
    const QImage &m_mask;
    bool m_isBlurred;
    DiscBlurReference m_blur;
    double m_gain;
};

class RenderJobs : public ::testing::Test
{
protected:
    QString stored(const QImage &image) { return writePhoto(m_folder, WriteFormat::Png, {}, image); }

    QTemporaryDir m_folder;
};

} // namespace

TEST_F(RenderJobs, AgreeWithDoublePrecisionAndOnlyAnExportDarkens)
{
    const QSize size(300, 200);
    const QImage photo = noise(size, QImage::Format_RGBX8888);
    const QImage mask = drawn(size, QImage::Format_RGBX8888,
                              [](int x, int) { return QColor(255, std::clamp(x * 2 - 100, 0, 255), 90); });
    for (const auto &[blur, vignette] : {std::pair(60.0f, 0.0f), {60.0f, 0.1f}, {0.0f, 1.0f}, {13.7f, 0.0f}}) {
        ExportJob job;
        job.photo = *Photo::open(stored(photo));
        job.maskImage = PhotoImage::fromBitmap(mask);
        job.settings.blurAmount = blur;
        job.settings.vignetteAmount = vignette;
        const Outcome<ImageLoader::Loaded> result = job.run();
        ASSERT_TRUE(bool(result));
        const QImage picture = result->photo->bitmap();
        const QImage preview = PreviewJob{PhotoImage::fromBitmap(photo), job.maskImage, job.settings}.run()->bitmap();
        const Reference reference(photo, mask, blur, vignette);
        const Reference undarkened(photo, mask, blur, 0);
        for (int i = 0; i < 600; ++i) {
            const int x = i * 37 % size.width(), y = i * 11 % size.height(), c = i % 3;
            ASSERT_NEAR(samplesAt(picture, x, y)[c], reference.at(x, y, c), 1.01)
                << x << ", " << y << " blur " << blur << " vignette " << vignette;
            ASSERT_NEAR(samplesAt(preview, x, y)[c], undarkened.at(x, y, c), 1.01);
        }
    }
}

TEST_F(RenderJobs, ExportWithoutMaskOrEffectKeepsEveryBit)
{
    const QImage photo = noise({200, 100}, QImage::Format_RGBA8888);
    ExportJob job;
    job.photo = *Photo::open(stored(photo));
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

} // namespace hazelmark
