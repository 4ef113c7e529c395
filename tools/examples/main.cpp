#include "Scene.h"

#include "Encoder.h"

#include <QColorSpace>
#include <QDir>

#include <exiv2/exiv2.hpp>

#include <cstdio>

namespace {

constexpr QSize kPhotoSize(2400, 1600);

QByteArray exifOf(QSize size)
{
    Exiv2::ExifData exif;
    exif["Exif.Image.Make"] = "Hazelmark";
    exif["Exif.Image.Model"] = "Drawing board";
    exif["Exif.Image.Orientation"] = std::uint16_t(1);
    exif["Exif.Image.ImageDescription"] = "A hazel twig before hills at dusk";
    exif["Exif.Image.Copyright"] = "Hazelmark contributors, GPL-3.0-or-later";
    exif["Exif.Photo.DateTimeOriginal"] = "2024:09:21 19:04:07";
    exif["Exif.Photo.ExposureTime"] = Exiv2::Rational(1, 125);
    exif["Exif.Photo.FNumber"] = Exiv2::Rational(11, 1);
    exif["Exif.Photo.ISOSpeedRatings"] = std::uint16_t(200);
    exif["Exif.Photo.FocalLength"] = Exiv2::Rational(50, 1);
    exif["Exif.Photo.LensModel"] = "50 mm f/1.8";
    exif["Exif.Photo.PixelXDimension"] = std::uint32_t(size.width());
    exif["Exif.Photo.PixelYDimension"] = std::uint32_t(size.height());
    exif["Exif.GPSInfo.GPSLatitudeRef"] = "N";
    exif["Exif.GPSInfo.GPSLatitude"] = "47/1 33/1 2760/100";
    exif["Exif.GPSInfo.GPSLongitudeRef"] = "E";
    exif["Exif.GPSInfo.GPSLongitude"] = "10/1 44/1 5880/100";
    exif["Exif.GPSInfo.GPSAltitudeRef"] = "0";
    exif["Exif.GPSInfo.GPSAltitude"] = Exiv2::Rational(815, 1);
    Exiv2::Blob blob;
    Exiv2::ExifParser::encode(blob, Exiv2::littleEndian, exif);
    return {reinterpret_cast<const char *>(blob.data()), qsizetype(blob.size())};
}

bool write(const QImage &picture, const hazelmark::EncodeOptions &options, const QString &path)
{
    const hazelmark::Outcome<hazelmark::Done> done = hazelmark::encodePicture(picture, options, path);
    if (!done)
        std::fprintf(stderr, "%s\n", done.failure().sentence().toUtf8().constData());
    return bool(done);
}

} // namespace

/// draw-examples FOLDER: writes hazel.jpg and hazel-mask.png there.
int main(int argc, char *argv[])
{
    if (argc != 2) {
        std::fprintf(stderr, "usage: draw-examples FOLDER\n");
        return 2;
    }
    const QDir folder(QString::fromLocal8Bit(argv[1]));
    const Scene scene(kPhotoSize);
    hazelmark::EncodeOptions photo;
    photo.format = hazelmark::WriteFormat::Jpeg;
    photo.metadata.exif = exifOf(kPhotoSize);
    photo.metadata.iccProfile = QColorSpace(QColorSpace::SRgb).iccProfile();
    photo.metadata.dpi = QSizeF(300, 300);
    hazelmark::EncodeOptions mask;
    mask.format = hazelmark::WriteFormat::Png;
    const bool written = write(scene.photo(), photo, folder.filePath(QStringLiteral("hazel.jpg"))) &&
                         write(scene.mask(), mask, folder.filePath(QStringLiteral("hazel-mask.png")));
    return written ? 0 : 1;
}
