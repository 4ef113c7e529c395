#include "OpenPhotos.h"
#include "SamplePhotos.h"
#include "TiffMaker.h"
#include "ZlibStream.h"

#include <QTemporaryDir>

#include <gtest/gtest.h>

namespace hazelmark {

namespace {

const QByteArray kCharacterCode("ASCII\0\0\0", 8);

/// A place in which something is hidden. What is not carried whatever it holds is given `isBare` bytes: without the
/// start by which they would be known for a picture.
struct Hiding
{
    const char *name;
    QByteArray hidden;
    MetadataBlocks blocks;
};

QByteArray bare(const QByteArray &hidden)
{
    return hidden.mid(60);
}

void addExifPlaces(const QByteArray &hidden, std::vector<Hiding> &hidings)
{
    enum { Image, Photo, Gps, Interoperability };
    const struct
    {
        const char *name;
        int directory;
        quint16 tag;
        TiffMaker::Type type;
        QByteArray lead;
        bool isBare = false;
        bool hasNote = false;
    } places[] = {{"description", Image, 0x010e, TiffMaker::kAscii, "seen "},
                  {"comment of windows", Image, 0x9c9c, TiffMaker::kByte, {}},
                  {"numbers", Image, 0xc618, TiffMaker::kShort, "ab"},
                  {"unknown tag", Image, 0xc8f0, TiffMaker::kUndefined, {}},
                  {"large unknown tag", Image, 0xc8f0, TiffMaker::kUndefined, QByteArray(8000, 'a'), true},
                  {"manifest", Image, 0xcd41, TiffMaker::kUndefined, "jumb", true},
                  {"private data", Image, 0xc634, TiffMaker::kByte, "Acme", true},
                  {"old thumbnail", Image, 0x501b, TiffMaker::kByte, {}, true},
                  {"packet in EXIF", Photo, 0x02bc, TiffMaker::kByte, "<x>", true},
                  {"resources in EXIF", Photo, 0x8649, TiffMaker::kByte, "8BIM", true},
                  {"user comment", Photo, 0x9286, TiffMaker::kUndefined, kCharacterCode},
                  {"unknown tag beside a note", Photo, 0xa999, TiffMaker::kUndefined, {}, false, true},
                  {"note", Photo, 0x927c, TiffMaker::kUndefined, "ACME\1\2\3 a"},
                  {"GPS method", Gps, 0x001b, TiffMaker::kUndefined, kCharacterCode},
                  {"interoperability", Interoperability, 0x4001, TiffMaker::kUndefined, {}}};
    for (const auto &[name, directory, tag, type, lead, isBare, hasNote] : places) {
        TiffMaker block;
        TiffEntries entries[4];
        block.set(entries[Image], 0x010f, TiffMaker::kAscii, QByteArray("Acme kept", 10));
        block.set(entries[Photo], 0x9000, TiffMaker::kUndefined, "0230");
        if (hasNote)
            block.set(entries[Photo], 0x927c, TiffMaker::kUndefined, QByteArray("ACME\0\1\2 note", 12));
        block.set(entries[directory], tag, type, evenlyLong(lead + (isBare ? bare(hidden) : hidden)));
        for (const auto &[pointer, to, from] : {std::tuple<quint16, int, int>(0xa005, Interoperability, Photo),
                                                {0x8769, Photo, Image},
                                                {0x8825, Gps, Image}}) {
            if (!entries[to].empty())
                block.set(entries[from], pointer, TiffMaker::kLong, block.place(block.directory(entries[to])));
        }
        hidings.push_back({name, hidden, {.exif = block.startingAt(block.directory(entries[Image]))}});
    }
}

/// Directories of pictures, behind the first one or below it, and a note that keeps what nothing refers to.
void addPictureDirectories(const QByteArray &hidden, std::vector<Hiding> &hidings)
{
    for (const auto &[name, isBelow, offsetTag] : {std::tuple<const char *, bool, quint16>("thumbnail", false, 0x0201),
                                                   {"plain thumbnail", false, 0x0111},
                                                   {"picture below", true, 0x0111}}) {
        TiffMaker block;
        TiffEntries picture, photo, image;
        block.set(image, 0x010f, TiffMaker::kAscii, QByteArray("Acme kept", 10));
        block.set(photo, 0x927c, TiffMaker::kUndefined, QByteArray("ACME\0\1\2 note", 12));
        block.set(picture, offsetTag, TiffMaker::kLong, block.place(block.add(bare(hidden))));
        block.set(picture, offsetTag == 0x0201 ? 0x0202 : 0x0117, TiffMaker::kLong,
                  block.place(quint64(bare(hidden).size())));
        const quint64 place = block.directory(picture);
        block.set(image, 0x8769, TiffMaker::kLong, block.place(block.directory(photo)));
        if (isBelow)
            block.set(image, 0x014a, TiffMaker::kLong, block.place(place));
        hidings.push_back({name, hidden, {.exif = block.startingAt(block.directory(image, isBelow ? 0 : place))}});
    }
}

/// In the places of a packet there are letters alone.
void addXmpPlaces(const QByteArray &hidden, std::vector<Hiding> &hidings)
{
    const auto inPieces = [&](const QByteArray &before, const QByteArray &after) {
        QByteArray pieces;
        for (qsizetype at = 0; at < hidden.size(); at += 200)
            pieces += before + hidden.mid(at, 200) + after;
        return "<v:a>" + pieces + "</v:a>";
    };
    const struct
    {
        const char *name;
        QByteArray properties;
        QByteArray attributes = {};
        QByteArray behind = {};
    } places[] = {
        {"attribute", {}, "v:a=\"" + hidden + "\""},   {"element", "<v:a>" + hidden + "</v:a>"},
        {"in CDATA", inPieces("<![CDATA[", "]]>")},    {"around comments", inPieces("", "<!-- x -->")},
        {"list", inPieces("<v:b>", "</v:b>")},         {"comment", "<!--" + bare(hidden) + "-->"},
        {"instruction", "<?a " + bare(hidden) + "?>"}, {"beside properties", bare(hidden)},
        {"behind the packet", {}, {}, bare(hidden)},   {"namespace", "<q:a xmlns:q=\"" + hidden + "\">x</q:a>"}};
    for (const auto &[name, properties, attributes, behind] : places)
        hidings.push_back({name,
                           hidden,
                           {.xmp = xmpPacket("<xmp:Label>kept</xmp:Label>" + properties,
                                             "xmlns:v=\"http://example.org/v/\" " + attributes) +
                                   behind}});
    hidings.push_back(
        {"text of a PNG file",
         hidden,
         {.texts = {{"Title", QStringLiteral("kept"), {}, {}}, {"Comment", QString::fromLatin1(hidden), {}, {}}}}});
}

} // namespace

TEST(HiddenPictures, AreNotCarriedAndTheRestIs)
{
    const QByteArray jpeg = hiddenJpeg();
    const QByteArray webp = QByteArray("RIFF\x60\x02\0\0WEBPVP8 ", 16) + jpeg.mid(22, 600);
    std::vector<Hiding> hidings;
    for (const QByteArray &bytes : {jpeg, webp, deflateZlib(jpeg), jpeg.toBase64()}) {
        addExifPlaces(bytes, hidings);
        addPictureDirectories(bytes, hidings);
        hidings.push_back({"caption", bytes, {.iptc = iptcDataSet(5, "kept") + iptcDataSet(120, bytes)}});
    }
    const QByteArray url = jpeg.toBase64(QByteArray::Base64UrlEncoding);
    for (const QByteArray &letters :
         {webp.toBase64(), "data:image/jpeg;base64," + url, jpeg.toHex(' '), deflateZlib(jpeg).toBase64()})
        addXmpPlaces(letters, hidings);
    const QTemporaryDir folder;
    for (const auto &[name, hidden, source] : hidings) {
        const bool isInText = source.exif.isEmpty() && source.iptc.isEmpty();
        const QString path = writePhoto(folder, isInText ? WriteFormat::Png : WriteFormat::Jpeg, source);
        for (const WriteFormat target : {WriteFormat::Jpeg, WriteFormat::Png, WriteFormat::Tiff}) {
            const MetadataBlocks carried = carriedOf(path, target);
            QByteArray all = carried.exif + carried.iptc + carried.xmp;
            for (const PngText &text : carried.texts)
                all += text.text.toLatin1();
            const bool isKept = target == WriteFormat::Png || source.texts.empty();
            EXPECT_EQ(all.contains("kept"), isKept) << name << " " << int(target);
            for (qsizetype at = 100; at + 40 < hidden.size(); at += 40)
                ASSERT_FALSE(all.contains(hidden.mid(at, 20))) << name << " " << int(target) << " at " << at;
        }
    }
}

} // namespace hazelmark
