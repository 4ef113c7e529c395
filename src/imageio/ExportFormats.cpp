#include "ExportFormats.h"

namespace hazelmark {

namespace {

struct FormatRow
{
    QString form;
    QString title;
};

const QString kJpeg = QStringLiteral("jpeg");
const QString kJpg = QStringLiteral("jpg");
const QString kTiff = QStringLiteral("tiff");

const QList<FormatRow> &defaultRows()
{
    static const QList<FormatRow> rows{
        {kJpeg, QStringLiteral("JPEG (*.jpg)")},
        {kTiff, QStringLiteral("Tiff (*.tiff)")},
        {QStringLiteral("bmp"), QStringLiteral("BMP (*.bmp)")},
        {QStringLiteral("gif"), QStringLiteral("GIF (*.gif)")},
        {QStringLiteral("png"), QStringLiteral("PNG (*.png)")},
    };
    return rows;
}

bool isEitherCaseOf(const QString &extension, const QString &form)
{
    return extension == form || extension == form.toUpper();
}

} // namespace

ExportFormats ExportFormats::forSource(const QString &extension)
{
    QList<FormatRow> rows = defaultRows();
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
    const auto isSameFormat = [&lower](const QString &form) {
        const bool jpeg = form == kJpeg || form == kJpg;
        return form == lower || (jpeg && (lower == kJpeg || lower == kJpg)) ||
               (form == kTiff && lower == QLatin1String("tif"));
    };
    for (const QString &form : formats) {
        if (isSameFormat(form))
            return form;
    }
    return {};
}

std::optional<WriteFormat> ExportFormats::writeFormat(const QString &format)
{
    static const QList<std::pair<QString, WriteFormat>> table{
        {QStringLiteral("png"), WriteFormat::Png},   {QStringLiteral("PNG"), WriteFormat::Png},
        {QStringLiteral("jpeg"), WriteFormat::Jpeg}, {QStringLiteral("JPEG"), WriteFormat::Jpeg},
        {QStringLiteral("jpg"), WriteFormat::Jpeg},  {QStringLiteral("JPG"), WriteFormat::Jpeg},
        {QStringLiteral("bmp"), WriteFormat::Bmp},   {QStringLiteral("BMP"), WriteFormat::Bmp},
        {QStringLiteral("tiff"), WriteFormat::Tiff}, {QStringLiteral("TIFF"), WriteFormat::Tiff},
        {QStringLiteral("gif"), WriteFormat::Gif},   {QStringLiteral("GIF"), WriteFormat::Gif},
    };
    for (const auto &[name, writeFormat] : table) {
        if (name == format)
            return writeFormat;
    }
    return std::nullopt;
}

} // namespace hazelmark
