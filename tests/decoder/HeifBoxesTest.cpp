#include "HeifBoxes.h"

#include "BoxMaker.h"

#include <gtest/gtest.h>

namespace hazelmark::glass {

namespace {

QByteArray hex(const char *digits)
{
    return QByteArray::fromHex(digits);
}

QByteArray heif(const QByteArray &properties, const char *associations, const char *primaryItem = "00000000 0001")
{
    return boxOf("meta" + hex("00000000") + boxOf("pitm" + hex(primaryItem)) +
                 boxOf("iprp" + boxOf("ipco" + properties) + boxOf("ipma" + hex(associations))));
}

/// The channels, and what becomes of four by three letters, unless a step leads out of them.
std::string shown(const QByteArray &file)
{
    const auto primary = readHeifPrimary(std::as_bytes(std::span(file.constData(), size_t(file.size()))));
    const auto path = primary ? pathThrough(primary->steps, 4, 3) : std::nullopt;
    std::string text = primary ? std::to_string(primary->channels) : "nothing";
    for (int64_t at = 0; path && at < path->width * path->height; ++at) {
        const int64_t x = at % path->width, y = at / path->width;
        text += x == 0 ? " " : "";
        text += "abcdefghijkl"[path->across[0] * x + path->across[1] * y + path->across[2] +
                               4 * (path->down[0] * x + path->down[1] * y + path->down[2])];
    }
    return text + (primary && primary->isMirrored() ? "!" : "") + (primary && primary->isProtected ? " protected" : "");
}

} // namespace

TEST(HeifBoxes, TellWhatBecomesOfThePrimaryPicture)
{
    const QByteArray turn = boxOf("irot\x05"), across = boxOf("imir\x01"), four = boxOf("pixi" + hex("0000000004"));
    const QByteArray mirrored = heif(turn + across + boxOf("imir\xfe"), "00000000 00000001 0001 03 01 82 03");
    const QByteArray grayAv1 = boxOf("av1C" + hex("81001c")), av1 = boxOf("av1C" + hex("81000c"));
    const QByteArray hevc = boxOf("hvcC" + hex("01000000000000000000000000000000fd"));
    const QByteArray grayHevc = boxOf("hvcC" + hex("01000000000000000000000000000000fc"));
    const auto cropped = [](const char *numbers) {
        return heif(boxOf("clap" + hex(numbers)), "00000000 00000001 0001 01 01");
    };
    const std::pair<QByteArray, std::string> rows[] = {
        {mirrored, "0 iea jfb kgc lhd!"},
        {heif(boxOf("irot\3"), "00000000 00000001 0001 04 00 01 81 02"), "0 lkji hgfe dcba"},
        {heif(across + turn, "00000000 00000002 0002 02 01 02 0001 02 01 02"), "0 aei bfj cgk dhl!"},
        {heif(across + turn, "00000001 00000001 0001 02 8002 0001"), "0 lhd kgc jfb iea!"},
        {heif(four + turn, "01000000 00000001 00010001 02 01 02", "01000000 00010001"), "4 dhl cgk bfj aei"},
        {heif(turn, "00000000 ffffffff 0002 01 01"), "0 abcd efgh ijkl"},
        {heif(av1, "00000000 00000001 0001 01 01"), "3 abcd efgh ijkl"},
        {heif(grayAv1, "00000000 00000001 0001 01 01"), "1 abcd efgh ijkl"},
        {heif(hevc, "00000000 00000001 0001 01 01"), "3 abcd efgh ijkl"},
        {heif(grayHevc + four + av1 + hevc, "00000000 00000001 0001 03 01 03 04"), "1 abcd efgh ijkl"},
        {heif(grayHevc + four + av1 + hevc, "00000000 00000001 0001 04 01 02 03 04"), "4 abcd efgh ijkl"},
        {cropped("00000005 00000002 00000002 00000001 00000001 00000001 ffffffff 00000002"), "0 cd gh"},
        {cropped("00000003 00000001 00000001 00000001 ffffffff 00000002 00000001 00000001"), "0 ijk"},
        {cropped("00000003 00000001 00000001 00000001 fffffffe 00000002 00000000 00000001"), "0"},
        {cropped("00000003 00000001 00000001 00000001 00000003 00000002 00000000 00000001"), "0"},
        {cropped("00000004 00000001 00000003 00000001 00000000 00000001 00000000 00000001"), "0 abcd efgh ijkl"},
        {cropped("00000005 00000001 00000003 00000001 00000000 00000001 00000000 00000001"), "0"},
        {cropped("00000004 00000001 00000004 00000001 00000000 00000001 00000000 00000001"), "0"},
        {cropped("00000001 00000001 00000001 00000002 00000000 00000001 00000000 00000001"), "0"},
        {cropped("00000001 00000000 00000001 00000001 00000000 00000001 00000000 00000001"), "0"},
        {cropped("00000001 00000001 00000001 00000001 00000000 00000001 00000000 00000000"), "0"},
        {boxOf("meta" + mirrored.mid(8) + boxOf("ipro")), "0 iea jfb kgc lhd! protected"},
        {hex("00000000") + mirrored.mid(4), "0 iea jfb kgc lhd!"},
        {hex("00000001 6d657461 00000000") + tiffBytes(quint32(mirrored.size() + 8), true) + mirrored.mid(8),
         "0 iea jfb kgc lhd!"},
        {hex("00000001 66726565 00000000 0000000f") + mirrored, "nothing"},
        {hex("00000001 66726565 00000001 00000010") + mirrored, "nothing"},
        {hex("00000007 66726565") + mirrored, "nothing"},
        {hex("00000008 66726565") + mirrored, "0 iea jfb kgc lhd!"},
        {boxOf("meta" + hex("000000")), "nothing"},
    };
    for (const auto &[file, expected] : rows)
        EXPECT_EQ(shown(file), expected) << file.toHex(' ').constData();
    for (qsizetype size = 0; size < mirrored.size(); ++size)
        EXPECT_EQ(shown(mirrored.left(size)), "nothing") << size;
}

} // namespace hazelmark::glass
