#include "ImageLoader.h"

#include "FlippedImage.h"
#include "Pictures.h"
#include "SamplePhotos.h"

#include <QColorSpace>
#include <QTemporaryDir>

#include <gtest/gtest.h>

namespace hazelmark {

using testing::noise;

TEST(ImageLoader, ThePictureStandsUprightWithItsProfile)
{
    const QTemporaryDir folder;
    for (const QImage::Format format : {QImage::Format_RGBX8888, QImage::Format_RGBA64}) {
        const QImage upright = noise({64, 48}, format);
        for (int orientation = 0; orientation <= 8; ++orientation) { // 0: no metadata
            MetadataBlocks blocks = orientation > 0 ? oriented(orientation) : MetadataBlocks();
            if (orientation % 2 == 1)
                blocks.iccProfile = QColorSpace(QColorSpace::DisplayP3).iccProfile();
            const QString path =
                writePhoto(folder, WriteFormat::Png, blocks, FlippedImage::RotateWithEXIF(upright, orientation));
            const PhotoImagePtr photo = ImageLoader::getImageWithFixedOrientionFromUrl(path);
            ASSERT_TRUE(photo);
            EXPECT_EQ(photo->bitmap(), upright) << orientation;
            EXPECT_EQ(photo->iccProfile(), blocks.iccProfile);
            const auto reduced = ImageLoader::loadReduced(**Photo::open(path), {32, 32});
            ASSERT_TRUE(bool(reduced));
            EXPECT_EQ(reduced->photo->pixelSize(), QSize(32, 24)) << orientation;
        }
    }
}

TEST(ImageLoader, GrayBecomesRgbWithTheSameLevels)
{
    const QTemporaryDir folder;
    const QString path = folder.filePath(QStringLiteral("gray.pgm"));
    const QImage gray = noise({64, 48}, QImage::Format_Grayscale8);
    ASSERT_TRUE(gray.save(path, "PNG"));
    const auto loaded = ImageLoader::load(path);
    ASSERT_TRUE(bool(loaded));
    EXPECT_EQ(loaded->colorModel, ColorModel::Gray);
    EXPECT_EQ(loaded->photo->bitmap(), gray.convertToFormat(QImage::Format_RGBX8888));
}

} // namespace hazelmark
