#include "QtReader.h"

#include "ForeignKinds.h"
#include "PixelFormats.h"

#include <QColorSpace>

#include <algorithm>
#include <mutex>

namespace hazelmark {

namespace {

/// A gigapixel of 16-bit RGBA. Pictures are refused by kMaxPixels before; this is Qt's own guard of 256 MB, raised.
constexpr int kAllocationLimitMegabytes = 8192;

} // namespace

QtReader::QtReader(SourceFile &source)
    : m_source(source)
{
    static std::once_flag raised;
    std::call_once(raised, [] {
        QImageReader::setAllocationLimit(std::max(QImageReader::allocationLimit(), kAllocationLimitMegabytes));
    });
    m_reader.setDecideFormatFromContent(true);
    m_reader.setAutoTransform(false);
    startAnew();
}

/// At the file's first picture.
void QtReader::startAnew()
{
    m_source.device().seek(0);
    m_reader.setDevice(&m_source.device());
}

Failure QtReader::failure() const
{
    using Reason = Failure::Reason;
    Reason reason = Reason::Damaged;
    if (m_reader.error() == QImageReader::DeviceError)
        reason = Reason::NotReadable;
    else if (m_reader.error() == QImageReader::UnsupportedFormatError)
        reason = Reason::NotAPicture;
    return m_source.failure(reason, m_reader.errorString());
}

std::optional<Failure> QtReader::readHeader()
{
    const QByteArray format = m_reader.format();
    if (format.isEmpty() || isRefusedQtFormat(format))
        return m_source.failure(Failure::Reason::NotAPicture);
    m_header = readFileHeader(m_source, format);
    if (m_header.isOfAnotherKind)
        return m_source.failure(Failure::Reason::NotAPicture);
    m_size = m_header.frames.empty() ? m_reader.size() : m_header.frames.front();
    if (m_header.isCutOff && m_size.isEmpty())
        return m_source.failure(Failure::Reason::Truncated);
    if (m_size.isEmpty())
        return m_source.failure(Failure::Reason::Damaged);
    return m_source.checkSize(m_size.width(), m_size.height());
}

std::vector<QSize> QtReader::frameSizes()
{
    if (!m_header.frames.empty())
        return m_header.frames;
    std::vector<QSize> sizes = {m_size};
    const int count = std::min(m_reader.imageCount(), int(kMaxFrames));
    for (int index = 1; index < count && m_reader.jumpToImage(index); ++index) {
        const QSize size = m_reader.size();
        if (!size.isEmpty())
            sizes.push_back(size);
    }
    startAnew();
    return sizes;
}

PictureInfo QtReader::info()
{
    PictureInfo info;
    info.format = m_reader.format();
    const QImage::Format pixelFormat = m_reader.imageFormat();
    if (pixelFormat != QImage::Format_Invalid) {
        const QPixelFormat layout = QImage::toPixelFormat(pixelFormat);
        const bool isGray = layout.colorModel() == QPixelFormat::Grayscale;
        info.colorModel = isGray ? ColorModel::Gray : ColorModel::Rgb;
        info.bitsPerChannel = std::max(8, int(isGray ? layout.bitsPerPixel() : layout.redSize()));
        info.hasAlpha = layout.alphaUsage() == QPixelFormat::UsesAlpha;
    }
    info.hasAlpha = m_header.hasAlpha.value_or(info.hasAlpha);
    info.iccProfile = m_header.iccProfile;
    info.dpi = m_header.dpi;
    info.frames = frameSizes();
    return info;
}

/// Some readers put a picture together from another one.
DecodeCost QtReader::cost(QSize)
{
    const QImage::Format format = m_reader.imageFormat();
    const qint64 bits = format == QImage::Format_Invalid ? 32 : QImage::toPixelFormat(format).bitsPerPixel();
    const qint64 bitmap = qint64(m_size.width()) * m_size.height() * std::max<qint64>(bits, 32) / 8;
    return {bitmap, bitmap};
}

Outcome<Picture> QtReader::decode(QSize)
{
    if (m_header.isCutOff)
        return m_source.failure(Failure::Reason::Truncated);
    QImage image;
    if (!m_reader.read(&image) || image.isNull())
        return failure();
    if (const std::optional<Failure> tooLarge = m_source.checkSize(image.width(), image.height()))
        return *tooLarge;
    if (image.size() != m_size) // whoever read the headers has laid itself out for that size
        return m_source.failure(Failure::Reason::Damaged);
    Picture picture;
    picture.iccProfile = m_header.iccProfile.isEmpty() ? image.colorSpace().iccProfile() : m_header.iccProfile;
    if (!isGray(image))
        image.convertTo(fourSampleFormat(image));
    picture.pixels = std::move(image);
    if (picture.pixels.isNull())
        return m_source.failure(Failure::Reason::OutOfMemory);
    if (isGray(picture.pixels))
        picture.fileColorModel = ColorModel::Gray;
    return picture;
}

QImage::Format QtReader::pixelFormat()
{
    const QImage::Format stored = m_reader.imageFormat();
    if (stored == QImage::Format_Invalid)
        return m_header.hasAlpha.value_or(true) ? QImage::Format_RGBA8888 : QImage::Format_RGBX8888;
    if (stored == QImage::Format_Grayscale8 || stored == QImage::Format_Grayscale16)
        return stored;
    const QPixelFormat layout = QImage::toPixelFormat(stored);
    const bool isDeep = layout.redSize() > 8;
    if (m_header.hasAlpha.value_or(layout.alphaUsage() == QPixelFormat::UsesAlpha))
        return isDeep ? QImage::Format_RGBA64 : QImage::Format_RGBA8888;
    return isDeep ? QImage::Format_RGBX64 : QImage::Format_RGBX8888;
}

} // namespace hazelmark
