#include "TestFiles.h"
#include "TiffBlock.h"

#include <random>

namespace hazelmark {

namespace {

constexpr uint16_t kAscii = 2;
constexpr uint16_t kShort = 3;
constexpr uint16_t kLong = 4;
constexpr uint16_t kUndefined = 7;

QByteArray entry(uint16_t tag, uint16_t type, uint32_t count, uint32_t value, bool isBigEndian)
{
    const bool isInlineShort = type == kShort && count == 1;
    return tiffBytes(tag, isBigEndian) + tiffBytes(type, isBigEndian) + tiffBytes(count, isBigEndian) +
           (isInlineShort ? tiffBytes(uint16_t(value), isBigEndian) + QByteArray(2, '\0')
                          : tiffBytes(value, isBigEndian));
}

/// A maker's name, an orientation, what the source's own pixels were like, and a note in a directory below.
QByteArray exifBlock(bool isBigEndian)
{
    const QByteArray note = "a note that speaks of offsets";
    constexpr uint32_t kMakePlace = 8;
    constexpr uint32_t kNotePlace = 16;
    constexpr uint32_t kExifPlace = 48;
    const TiffEntries exif{{0x927c, entry(0x927c, kUndefined, uint32_t(note.size()), kNotePlace, isBigEndian)}};
    QByteArray block = (isBigEndian ? QByteArray("MM\0*", 4) : QByteArray("II*\0", 4)) + QByteArray(4, '\0');
    block += QByteArray("Acme 1\0\0", 8) + note.leftJustified(kExifPlace - kNotePlace, '\0');
    block += tiffDirectory(exif, isBigEndian);
    block.replace(4, 4, tiffBytes(uint32_t(block.size()), isBigEndian));
    return block + tiffDirectory({{0x0100, entry(0x0100, kLong, 1, 9999, isBigEndian)},
                                  {0x010f, entry(0x010f, kAscii, 7, kMakePlace, isBigEndian)},
                                  {0x0112, entry(0x0112, kShort, 1, 6, isBigEndian)},
                                  {0x0115, entry(0x0115, kShort, 1, 1, isBigEndian)},
                                  {0x8769, entry(0x8769, kLong, 1, kExifPlace, isBigEndian)}},
                                 isBigEndian);
}

QByteArray valueOf(const TiffBlock &file, const TiffBlock::Directory &directory, quint16 tag)
{
    const TiffBlock::Entry *found = directory.find(tag);
    return found ? file.bytes().mid(found->valueOffset, found->valueSize) : QByteArray();
}

} // namespace

using WrittenTiff = FolderTest;

class TiffMetadata : public FolderTest, public testing::WithParamInterface<std::tuple<bool, QImage::Format>>
{
};

TEST_P(TiffMetadata, JoinsTheFilesOwnDirectoryAndKeepsItsPlaces)
{
    const auto [isBigEndian, format] = GetParam();
    QImage pixels(37, 2900, format);
    std::mt19937 random(5);
    for (qsizetype i = 0; i < pixels.sizeInBytes(); ++i)
        pixels.bits()[i] = uchar(i % 4 == 3 ? 0xff : random());
    pixels = pixels.convertToFormat(format);

    EncodeOptions options;
    options.format = WriteFormat::Tiff;
    options.metadata.exif = exifBlock(isBigEndian);
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

/// The values that the format has no meaning for make other programs refuse the file.
TEST_F(WrittenTiff, HasNoOrientationOrUnitThatDoesNotExist)
{
    const struct
    {
        uint16_t tag;
        uint32_t value;
        bool isWritten;
    } rows[] = {{0x0112, 0, false}, {0x0112, 1, true}, {0x0112, 8, true}, {0x0112, 9, false},
                {0x0128, 0, false}, {0x0128, 1, true}, {0x0128, 3, true}, {0x0128, 4, false}};
    for (const auto &[tag, value, isWritten] : rows) {
        EncodeOptions options = optionsFor(WriteFormat::Tiff);
        options.metadata.exif =
            QByteArray("II*\0\x08\0\0\0", 8) + tiffDirectory({{tag, entry(tag, kShort, 1, value, false)}}, false);
        const auto file = TiffBlock::of(encoded(makePicture(8, 8, QImage::Format_RGBX8888), options));
        ASSERT_TRUE(file);
        const auto directory = file->directoryAt(file->firstDirectoryOffset());
        ASSERT_TRUE(directory);
        const TiffBlock::Entry *found = directory->find(tag);
        EXPECT_EQ(found ? file->number(*found) : std::nullopt, isWritten ? std::optional(value) : std::nullopt)
            << tag << " " << value;
    }
}

INSTANTIATE_TEST_SUITE_P(Forms, TiffMetadata,
                         testing::Combine(testing::Bool(),
                                          testing::Values(QImage::Format_RGBX8888, QImage::Format_RGBA64)));

} // namespace hazelmark
