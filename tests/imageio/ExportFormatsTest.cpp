#include "ExportFormats.h"

#include <gtest/gtest.h>

namespace hazelmark {

TEST(ExportFormats, TheSourcesOwnFormatLeadsInOneOfTwoCases)
{
    const QStringList others = ExportFormats::forSource({}).titles;
    EXPECT_EQ(others.join(QLatin1Char('|')),
              QStringLiteral("JPEG (*.jpg)|Tiff (*.tiff)|BMP (*.bmp)|GIF (*.gif)|PNG (*.png)"));
    for (const auto &[extension, wanted, title] : {std::tuple("png", "png jpeg tiff bmp gif", 4),
                                                   {"JPG", "jpg tiff bmp gif png", 0},
                                                   {"TIFF", "tiff jpeg bmp gif png", 1},
                                                   {"Png", "jpeg tiff bmp gif png", 0}}) {
        QStringList titles = others;
        titles.move(title, 0);
        const ExportFormats formats = ExportFormats::forSource(QLatin1String(extension));
        EXPECT_EQ(formats.formats.join(QLatin1Char(' ')).toStdString(), wanted) << extension;
        EXPECT_EQ(formats.titles, titles) << extension;
    }
}

} // namespace hazelmark
