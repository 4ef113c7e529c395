#include "PropertyDictionary.h"

#include "SamplePhotos.h"

#include <QTemporaryDir>

#include <gtest/gtest.h>

#include <random>

namespace hazelmark {

// What counts here is that every one of these ends, without a crash; the sanitizers watch.
TEST(HostileMetadata, DamagedBlocksNeitherCrashNorHang)
{
    const QTemporaryDir folder;
    const MetadataBlocks good = richMetadata();
    std::mt19937 random(20240611);
    int readable = 0;
    for (int round = 0; round < 400; ++round) {
        MetadataBlocks bad = good;
        for (QByteArray *block : {&bad.exif, &bad.iptc, &bad.xmp}) {
            const int damages = int(random() % 6);
            for (int i = 0; i < damages; ++i)
                (*block)[qsizetype(random() % size_t(block->size()))] = char(random() % 4 == 0 ? 0xff : random());
            if (random() % 5 == 0)
                block->truncate(qsizetype(random() % size_t(block->size())));
        }
        const WriteFormat format = round % 2 == 0 ? WriteFormat::Jpeg : WriteFormat::Png;
        readable += readPropertyDictionary(writePhoto(folder, format, bad)).has_value();
    }
    EXPECT_EQ(readable, 400);
}

TEST(HostileMetadata, HugeCountsAndLongTextsAreBounded)
{
    const QTemporaryDir folder;
    MetadataBlocks blocks;
    QByteArray exif("II*\0\x08\0\0\0\x02\0", 10);
    exif += QByteArray("\x0e\x01\x02\0\xff\xff\xff\xff\x26\0\0\0", 12); // a text of four gigabytes
    exif += QByteArray("\x12\x01\x03\0\x01\0\0\0\x06\0\0\0", 12);       // and a sound orientation
    exif += QByteArray(4, '\0') + QByteArray(20, 'x');
    blocks.exif = exif;
    const auto dict = readPropertyDictionary(writePhoto(folder, WriteFormat::Jpeg, blocks));
    ASSERT_TRUE(dict);
    EXPECT_EQ(dict->value(QStringLiteral("Orientation")).toInt(), 6);
    EXPECT_FALSE(dict->value(kTiffGroup).toMap().contains(QStringLiteral("ImageDescription")));

    blocks.exif = exifBlock({{"Exif.Image.ImageDescription", std::string(1'000'000, 'x').c_str()}});
    const auto longText = readPropertyDictionary(writePhoto(folder, WriteFormat::Png, blocks));
    ASSERT_TRUE(longText);
    EXPECT_LE(longText->value(kTiffGroup).toMap().value(QStringLiteral("ImageDescription")).toString().size(), 65536);
}

} // namespace hazelmark
