#include "ExportWriter.h"

#include "ExportFormats.h"
#include "FlippedImage.h"
#include "Log.h"

#include <algorithm>
#include <cmath>
#include <new>

namespace hazelmark {

namespace {

/// A quality that the source's own dictionary carries, 0..1.
const QString kQualityEntry = QStringLiteral("LossyCompressionQuality");

/// GIF and BMP have no place for the tag, so their pixels stay upright.
bool holdsOrientation(WriteFormat format)
{
    return format != WriteFormat::Gif && format != WriteFormat::Bmp;
}

} // namespace

ExportWriter::ExportWriter(Settings settings)
    : m_settings(std::move(settings))
{
}

void ExportWriter::saveDenoisedImageInDirectoryPath(const QString &path, const PhotoImagePtr &filteredImage) const
{
    const Outcome<Done> done = save(path, filteredImage);
    if (!done)
        qCWarning(lcImageIo).noquote() << done.failure().sentence();
}

void ExportWriter::saveImageInSelectedFormat(int formatIndex, const QString &FilePath, const PixelImage &ImageRef) const
{
    const Outcome<Done> done = write(formatIndex, FilePath, ImageRef);
    if (!done)
        qCWarning(lcImageIo).noquote() << done.failure().sentence();
}

Outcome<Done> ExportWriter::save(const QString &path, const PhotoImagePtr &filteredImage) const
{
    if (!filteredImage)
        return Failure{Failure::Reason::EncodeFailed, path, QStringLiteral("there is no picture")};
    try {
        const int index = formatIndex();
        const PixelImage pixels = Utils::sharedUtils().getCgiImageRef(atTargetSize(filteredImage));
        return write(index, path, turnedAsStored(pixels, index));
    } catch (const std::bad_alloc &) {
        return Failure{Failure::Reason::OutOfMemory, path, {}};
    }
}

/// The picture at the source's pixel size, upright. At a backing scale above 1 its logical size is that of the points,
/// while one pixel a source pixel stays.
PhotoImagePtr ExportWriter::atTargetSize(PhotoImagePtr filteredImage) const
{
    const Utils &utils = Utils::sharedUtils();
    const PhotoPtr &source = m_settings.selectedImageFile.photo();
    const QSizeF target = source ? QSizeF(source->uprightSizes().back()) : filteredImage->size();
    if (filteredImage->pixelSize() != target.toSize())
        filteredImage = utils.scaleImage(filteredImage, target);
    const double factor = m_settings.backingScaleFactor;
    qCInfo(lcImageIo, "backing scale factor: %f", factor);
    filteredImage->setSize(factor > 1.0 ? target / factor : target);
    return filteredImage;
}

int ExportWriter::formatIndex() const
{
    const QStringList &formats = m_settings.arrformatsSupportedByIM;
    const QString &chosen = m_settings.fileTypeToExportImage;
    const QString format = chosen.isEmpty() ? m_settings.selectedImageFile.fileExtension().toLower() : chosen;
    return int(formats.contains(format) ? formats.indexOf(format) : formats.indexOf(QStringLiteral("jpg")));
}

PixelImage ExportWriter::turnedAsStored(PixelImage pixels, int formatIndex) const
{
    const std::optional<QVariantMap> &dict = m_settings.selectedImageFile.metaInfoDict();
    if (!dict)
        return pixels;
    const int orientation = dict->value(QStringLiteral("Orientation")).toInt();
    qCInfo(lcImageIo, "Image orentation : %d", orientation);
    const auto format = ExportFormats::writeFormat(m_settings.arrformatsSupportedByIM.value(formatIndex));
    if (format && holdsOrientation(*format))
        pixels.bitmap = FlippedImage::RotateWithEXIF(pixels.bitmap, orientation);
    return pixels;
}

Outcome<Done> ExportWriter::write(int formatIndex, const QString &path, const PixelImage &pixels) const
{
    const QString name = m_settings.arrformatsSupportedByIM.value(formatIndex);
    const std::optional<WriteFormat> format = ExportFormats::writeFormat(name);
    if (!format || pixels.bitmap.isNull())
        return Failure{format ? Failure::Reason::EncodeFailed : Failure::Reason::UnsupportedFormat, path, name};

    const QString &source = m_settings.selectedImageFile.filePath();
    EncodeOptions options;
    options.format = *format;
    if (const PhotoPtr &photo = m_settings.selectedImageFile.photo())
        options.metadata = photo->carriedMetadata(pixels.bitmap.size(), *format);
    options.metadata.iccProfile = pixels.iccProfile; // the photo's own, or what stands for a grey one
    const QVariantMap dict = m_settings.selectedImageFile.metaInfoDict().value_or(QVariantMap());
    if (dict.contains(kQualityEntry))
        options.jpegQuality = int(std::lround(std::clamp(dict.value(kQualityEntry).toDouble(), 0.0, 1.0) * 100.0));

    SourcePaths sources = m_settings.otherSources;
    sources.push_back({source, m_settings.selectedImageFile.identity()});
    return encodeSafely(pixels.bitmap, options, path, sources);
}

} // namespace hazelmark
