#include "DecoderMessages.h"

#include <QSizeF>

#include <gtest/gtest.h>

#include <cmath>

namespace hazelmark::glass {

namespace {

/// The body of the message, which comes byte by byte.
std::string bodyOf(const std::string &message)
{
    MessageReader reader;
    for (const char byte : message) {
        EXPECT_FALSE(reader.next());
        reader.add({&byte, 1});
    }
    const std::optional<Message> whole = reader.next();
    EXPECT_TRUE(whole && !reader.next());
    return whole ? whole->body : std::string();
}

} // namespace

TEST(DecoderMessages, ComeBackWholeOrNotAtAll)
{
    Header header;
    header.format = "heic019azheic019";
    header.frames = {{1, 2}, {4'000'000'000u, 3}};
    header.layout = Layout::Rgba16;
    header.bitsPerChannel = 32;
    header.hasAlpha = header.isGray = header.isTurned = header.isPreview = header.isConverted = true;
    header.dotsPerInchX = 1.5;
    header.colors = {9, 16};
    for (std::string *block : {&header.iccProfile, &header.exif, &header.xmp, &header.iptc, &header.note})
        *block = std::string(1000, char(block - &header.iccProfile));
    const std::string body = bodyOf(packed(header));
    EXPECT_EQ(headerOf(body), header);
    for (size_t size = 0; size < body.size(); ++size)
        EXPECT_FALSE(headerOf(body.substr(0, size))) << size;
    EXPECT_FALSE(headerOf(body + '\0'));
    for (auto flag : {&Header::hasAlpha, &Header::isGray, &Header::isTurned, &Header::isConverted}) {
        header.*flag = false;
        EXPECT_EQ(headerOf(bodyOf(packed(header))), header);
    }
    header.note += "x";
    EXPECT_EQ(headerOf(bodyOf(packed(header))).value().note.size(), 1000);
    EXPECT_TRUE(excuseOf(std::string("\5\1\0\0\0x", 6)));
    EXPECT_FALSE(excuseOf(std::string("\6\1\0\0\0x", 6)) || doneOf(std::string("\2\0\0\0\0", 5)));
    for (const double done : {-0.01, 0.0, 1.0, 1.01, double(NAN)})
        EXPECT_EQ(progressOf(bodyOf(packedProgress(done))).has_value(), done >= 0 && done <= 1) << done;
}

TEST(DecoderMessages, ThatSayWhatCannotBeAreRefused)
{
    const auto isGood = [](const char *format, size_t frames, Layout layout, int bits, QSizeF dpi = {0, 0}) {
        Header header;
        header.format = format;
        header.frames.resize(frames);
        header.layout = layout;
        header.bitsPerChannel = uint8_t(bits);
        header.dotsPerInchX = dpi.width();
        header.dotsPerInchY = dpi.height();
        return headerOf(bodyOf(packed(header))).has_value();
    };
    EXPECT_TRUE(isGood("x", kMostFrames, Layout::Rgba8, 8) && isGood("x", 0, Layout::Rgba16, 1));
    EXPECT_FALSE(isGood("x", kMostFrames + 1, Layout::Rgba8, 8));
    for (const char *format : {"", "heic019azheic0190", "hei/", "hei:", "hei`", "hei{"})
        EXPECT_FALSE(isGood(format, 1, Layout::Rgba8, 8)) << format;
    for (const auto &[layout, bits] : {std::pair(Layout::Gray8, 8),
                                       {Layout::Gray16, 8},
                                       {Layout::Rgba8, 9},
                                       {Layout::Rgbx8, 0},
                                       {Layout::Rgba16, 33},
                                       {Layout(6), 8}})
        EXPECT_FALSE(isGood("x", 1, layout, bits)) << int(layout) << " " << bits;
    for (const QSizeF dpi : {QSizeF(-0.1, 1), QSizeF(1, -0.1), QSizeF(INFINITY, 1), QSizeF(1, INFINITY)})
        EXPECT_FALSE(isGood("x", 1, Layout::Rgba8, 8, dpi));
    for (const auto &[kind, size, isBroken] : {std::tuple(0u, 0u, true),
                                               {5u, 0u, false},
                                               {6u, 0u, true},
                                               {1u, kLongestMessage, false},
                                               {1u, kLongestMessage + 1, true}}) {
        const uint32_t numbers[] = {kind, size};
        MessageReader reader;
        reader.add(packed(Go()).substr(0, 4) + std::string(reinterpret_cast<const char *>(numbers), 8));
        EXPECT_EQ(reader.next().has_value(), kind == 5);
        EXPECT_EQ(reader.isBroken(), isBroken) << kind << " " << size;
    }
    const std::array bytes = {8, 12, 20, 20, 40, 40};
    for (size_t layout = 0; layout < bytes.size(); ++layout)
        EXPECT_EQ(rowBytes(Layout(layout), 5), bytes[layout]);
}

} // namespace hazelmark::glass
