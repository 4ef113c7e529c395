#include "ImageLoader.h"

#include "FlippedImage.h"
#include "Pictures.h"
#include "SamplePhotos.h"

#include <QColorSpace>
#include <QTemporaryDir>

#include <gtest/gtest.h>

namespace hazelmark {

using testing::noise;
using testing::samplesAt;

namespace {

class ImageLoaderFiles : public ::testing::Test
{
protected:
    QString write(const QImage &image, const MetadataBlocks &metadata, WriteFormat format = WriteFormat::Png)
    {
        return writePhoto(m_folder, format, metadata, image);
    }

    QTemporaryDir m_folder;
};

MetadataBlocks tagged(int orientation)
{
    MetadataBlocks blocks;
    blocks.exif = exifBlock({{"Exif.Image.Orientation", QByteArray::number(orientation).constData()}});
    return blocks;
}

} // namespace

class LoadedOrientations : public ImageLoaderFiles, public ::testing::WithParamInterface<int>
{
};

TEST_P(LoadedOrientations, ThePictureStandsUpright)
{
    const int orientation = GetParam();
    const QImage upright = noise({64, 48}, QImage::Format_RGBX8888);
    const QString path = write(FlippedImage::RotateWithEXIF(upright, orientation), tagged(orientation));
    EXPECT_EQ(ImageLoader::getImageOriginalSizeAtFilePathUrl(path), QSizeF(64, 48));
    const PhotoImagePtr photo = ImageLoader::getImageWithFixedOrientionFromUrl(path);
    ASSERT_TRUE(photo);
    EXPECT_EQ(photo->size(), QSizeF(64, 48));
    EXPECT_EQ(photo->bitmap(), upright);
    const auto reduced = ImageLoader::loadReduced(**Photo::open(path), {32, 32});
    ASSERT_TRUE(bool(reduced));
    EXPECT_EQ(reduced->photo->pixelSize(), QSize(32, 24));
    EXPECT_EQ((*ImageLoader::loadReduced(**Photo::open(path), {500, 500})).photo->bitmap(), upright);
}

INSTANTIATE_TEST_SUITE_P(All, LoadedOrientations, ::testing::Range(1, 9));

TEST_F(ImageLoaderFiles, ARotatedPictureIsScaledToTheWidthAskedFor)
{
    const QString path = write(noise({80, 60}, QImage::Format_RGBX8888), tagged(6));
    const PhotoImagePtr photo = ImageLoader::getImageFromFile(path, 30, 1000);
    EXPECT_EQ(photo->size(), QSizeF(30, 40));
    EXPECT_EQ(photo->pixelSize(), QSize(30, 40));
    // One that is stored upright comes as it is.
    const QString plain = write(noise({80, 60}, QImage::Format_RGBX8888), tagged(1));
    EXPECT_EQ(ImageLoader::getImageFromFile(plain, 30, 1000)->pixelSize(), QSize(80, 60));
}

TEST_F(ImageLoaderFiles, WithoutMetadataTheFileLoadsAsStored)
{
    const QImage image = noise({31, 17}, QImage::Format_RGBA64);
    const PhotoImagePtr photo = ImageLoader::getImageWithFixedOrientionFromUrl(write(image, {}));
    EXPECT_EQ(photo->bitmap(), image);
    EXPECT_EQ(photo->size(), QSizeF(31, 17));
}

TEST_F(ImageLoaderFiles, GrayBecomesRgbWithTheSameLevels)
{
    const QString path = m_folder.filePath(QStringLiteral("gray.pgm"));
    QImage gray({256, 2}, QImage::Format_Grayscale8);
    for (int x = 0; x < 256; ++x)
        gray.scanLine(0)[x] = gray.scanLine(1)[x] = uchar(x);
    ASSERT_TRUE(gray.save(path, "PNG"));
    const auto loaded = ImageLoader::load(path);
    ASSERT_TRUE(bool(loaded));
    EXPECT_EQ(loaded->colorModel, ColorModel::Gray);
    const QImage rgb = loaded->photo->bitmap();
    EXPECT_EQ(rgb.format(), QImage::Format_RGBX8888);
    for (int x = 0; x < 256; ++x)
        for (int c = 0; c < 3; ++c)
            EXPECT_EQ(samplesAt(rgb, x, 1)[c], x);
}

TEST_F(ImageLoaderFiles, TheProfileComesAlong)
{
    MetadataBlocks blocks;
    blocks.iccProfile = QColorSpace(QColorSpace::DisplayP3).iccProfile();
    const QString path = write(noise({9, 9}, QImage::Format_RGBX8888), blocks);
    EXPECT_EQ(ImageLoader::getImageWithFixedOrientionFromUrl(path)->iccProfile(), blocks.iccProfile);
}

TEST_F(ImageLoaderFiles, FailuresAreToldOnStandardErrorWithoutALineEnd)
{
    ::testing::internal::CaptureStderr();
    EXPECT_EQ(ImageLoader::getImageWithFixedOrientionFromUrl(m_folder.filePath(QStringLiteral("none.jpg"))), nullptr);
    EXPECT_EQ(::testing::internal::GetCapturedStderr(), "Image source is NULL.");

    const QString path = write(noise({64, 64}, QImage::Format_RGBX8888), {}, WriteFormat::Jpeg);
    QFile file(path);
    ASSERT_TRUE(file.resize(file.size() / 2));
    ::testing::internal::CaptureStderr();
    EXPECT_EQ(ImageLoader::getImageWithFixedOrientionFromUrl(path), nullptr);
    EXPECT_EQ(::testing::internal::GetCapturedStderr(), "Image not created from image source.");
    const auto loaded = ImageLoader::load(path);
    ASSERT_FALSE(bool(loaded));
    EXPECT_EQ(loaded.failure().reason, Failure::Reason::Truncated);

    // The file opens, but nobody can make a picture of it: a lossless JPEG.
    QByteArray lossless = readBytes(write(noise({64, 64}, QImage::Format_RGBX8888), {}, WriteFormat::Jpeg));
    lossless[lossless.indexOf("\xff\xc0") + 1] = '\xc3';
    const QString unknown = writeBytes(m_folder, QStringLiteral("lossless.jpg"), lossless);
    ::testing::internal::CaptureStderr();
    EXPECT_EQ(ImageLoader::getImageWithFixedOrientionFromUrl(unknown), nullptr);
    EXPECT_EQ(::testing::internal::GetCapturedStderr(), "Image not created from image source.");
}

} // namespace hazelmark
