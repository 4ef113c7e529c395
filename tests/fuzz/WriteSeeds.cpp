#include "DecoderMessages.h"
#include "SamplePhotos.h"
#include "TestPictures.h"

#include <QCoreApplication>
#include <QDir>
#include <QTemporaryDir>
#include <QtEndian>

#include <cstdio>

using namespace hazelmark;

namespace {

bool write(const QString &path, const QByteArray &bytes)
{
    QFile file(path);
    return file.open(QIODevice::WriteOnly) && file.write(bytes) == bytes.size();
}

QByteArray box(const char *type, const QByteArray &content)
{
    QByteArray size(4, '\0');
    qToBigEndian(quint32(content.size() + 8), size.data());
    return size + type + content;
}

/// The beginning of a HEIC file whose picture is cropped, turned and mirrored.
QByteArray heifBoxes()
{
    const auto numbers = [](std::initializer_list<int> values) {
        QByteArray bytes;
        for (const int value : values)
            bytes += QByteArray("\0\0\0", 3) + char(value);
        return bytes;
    };
    const QByteArray properties =
        box("clap", numbers({80, 1, 60, 1, 0, 1, 0, 1})) + box("irot", "\1") + box("imir", "\1");
    const QByteArray association = numbers({0, 1}) + QByteArray("\0\1\3\1\2\3", 6);
    const QByteArray meta = numbers({0}) + box("pitm", numbers({0}) + QByteArray("\0\1", 2)) +
                            box("iprp", box("ipco", properties) + box("ipma", association));
    return box("ftyp", "heic" + numbers({0}) + "mif1heic") + box("meta", meta);
}

} // namespace

/// write_seeds FOLDER: fills FOLDER/pictures, FOLDER/messages and FOLDER/strokes with small files of every kind, from
/// which the fuzzers begin. Ends with 1 when one could not be written.
int main(int argc, char **argv)
{
    const QCoreApplication application(argc, argv);
    if (application.arguments().size() != 2) {
        std::fputs("write_seeds: the folder is missing\n", stderr);
        return 2;
    }
    const QDir folder(application.arguments().at(1));
    const QTemporaryDir scratch;
    bool written = folder.mkpath(QStringLiteral("pictures")) && folder.mkpath(QStringLiteral("strokes")) &&
                   folder.mkpath(QStringLiteral("messages"));
    int count = 0;
    const auto add = [&](const QByteArray &bytes) {
        if (!bytes.isEmpty()) // a format that this machine's Qt cannot write
            written &= write(folder.filePath(QStringLiteral("pictures/%1").arg(++count)), bytes);
    };
    for (const WriteFormat format :
         {WriteFormat::Png, WriteFormat::Jpeg, WriteFormat::Bmp, WriteFormat::Tiff, WriteFormat::Gif})
        add(readBytes(writePhoto(scratch, format, richMetadata())));
    QImage picture(12, 9, QImage::Format_RGB888);
    picture.fill(Qt::darkCyan);
    for (const char *format : {"webp", "ppm", "ico"})
        add(savedByQt(picture, format));
    add(makeJpeg({.isProgressive = true}, 16, 8, std::vector<uint8_t>(16 * 8 * 3, 90)));
    glass::Header header;
    header.format = "heic";
    header.frames = {{12, 9}};
    header.note = "a note";
    written &= write(folder.filePath(QStringLiteral("messages/header")), QByteArray::fromStdString(packed(header)));
    written &= write(folder.filePath(QStringLiteral("messages/boxes")), heifBoxes());
    written &= write(folder.filePath(QStringLiteral("strokes/1")),
                     R"({"canvas": [100, 50], "steps": [["{0.2, 0.5}", "{0.8, 0.5}",)"
                     R"( "0", "1", "0", "1", "40.8", "1", "false", "0.5", "4.08"]]})");
    return written ? 0 : 1;
}
