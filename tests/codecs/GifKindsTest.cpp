#include "EmbeddedBlocks.h"
#include "TestFiles.h"

namespace hazelmark {

using GifKinds = FolderTest;

/// Wherever the first frame lies on the canvas and however its rows are ordered, with whatever blocks around it.
TEST_F(GifKinds, TheFirstFrameLiesOnItsCanvas)
{
    // Three columns, nine rows: the numbers of colours and what they are packed into.
    const QByteArray indices = "012330211203112330101222013";
    const QByteArray packed = QByteArray::fromHex("021044a871a0c28818136a1c1830a244842b00");
    const QByteArray colors = QByteArray::fromHex("0a0b0c 141516 1e1f20 28292a");
    const QByteArray ownColors = QByteArray::fromHex("ff0000 00ee00 0000dd cccccc");
    const QByteArray profile = noiseBytes(300, 8);
    const QByteArray xmp = "<x:xmpmeta xmlns:x='adobe:ns:meta/'>" + QByteArray(400, 'x') + "</x:xmpmeta>";
    QByteArray trailer = "\1"; // of the packet, which leads a reader who takes its letters for lengths out of it
    for (int byte = 255; byte >= 0; --byte)
        trailer += char(byte);
    const auto pair = [](int first, int second) { return littleEndian(quint32(first | second << 16)); };
    const struct
    {
        QSize canvas; ///< empty: the file states none
        QPoint place;
        bool isInterlaced;
        bool hasOwnColors;
        int transparentIndex; ///< 4: none
    } rows[] = {{{3, 9}, {0, 0}, false, false, 4}, {{3, 9}, {0, 0}, true, true, 4},    {{3, 9}, {0, 0}, false, true, 2},
                {{3, 12}, {0, 3}, true, false, 4}, {{3, 12}, {0, 0}, false, false, 4}, {{7, 14}, {2, 3}, true, true, 4},
                {{5, 9}, {2, 0}, false, false, 4}, {{5, 9}, {0, 0}, false, false, 4},  {{4, 8}, {2, 3}, true, false, 0},
                {{0, 0}, {2, 3}, false, true, 4}};
    for (const auto &[stated, place, isInterlaced, hasOwnColors, transparentIndex] : rows) {
        const bool isTransparent = transparentIndex < 4;
        const QByteArray control = QByteArray{3, char(isTransparent)} + char(transparentIndex);
        const auto file = [&](const QByteArray &own) {
            return "GIF89a" + pair(stated.width(), stated.height()) + QByteArray("\x81\0\0", 3) + colors +
                   "!\xff\x0bICCRGBG1012\xff" + profile.left(255) + '\x2d' + profile.mid(255) +
                   QByteArray("\0!\xf9\4", 4) + control + QByteArray("\0,", 2) + pair(place.x(), place.y()) +
                   pair(3, 9) +
                   char((own.isEmpty()    ? 0
                         : own.size() > 6 ? 0x81
                                          : 0x80) |
                        (isInterlaced ? 0x40 : 0)) +
                   own + packed + ',' + pair(0, 0) + pair(1, 1) + QByteArray("\0\2\2\x44\1\0", 6) +
                   "!\xff\x0bXMP DataXMP" + xmp + trailer + QByteArray("\0;", 2);
        };
        const QSize size = stated.isEmpty() ? QSize(5, 12) : stated;
        const bool isCovered = QRect(place, QSize(3, 9)).contains(QRect({0, 0}, size));
        QImage expected(size, isTransparent || !isCovered ? QImage::Format_RGBA8888 : QImage::Format_RGBX8888);
        expected.fill(0);
        for (int i = 0; i < indices.size(); ++i) {
            const int row = isInterlaced ? QByteArray("084261357")[i / 3] - '0' : i / 3;
            const QPoint at = place + QPoint(i % 3, row);
            const int index = indices[i] - '0';
            const auto *color =
                reinterpret_cast<const uchar *>((hasOwnColors ? ownColors : colors).constData()) + 3 * index;
            if (expected.valid(at))
                expected.setPixelColor(at, QColor(color[0], color[1], color[2], index == transparentIndex ? 0 : 255));
        }
        const QByteArray bytes = file(hasOwnColors ? ownColors : QByteArray());
        const auto [info, picture] = read(bytes);
        EXPECT_TRUE(samePixels(picture.pixels, expected))
            << size.width() << "x" << size.height() << " " << isInterlaced;
        EXPECT_EQ(info.frames, (std::vector<QSize>{size, size}));
        EXPECT_EQ(info.hasAlpha, expected.hasAlphaChannel());
        EXPECT_TRUE(info.iccProfile == profile && picture.iccProfile == profile);
        EXPECT_EQ(readEmbeddedBlocks(**SourceFile::open(write(QStringLiteral("gif"), bytes)), "gif")->xmp, xmp);
        EXPECT_EQ(reasonFor(file(ownColors.left(6))), Failure::Reason::Damaged) << "of colours that it has not";
    }
}

} // namespace hazelmark
