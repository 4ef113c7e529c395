#include "SamplePhotos.h"

#include "TiffBytes.h"

#include <QFile>
#include <QTemporaryDir>

#include <exiv2/exiv2.hpp>

#include <stdexcept>

namespace hazelmark {

QByteArray exifBlock(std::initializer_list<std::pair<const char *, const char *>> tags)
{
    Exiv2::ExifData data;
    for (const auto &[key, value] : tags)
        data[key] = std::string(value);
    Exiv2::Blob blob;
    Exiv2::ExifParser::encode(blob, Exiv2::littleEndian, data);
    return QByteArray(reinterpret_cast<const char *>(blob.data()), qsizetype(blob.size()));
}

QByteArray iptcDataSet(int dataSet, const QByteArray &value, int record)
{
    return QByteArray("\x1c") + char(record) + char(dataSet) + tiffBytes(quint16(value.size()), true) + value;
}

QByteArray xmpPacket(const QByteArray &properties, const QByteArray &attributes)
{
    return "<?xpacket begin=\"\xef\xbb\xbf\" id=\"W5M0MpCehiHzreSzNTczkc9d\"?>\n"
           "<x:xmpmeta xmlns:x=\"adobe:ns:meta/\">\n"
           "<rdf:RDF xmlns:rdf=\"http://www.w3.org/1999/02/22-rdf-syntax-ns#\">\n"
           "<rdf:Description rdf:about=\"\""
           " xmlns:dc=\"http://purl.org/dc/elements/1.1/\""
           " xmlns:xmp=\"http://ns.adobe.com/xap/1.0/\""
           " xmlns:xmpGImg=\"http://ns.adobe.com/xap/1.0/g/img/\""
           " xmlns:xmpNote=\"http://ns.adobe.com/xmp/note/\""
           " xmlns:aux=\"http://ns.adobe.com/exif/1.0/aux/\""
           " xmlns:tiff=\"http://ns.adobe.com/tiff/1.0/\""
           " xmlns:exif=\"http://ns.adobe.com/exif/1.0/\""
           " xmlns:GImage=\"http://ns.google.com/photos/1.0/image/\" " +
           attributes + ">\n" + properties + "\n</rdf:Description>\n</rdf:RDF>\n</x:xmpmeta>\n<?xpacket end=\"w\"?>";
}

QString writePhoto(const QTemporaryDir &folder, WriteFormat format, const MetadataBlocks &metadata,
                   const QImage &pixels)
{
    constexpr const char *kExtensions[] = {"png", "jpg", "bmp", "tiff", "gif"}; // in the order of WriteFormat
    const QString path = folder.filePath(QStringLiteral("photo.") + QLatin1String(kExtensions[int(format)]));
    QImage plain(40, 30, QImage::Format_RGBX8888);
    plain.fill(qRgb(60, 90, 120));
    EncodeOptions options;
    options.format = format;
    options.metadata = metadata;
    const Outcome<Done> written = encodePicture(pixels.isNull() ? plain : pixels, options, path);
    if (!written)
        throw std::runtime_error(written.failure().sentence().toStdString());
    return path;
}

QString writeBytes(const QTemporaryDir &folder, const QString &name, const QByteArray &bytes)
{
    const QString path = folder.filePath(name);
    QFile file(path);
    if (!file.open(QIODevice::WriteOnly) || file.write(bytes) != bytes.size())
        throw std::runtime_error("cannot write " + path.toStdString());
    return path;
}

QByteArray readBytes(const QString &path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

MetadataBlocks oriented(int orientation)
{
    return {.exif = exifBlock({{"Exif.Image.Orientation", std::to_string(orientation).c_str()}})};
}

MetadataBlocks richMetadata()
{
    MetadataBlocks blocks;
    blocks.exif =
        exifBlock({{"Exif.Image.Make", "Acme "},           {"Exif.Image.Model", "Acme One"},
                   {"Exif.Image.Orientation", "6"},        {"Exif.Image.Software", "Studio 4"},
                   {"Exif.Photo.ExposureTime", "1/250"},   {"Exif.Photo.FNumber", "28/10"},
                   {"Exif.Photo.ISOSpeedRatings", "400"},  {"Exif.Photo.ExposureBiasValue", "-1/3"},
                   {"Exif.Photo.FocalLength", "42/10"},    {"Exif.Photo.Flash", "16"},
                   {"Exif.Photo.DigitalZoomRatio", "0/0"}, {"Exif.Photo.UserComment", "charset=Unicode the pier"},
                   {"Exif.Photo.LensModel", "Acme 50mm"},  {"Exif.Photo.LensSpecification", "50/1 50/1 18/10 0/0"},
                   {"Exif.GPSInfo.GPSLatitudeRef", "S"},   {"Exif.GPSInfo.GPSLatitude", "33/1 51/1 36/1"},
                   {"Exif.GPSInfo.GPSLongitudeRef", "E"},  {"Exif.GPSInfo.GPSLongitude", "151/1 12/1 0/0"},
                   {"Exif.GPSInfo.GPSAltitude", "125/10"}, {"Exif.GPSInfo.GPSTimeStamp", "9/1 41/1 7/1"},
                   {"Exif.Photo.SubjectArea", "1 2 3"},    {"Exif.GPSInfo.GPSAreaInformation", "charset=Ascii bay"},
                   {"Exif.Photo.SceneType", "1"},          {"Exif.Photo.ExifVersion", "48 50 51 48"}});
    blocks.iptc = iptcDataSet(25, "sea") + iptcDataSet(25, "Strand \xc3\xa4") + iptcDataSet(120, "Low tide");
    blocks.xmp = xmpPacket("<xmp:Rating>4</xmp:Rating>");
    return blocks;
}

} // namespace hazelmark
