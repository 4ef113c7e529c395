// The parts that the main screen is built from and that need no window of its own.
#include "PhotoImageView.h"
#include "PhotoTest.h"

#include <gtest/gtest.h>

#include <QDir>
#include <QFile>
#include <QTemporaryDir>

namespace hazelmark {

TEST(PhotoImageView, ShowsAPictureOfTheFramesSizePixelForPixel)
{
    QImage picture(600, 333, QImage::Format_RGB32);
    for (int y = 0; y < picture.height(); ++y)
        for (int x = 0; x < picture.width(); ++x)
            picture.setPixelColor(x, y, (x + y) % 2 ? Qt::white : Qt::black);
    PhotoImageView view;
    view.resize(640, 400);
    view.setPictureFrame({20.25, 33.4, 600.4, 333.9});
    view.setImage(picture);
    const QImage shown = view.grab().toImage().convertToFormat(QImage::Format_RGB32);
    bool found = false;
    for (const QPoint &corner : {QPoint(20, 33), QPoint(20, 34), QPoint(21, 34), QPoint(21, 33)})
        found = found || shown.copy(QRect(corner, picture.size())) == picture;
    EXPECT_TRUE(found) << "a pattern of single pixels is grey once it was resampled";
}

TEST(PhotoTest, GoesByTheNameAndWhereThatSaysNothingByTheFirstBytes)
{
    const QTemporaryDir folder;
    const auto path = [&](const char16_t *name, const QByteArray &content) {
        QFile file(folder.filePath(QString::fromUtf16(name)));
        EXPECT_TRUE(file.open(QIODevice::WriteOnly));
        file.write(content);
        return file.fileName();
    };
    const QByteArray png("\x89PNG\r\n\x1a\n\0\0\0\rIHDR", 16);
    EXPECT_TRUE(isReadablePhotoFile(path(u"Ü 100%.PNG", png)));
    EXPECT_TRUE(isReadablePhotoFile(path(u"no extension", png)));
    EXPECT_FALSE(isReadablePhotoFile(path(u"text.txt", "words")));
    EXPECT_FALSE(isReadablePhotoFile(path(u"drawing.svg", "<svg xmlns='http://www.w3.org/2000/svg'/>")));
    ASSERT_TRUE(QDir(folder.path()).mkdir(u"folder.jpg"_qs));
    EXPECT_FALSE(isReadablePhotoFile(folder.filePath(u"folder.jpg"_qs)));
    EXPECT_FALSE(isReadablePhotoFile(folder.filePath(u"missing.jpg"_qs)));
}

} // namespace hazelmark
