#include "TestFiles.h"
#include "TiffBlock.h"
#include "TiffMaker.h"

namespace hazelmark {

using TiffMetadata = FolderTest;

/// A block joins the file's own directory, save for what its own pixels were like, and for orientations and units that
/// do not exist: those make other programs refuse the file.
TEST_F(TiffMetadata, JoinsTheFilesOwnDirectoryWithWhatExists)
{
    for (const auto &[tag, value, isWritten] : {std::tuple<quint16, quint32, bool>(0x0112, 0, false),
                                                {0x0112, 8, true},
                                                {0x0112, 9, false},
                                                {0x0128, 3, true},
                                                {0x0128, 4, false}}) {
        TiffMaker block(value % 2 == 1);
        TiffEntries entries;
        block.setNumbers(entries, {{0x0100, 9999}, {tag, value}});
        const auto options = optionsFor(WriteFormat::Tiff, {.exif = block.startingAt(block.directory(entries))});
        const QImage pixels = makePicture(9, 7 + int(value), QImage::Format_RGBX64);
        const QByteArray written = encoded(pixels, options);
        EXPECT_EQ(decoded(written).pixels, pixels);
        const auto file = TiffBlock::of(written);
        ASSERT_TRUE(file);
        const auto directory = file->directoryAt(file->firstDirectoryOffset());
        EXPECT_EQ(directory->offset % 2, 0);
        EXPECT_EQ(directory->next, 0U);
        EXPECT_TRUE(std::is_sorted(directory->entries.begin(), directory->entries.end(),
                                   [](const auto &a, const auto &b) { return a.tag < b.tag; }));
        const TiffBlock::Entry *found = directory->find(tag);
        EXPECT_EQ(found ? file->number(*found) : std::nullopt, isWritten ? std::optional(value) : std::nullopt)
            << tag << " " << value;
    }
}

} // namespace hazelmark
