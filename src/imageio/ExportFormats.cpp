#include "ExportFormats.h"

namespace hazelmark {

namespace {

struct FormatRow
{
    QString form;
    QString title;
    WriteFormat format;
};

const QString kJpeg = QStringLiteral("jpeg");
const QString kJpg = QStringLiteral("jpg");

const QList<FormatRow> kRows{{kJpeg, QStringLiteral("JPEG (*.jpg)"), WriteFormat::Jpeg},
                             {QStringLiteral("tiff"), QStringLiteral("Tiff (*.tiff)"), WriteFormat::Tiff},
                             {QStringLiteral("bmp"), QStringLiteral("BMP (*.bmp)"), WriteFormat::Bmp},
                             {QStringLiteral("gif"), QStringLiteral("GIF (*.gif)"), WriteFormat::Gif},
                             {QStringLiteral("png"), QStringLiteral("PNG (*.png)"), WriteFormat::Png}};

bool isEitherCaseOf(const QString &extension, const QString &form)
{
    return extension == form || extension == form.toUpper();
}

} // namespace

ExportFormats ExportFormats::forSource(const QString &extension)
{
    QList<FormatRow> rows = kRows;
    for (int i = 0; i < rows.size(); ++i) {
        if (isEitherCaseOf(extension, rows[i].form)) {
            rows.move(i, 0);
            break;
        }
    }
    if (isEitherCaseOf(extension, kJpg))
        rows.front().form = kJpg; // the JPEG entry stands first already
    ExportFormats result;
    for (const FormatRow &row : std::as_const(rows)) {
        result.formats << row.form;
        result.titles << row.title;
    }
    return result;
}

QString ExportFormats::formFor(const QString &extension) const
{
    const QString lower = extension.toLower();
    const std::optional<WriteFormat> format = writeFormat(lower == QLatin1String("tif") ? lower + u'f' : lower);
    for (const QString &form : formats) {
        if (format && writeFormat(form) == format)
            return form;
    }
    return {};
}

std::optional<WriteFormat> ExportFormats::writeFormat(const QString &format)
{
    for (const FormatRow &row : kRows) {
        if (isEitherCaseOf(format, row.form) || (row.form == kJpeg && isEitherCaseOf(format, kJpg)))
            return row.format;
    }
    return std::nullopt;
}

} // namespace hazelmark
