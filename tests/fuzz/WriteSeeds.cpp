#include "BoxMaker.h"
#include "DecoderMessages.h"
#include "SamplePhotos.h"
#include "TestPictures.h"

#include <QCoreApplication>
#include <QDir>
#include <QTemporaryDir>

using namespace hazelmark;

namespace {

/// The beginning of a HEIC file whose picture is cropped, turned and mirrored.
QByteArray heifBoxes()
{
    const auto hex = [](const char *digits) { return QByteArray::fromHex(digits); };
    const QByteArray crop = hex("00000050 00000001 0000003c 00000001 00000000 00000001 00000000 00000001");
    const QByteArray properties = boxOf("ipco" + boxOf("clap" + crop) + boxOf("irot\1") + boxOf("imir\1"));
    const QByteArray associations = boxOf("ipma" + hex("00000000 00000001 0001 03 01 02 03"));
    return boxOf("ftypheic" + hex("00000000") + "mif1heic") +
           boxOf("meta" + hex("00000000") + boxOf("pitm" + hex("00000000 0001")) +
                 boxOf("iprp" + properties + associations));
}

} // namespace

/// write_seeds FOLDER: fills FOLDER/pictures, FOLDER/messages and FOLDER/strokes with small files of every kind, from
/// which the fuzzers begin. Ends with 1 when one could not be written.
int main(int argc, char **argv)
{
    const QCoreApplication application(argc, argv);
    const QDir folder(application.arguments().value(1));
    const QTemporaryDir scratch;
    bool written = true;
    const auto write = [&](const QString &name, const QByteArray &bytes) {
        QFile file(folder.filePath(name));
        written &= folder.mkpath(QFileInfo(name).path()) && file.open(QIODevice::WriteOnly) &&
                   file.write(bytes) == bytes.size();
    };
    int count = 0;
    const auto add = [&](const QByteArray &bytes) {
        if (!bytes.isEmpty()) // a format that this machine's Qt cannot write
            write(QStringLiteral("pictures/%1").arg(++count), bytes);
    };
    for (const WriteFormat format :
         {WriteFormat::Png, WriteFormat::Jpeg, WriteFormat::Bmp, WriteFormat::Tiff, WriteFormat::Gif})
        add(readBytes(writePhoto(scratch, format, richMetadata())));
    QImage picture(12, 9, QImage::Format_RGB888);
    picture.fill(Qt::darkCyan);
    for (const char *format : {"webp", "ppm", "ico"})
        add(savedByQt(picture, format));
    add(makeJpeg({.isProgressive = true}, 16, 8, std::vector<uint8_t>(16 * 8 * 3, 90)));
    const glass::Header header{.format = "heic", .frames = {{12, 9}}, .note = "a note"};
    write(QStringLiteral("messages/header"), QByteArray::fromStdString(packed(header)));
    write(QStringLiteral("messages/boxes"), heifBoxes());
    write(QStringLiteral("strokes/1"), R"({"canvas": [100, 50], "steps": [["{0.2, 0.5}", "{0.8, 0.5}",)"
                                       R"( "0", "1", "0", "1", "40.8", "1", "false", "0.5", "4.08"]]})");
    return written ? 0 : 1;
}
