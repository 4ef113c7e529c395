#include "TestFiles.h"

namespace hazelmark {

namespace {

struct TestGif
{
    const char *what;
    QSize canvas; ///< empty: the file states none
    QRect frame;
    bool isInterlaced = false;
    bool hasOwnColors = false;
    int transparentIndex = -1;
    int colorBits = 7;
};

constexpr QRect kFrame(3, 5, 20, 17);

int indexAt(int x, int y)
{
    return (x + 3 * y) % 128;
}

QColor colorOf(int index, bool isOwn)
{
    return isOwn ? QColor(200 - index, 3, index) : QColor(index, 2 * index, 255 - index);
}

QByteArray palette(const TestGif &gif, bool isOwn)
{
    QByteArray colors;
    for (int i = 0; i < 1 << gif.colorBits; ++i) {
        const QColor color = colorOf(i, isOwn);
        colors += QByteArray{1, char(color.red())} + char(color.green()) + char(color.blue());
    }
    return colors;
}

QByteArray inBlocks(const QByteArray &bytes)
{
    QByteArray blocks;
    for (qsizetype at = 0; at < bytes.size(); at += 255)
        blocks += char(std::min<qsizetype>(255, bytes.size() - at)) + bytes.mid(at, 255);
    return blocks + '\0';
}

QByteArray shorts(std::initializer_list<int> numbers)
{
    QByteArray bytes;
    for (const int number : numbers)
        bytes += littleEndian(quint32(number), 2);
    return bytes;
}

/// The codes begin anew so often that each takes a byte. A second frame of one pixel follows.
QByteArray fileOf(const TestGif &gif, const QByteArray &profile)
{
    QByteArray codes;
    for (const auto &[first, step] :
         gif.isInterlaced ? std::vector{std::pair(0, 8), {4, 8}, {2, 4}, {1, 2}} : std::vector{std::pair(0, 1)}) {
        for (int y = first; y < gif.frame.height(); y += step) {
            codes += '\x80';
            for (int x = 0; x < gif.frame.width(); ++x)
                codes += char(indexAt(x, y));
        }
    }
    const char sizeBits = char(gif.colorBits - 1);
    const char own = gif.hasOwnColors ? char(0x80 | sizeBits) : '\0';
    return "GIF89a" + shorts({gif.canvas.width(), gif.canvas.height()}) + char(0x80 | sizeBits) + QByteArray(2, '\0') +
           palette(gif, false) + "!\xff\x0bICCRGBG1012" + inBlocks(profile) + "!\xf9" +
           inBlocks(QByteArray{1, char(gif.transparentIndex >= 0)} + QByteArray(2, '\0') + char(gif.transparentIndex)) +
           ',' + shorts({gif.frame.x(), gif.frame.y(), gif.frame.width(), gif.frame.height()}) +
           char(own | (gif.isInterlaced ? 0x40 : 0)) + (gif.hasOwnColors ? palette(gif, true) : QByteArray()) + '\7' +
           inBlocks(codes + '\x81') + ',' + shorts({0, 0, 1, 1}) + QByteArray("\0\2\2\x44\1\0;", 7);
}

} // namespace

using GifKinds = FolderTest;

TEST_F(GifKinds, TheFirstFrameLiesOnItsCanvas)
{
    const QByteArray profile = noiseBytes(600, 8);
    for (const TestGif &gif : {TestGif{"plain", kFrame.size(), {{0, 0}, kFrame.size()}},
                               {"interlaced", kFrame.size(), {{0, 0}, kFrame.size()}, true},
                               {"own colours", kFrame.size(), {{0, 0}, kFrame.size()}, false, true},
                               {"transparent", kFrame.size(), {{0, 0}, kFrame.size()}, false, false, 7},
                               {"on the left", {20, 22}, {0, 5, 20, 17}},
                               {"below", {20, 22}, {0, 0, 20, 17}},
                               {"in the middle", {30, 30}, kFrame, true, true},
                               {"to the right", {23, 17}, {3, 0, 20, 17}},
                               {"beside it", {23, 17}, {0, 0, 20, 17}},
                               {"beyond", {15, 12}, kFrame, true},
                               {"no canvas", {0, 0}, kFrame}}) {
        SCOPED_TRACE(gif.what);
        const QSize size = gif.canvas.isEmpty() ? QSize(23, 22) : gif.canvas;
        const bool hasAlpha = gif.transparentIndex >= 0 || !gif.frame.contains(QRect({0, 0}, size));
        QImage expected(size, hasAlpha ? QImage::Format_RGBA8888 : QImage::Format_RGBX8888);
        expected.fill(0);
        for (int y = 0; y < gif.frame.height(); ++y) {
            for (int x = 0; x < gif.frame.width(); ++x) {
                QColor color = colorOf(indexAt(x, y), gif.hasOwnColors);
                color.setAlpha(indexAt(x, y) == gif.transparentIndex ? 0 : 255);
                if (const QPoint place = gif.frame.topLeft() + QPoint(x, y); expected.valid(place))
                    expected.setPixelColor(place, color);
            }
        }
        const auto [info, picture] = read(fileOf(gif, profile));
        EXPECT_TRUE(samePixels(picture.pixels, expected));
        EXPECT_EQ(info.frames, (std::vector<QSize>{size, size}));
        EXPECT_EQ(info.hasAlpha, hasAlpha);
        EXPECT_TRUE(info.iccProfile == profile && picture.iccProfile == profile);
    }
    const TestGif few{"too few colours", kFrame.size(), {{0, 0}, kFrame.size()}, false, true, -1, 6};
    EXPECT_EQ(reasonFor(fileOf(few, profile)), Failure::Reason::Damaged);
}

} // namespace hazelmark
