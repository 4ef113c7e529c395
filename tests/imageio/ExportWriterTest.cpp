#include "ExportWriter.h"

#include "Decoder.h"
#include "ExportFormats.h"
#include "FlippedImage.h"
#include "Pictures.h"
#include "SamplePhotos.h"

#include <QFile>
#include <QTemporaryDir>

#include <gtest/gtest.h>

namespace hazelmark {

using testing::noise;

namespace {

const QSize kUpright(40, 30);

class Writer : public ::testing::Test
{
protected:
    /// A photo whose tag says 6, so that it is stored 30 pixels wide.
    ExportWriter::Settings settings(WriteFormat format = WriteFormat::Png)
    {
        const QImage stored = noise(kUpright.transposed(), QImage::Format_RGBX8888);
        const PhotoFile photo(writePhoto(m_folder, format, oriented(6), stored));
        return {photo, ExportFormats::forSource(photo.fileExtension()).formats, QStringLiteral("png")};
    }
    QString path(const char *name) const { return m_folder.filePath(QLatin1String(name)); }

    QTemporaryDir m_folder;
};

} // namespace

TEST_F(Writer, TheFileHasThePhotosPixelsWhateverTheScreensScale)
{
    for (const auto &[scale, size] : {std::pair(1.0, kUpright), {2.0, kUpright}, {1.0, QSize(100, 90)}}) {
        const QImage picture = noise(size, QImage::Format_RGBX8888, 7);
        ExportWriter::Settings on = settings();
        on.backingScaleFactor = scale;
        ExportWriter(on).saveDenoisedImageInDirectoryPath(path("out.png"), PhotoImage::fromBitmap(picture));
        const Outcome<Picture> written = decodePicture(path("out.png"));
        ASSERT_TRUE(bool(written));
        EXPECT_EQ(written->pixels.size(), kUpright.transposed());
        EXPECT_EQ(FlippedImage::uprightFromEXIF(written->pixels, 6) == picture, size == kUpright) << scale;
    }
}

TEST_F(Writer, AnExtensionThatTheListLacksFallsBackToJpgOrWritesNothing)
{
    const PhotoImagePtr picture = PhotoImage::fromBitmap(noise(kUpright, QImage::Format_RGBX8888));
    for (const auto &[source, type, expected] : {std::tuple(WriteFormat::Png, "Png", ""), // nothing
                                                 {WriteFormat::Png, "", "png"},
                                                 {WriteFormat::Png, "gif", "gif"},
                                                 {WriteFormat::Png, "bmp", "bmp"},
                                                 {WriteFormat::Jpeg, "JPG", "jpeg"}}) {
        ExportWriter::Settings chosen = settings(source);
        chosen.fileTypeToExportImage = QLatin1String(type);
        QFile::remove(path("chosen"));
        ExportWriter(chosen).saveDenoisedImageInDirectoryPath(path("chosen"), picture);
        const Outcome<PictureInfo> written = readPictureInfo(path("chosen"));
        EXPECT_EQ(written ? written->format : QByteArray(), expected) << type;
        EXPECT_EQ(QFile::exists(path("chosen")), bool(written)) << type;
        const bool hasTag = written && written->format != "bmp" && written->format != "gif"; // else it stands upright
        EXPECT_TRUE(!written || written->frames.back() == (hasTag ? kUpright.transposed() : kUpright)) << type;
    }
}

} // namespace hazelmark
