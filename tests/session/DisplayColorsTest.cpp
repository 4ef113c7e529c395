// What a session shows of a photo's colours.
#include "DisplayColors.h"

#include "Pictures.h"

#include <gtest/gtest.h>

#include <QColorSpace>

namespace hazelmark {

TEST(DisplayColors, ShowAPhotoInTheColoursThatItsProfileMeans)
{
    // Qt's own conversion is the other way to compute it.
    const QColorSpace adobe(QColorSpace::AdobeRgb);
    for (const QImage::Format format : {QImage::Format_RGBX8888, QImage::Format_RGBA64}) {
        const QSize size(300, 193); // a line more than whole bands
        const QImage photo =
            testing::drawn(size, format, [](int x, int y) { return QColor(80 + x / 3, 60 + y / 2, 140); });
        const QImage shown = DisplayColors().shown(photo, adobe.iccProfile());
        QImage expected = photo;
        expected.setColorSpace(adobe);
        expected.convertToColorSpace(QColorSpace::SRgb);
        EXPECT_LE(testing::difference(shown, expected), 1.01);
        EXPECT_EQ(DisplayColors("junk").shown(photo, "rubbish"), DisplayColors().shown(photo, {}));
    }
}

} // namespace hazelmark
