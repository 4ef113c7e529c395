#include "ForeignKinds.h"

#include "TestFiles.h"
#include "TiffMaker.h"

namespace hazelmark {

namespace {

enum Where { First, Second, Below };

/// A TIFF structure of two directories and one below the first, that says something of itself in one of them.
QByteArray tiff(quint16 tag, quint32 value, Where where)
{
    TiffMaker maker;
    TiffEntries entries[3];
    for (TiffEntries &directory : entries)
        maker.setNumbers(directory, {{0x0100, 40}, {0x0106, 2}});
    maker.setNumbers(entries[where], {{tag, value}});
    maker.setNumbers(entries[First], {{0x014a, quint32(maker.directory(entries[Below]))}});
    return maker.startingAt(maker.directory(entries[First], maker.directory(entries[Second])));
}

} // namespace

using ForeignKinds = FolderTest;

TEST_F(ForeignKinds, AreKnownByTheirContentAlone)
{
    const auto box = [](quint8 size, const QByteArray &brands) {
        return QByteArray(3, '\0') + char(size) + "ftyp" + brands + QByteArray(16, '\0');
    };
    const std::pair<QByteArray, QByteArray> rows[] = {
        {box(16, "heic"), "heif"},
        {box(24, QByteArray("isom\0\0\0\0mp42avif", 16)), "heif"},
        {box(20, QByteArray("isom\0\0\0\0mp42avif", 16)), ""}, // which is behind the box
        {box(24, "crx isom"), "raw"},
        {box(16, "heic").replace("ftyp", "moov"), ""},
        {QByteArray("\xff\x0a\x49\x88", 4), "jxl"},
        {QByteArray("\0\0\0\x0cJXL \r\n\x87\n", 12), "jxl"},
        {QByteArray("\xff\x4f\xff\x51\0\x2f", 6), "jp2"},
        {QByteArray("\0\0\0\x0cjP  \r\n\x87\n", 12), "jp2"},
        {"FUJIFILMCCD-RAW 0201", "raw"},
        {QByteArray("II\x1a\0\0\0HEAPCCDR", 14), "raw"},
        {QByteArray("II*\0\x10\0\0\0CR\2\0", 12), "raw"},
        {tiff(0x0106, 32803, First), "raw"},
        {tiff(0x0106, 34892, Second), "raw"},
        {tiff(0x0106, 32803, Below), "raw"},
        {tiff(0xc612, 1, Second), "raw"},
        {tiff(0x0106, 2, First), ""},
        {"\xff\xd8\xff\xe0 JFIF", ""},
    };
    for (const auto &[bytes, name] : rows) {
        const ForeignKind *kind = foreignKindOf(**SourceFile::open(write(QStringLiteral("file"), bytes)));
        EXPECT_EQ(kind ? kind->name : "", name) << bytes.toHex(' ').left(120).constData();
    }
}

} // namespace hazelmark
