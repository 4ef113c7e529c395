#include "RenderJobs.h"

#include "FlippedImage.h"
#include "Pictures.h"
#include "SamplePhotos.h"
#include "Utils.h"

#include <QTemporaryDir>

#include <gtest/gtest.h>

namespace hazelmark {

using namespace testing;

TEST(RenderJobs, BlurWhereTheMaskIsGreenAndOnlyAnExportDarkens)
{
    const QTemporaryDir folder;
    const QSize size(300, 200);
    const QImage photo = noise(size, QImage::Format_RGBX8888);
    const PhotoImagePtr plain = PhotoImage::fromBitmap(photo);
    const PhotoImagePtr mask = PhotoImage::fromBitmap(drawn(
        size, QImage::Format_RGBX8888, [](int x, int) { return QColor(255, std::clamp(x * 2 - 100, 0, 255), 90); }));
    for (const auto &[blur, vignette] : {std::pair(60.0f, 0.0f), {60.0f, 0.1f}, {0.0f, 1.0f}, {13.7f, 0.0f}}) {
        ExportJob job;
        job.photo = *Photo::open(writePhoto(folder, WriteFormat::Png, {}, photo));
        job.maskImage = mask;
        job.settings.blurAmount = blur;
        job.settings.vignetteAmount = vignette;
        const PhotoImagePtr blurred = Utils::sharedUtils().applyfilterOnBlurImage(plain, {}, job.settings);
        const PhotoImagePtr dark = FlippedImage::vignetteWithRadius(blurred, 0, vignette, Qt::black);
        const auto onto = [&](const PhotoImagePtr &layer) {
            return FlippedImage::blendWithAlphaMask(layer, plain, mask, 20)->bitmap();
        };
        const Outcome<ImageLoader::Loaded> result = job.run();
        ASSERT_TRUE(bool(result));
        EXPECT_LE(difference(result->photo->bitmap(), onto(dark)), 1) << blur << " " << vignette;
        EXPECT_LE(difference(PreviewJob{plain, mask, job.settings}.run()->bitmap(), onto(blurred)), 1);
    }
}

TEST(RenderJobs, ExportWithoutMaskOrEffectKeepsEveryBit)
{
    const QTemporaryDir folder;
    const QImage photo = noise({200, 100}, QImage::Format_RGBA8888);
    ExportJob job;
    job.photo = *Photo::open(writePhoto(folder, WriteFormat::Png, {}, photo));
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
