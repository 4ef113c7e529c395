#include "ExportFormats.h"

#include <gtest/gtest.h>

namespace hazelmark {

namespace {

struct Case
{
    const char *extension;
    const char *formats;
    const char *titles;
};

const Case kCases[] = {
    {"png", "png jpeg tiff bmp gif", "PNG (*.png)|JPEG (*.jpg)|Tiff (*.tiff)|BMP (*.bmp)|GIF (*.gif)"},
    {"JPEG", "jpeg tiff bmp gif png", "JPEG (*.jpg)|Tiff (*.tiff)|BMP (*.bmp)|GIF (*.gif)|PNG (*.png)"},
    {"JPG", "jpg tiff bmp gif png", "JPEG (*.jpg)|Tiff (*.tiff)|BMP (*.bmp)|GIF (*.gif)|PNG (*.png)"},
    {"bmp", "bmp jpeg tiff gif png", "BMP (*.bmp)|JPEG (*.jpg)|Tiff (*.tiff)|GIF (*.gif)|PNG (*.png)"},
    {"TIFF", "tiff jpeg bmp gif png", "Tiff (*.tiff)|JPEG (*.jpg)|BMP (*.bmp)|GIF (*.gif)|PNG (*.png)"},
    {"gif", "gif jpeg tiff bmp png", "GIF (*.gif)|JPEG (*.jpg)|Tiff (*.tiff)|BMP (*.bmp)|PNG (*.png)"},
    {"tif", "jpeg tiff bmp gif png", "JPEG (*.jpg)|Tiff (*.tiff)|BMP (*.bmp)|GIF (*.gif)|PNG (*.png)"},
    {"Png", "jpeg tiff bmp gif png", "JPEG (*.jpg)|Tiff (*.tiff)|BMP (*.bmp)|GIF (*.gif)|PNG (*.png)"},
    {"", "jpeg tiff bmp gif png", "JPEG (*.jpg)|Tiff (*.tiff)|BMP (*.bmp)|GIF (*.gif)|PNG (*.png)"},
};

} // namespace

TEST(ExportFormats, TheSourcesOwnFormatLeads)
{
    for (const Case &wanted : kCases) {
        const ExportFormats formats = ExportFormats::forSource(QLatin1String(wanted.extension));
        EXPECT_EQ(formats.formats.join(QLatin1Char(' ')).toStdString(), wanted.formats) << wanted.extension;
        EXPECT_EQ(formats.titles.join(QLatin1Char('|')).toStdString(), wanted.titles) << wanted.extension;
    }
}

TEST(ExportFormats, AnExtensionGetsTheFormThatTheListHolds)
{
    const ExportFormats fromJpg = ExportFormats::forSource(QStringLiteral("jpg"));
    const ExportFormats fromPng = ExportFormats::forSource(QStringLiteral("png"));
    const auto form = [](const ExportFormats &formats, const char *extension) {
        return formats.formFor(QLatin1String(extension)).toStdString();
    };
    EXPECT_EQ(form(fromJpg, "JPEG"), "jpg");
    EXPECT_EQ(form(fromPng, "jpg"), "jpeg");
    EXPECT_EQ(form(fromPng, "Tif"), "tiff");
    EXPECT_EQ(form(fromPng, "PNG"), "png");
    EXPECT_EQ(form(fromPng, "webp"), "");
    EXPECT_EQ(form(fromPng, ""), "");
}

TEST(ExportFormats, TheWritersTableKnowsTwoCasesOnly)
{
    EXPECT_EQ(ExportFormats::writeFormat(QStringLiteral("JPG")), WriteFormat::Jpeg);
    EXPECT_EQ(ExportFormats::writeFormat(QStringLiteral("tiff")), WriteFormat::Tiff);
    for (const char *unknown : {"Png", "tif", "webp", ""})
        EXPECT_EQ(ExportFormats::writeFormat(QLatin1String(unknown)), std::nullopt) << unknown;
}

} // namespace hazelmark
