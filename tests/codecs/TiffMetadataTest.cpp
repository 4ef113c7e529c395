#include "TestFiles.h"
#include "TiffBlock.h"
#include "TiffBlocks.h"
#include "TiffMaker.h"

namespace hazelmark {

namespace {

/// A maker's name, an orientation, what the source's own pixels were like, and a note in a directory below.
QByteArray exifBlock(bool isBigEndian)
{
    TiffMaker block(isBigEndian);
    TiffEntries exif, image;
    block.set(exif, 0x927c, TiffMaker::kUndefined, "a note that speaks of offsets");
    block.set(image, 0x010f, TiffMaker::kAscii, QByteArray("Acme 1", 7));
    block.set(image, 0x0112, TiffMaker::kShort, block.number(quint16(6)));
    block.setNumbers(image, {{0x0100, 9999}, {0x0115, 1}, {0x8769, quint32(block.directory(exif))}});
    return block.startingAt(block.directory(image));
}

QByteArray valueOf(const TiffBlock &file, const TiffBlock::Directory &directory, quint16 tag)
{
    const TiffBlock::Entry *found = directory.find(tag);
    return found ? file.bytes().mid(found->valueOffset, found->valueSize) : QByteArray();
}

} // namespace

using TiffMetadata = FolderTest;

TEST_F(TiffMetadata, JoinsTheFilesOwnDirectoryAndKeepsItsPlaces)
{
    for (const auto &[isBigEndian, format] : {std::pair(false, QImage::Format_RGBX8888),
                                              {false, QImage::Format_RGBA64},
                                              {true, QImage::Format_RGBX8888},
                                              {true, QImage::Format_RGBA64}}) {
        const QImage pixels = makePicture(37, 2900, format); // of several strips
        EncodeOptions options = optionsFor(WriteFormat::Tiff, {.exif = exifBlock(isBigEndian)});
        options.metadata.iptc = QByteArray("\x1c\x02\x19\0\x03sea", 8);
        options.metadata.xmp = "<x:xmpmeta/>";
        const QByteArray written = encoded(pixels, options);
        EXPECT_EQ(decoded(written).pixels, pixels);
        const auto file = TiffBlock::of(written);
        ASSERT_TRUE(file);
        EXPECT_EQ(file->isBigEndian(), isBigEndian);
        const auto directory = file->directoryAt(file->firstDirectoryOffset());
        ASSERT_TRUE(directory);
        EXPECT_EQ(directory->next, 0u);
        EXPECT_TRUE(std::is_sorted(directory->entries.begin(), directory->entries.end(),
                                   [](const auto &a, const auto &b) { return a.tag < b.tag; }));
        EXPECT_EQ(file->number(*directory->find(0x0100)), 37u); // not what the block says
        EXPECT_EQ(valueOf(*file, *directory, 0x010f), QByteArray("Acme 1", 7));
        EXPECT_EQ(file->number(*directory->find(0x0112)), 6u);
        EXPECT_EQ(valueOf(*file, *directory, 0x83bb), options.metadata.iptc);
        EXPECT_EQ(valueOf(*file, *directory, 0x02bc), options.metadata.xmp);
        const auto exif = file->directoryAt(file->number(*directory->find(0x8769)).value_or(0));
        ASSERT_TRUE(exif);
        EXPECT_EQ(valueOf(*file, *exif, 0x927c), "a note that speaks of offsets");
        EXPECT_EQ(file->bytes().indexOf("a note"), options.metadata.exif.indexOf("a note"));
    }
}

/// The values that the format has no meaning for make other programs refuse the file.
TEST_F(TiffMetadata, HasNoOrientationOrUnitThatDoesNotExist)
{
    for (const auto &[tag, value, isWritten] : {std::tuple<quint16, quint32, bool>(0x0112, 0, false),
                                                {0x0112, 8, true},
                                                {0x0112, 9, false},
                                                {0x0128, 3, true},
                                                {0x0128, 4, false}}) {
        TiffMaker block;
        TiffEntries entries;
        block.setNumbers(entries, {{tag, value}});
        const auto options = optionsFor(WriteFormat::Tiff, {.exif = block.startingAt(block.directory(entries))});
        const auto file = TiffBlock::of(encoded(makePicture(8, 8, QImage::Format_RGBX8888), options));
        ASSERT_TRUE(file);
        const auto directory = file->directoryAt(file->firstDirectoryOffset());
        const TiffBlock::Entry *found = directory->find(tag);
        EXPECT_EQ(found ? file->number(*found) : std::nullopt, isWritten ? std::optional(value) : std::nullopt)
            << tag << " " << value;
    }
}

} // namespace hazelmark
