#include "ForeignDecoder.h"
#include "PictureFormat.h"
#include "PixelFormats.h"
#include "QtReader.h"

#include <QImageReader>

#include <algorithm>
#include <cstring>
#include <iterator>

namespace hazelmark::glass {

namespace {

Trouble troubleOf(Failure::Reason reason)
{
    switch (reason) {
    case Failure::Reason::NotAPicture:
        return Trouble::NotAPicture;
    case Failure::Reason::Truncated:
        return Trouble::Truncated;
    case Failure::Reason::UnsupportedFormat:
        return Trouble::Unsupported;
    case Failure::Reason::OutOfMemory:
        return Trouble::OutOfMemory;
    case Failure::Reason::TooLarge:
        return Trouble::TooLarge;
    default:
        return Trouble::Damaged;
    }
}

[[noreturn]] void fail(const Failure &failure)
{
    throw NoPicture(troubleOf(failure.reason), failure.detail.toStdString());
}

struct Row
{
    Layout layout;
    QImage::Format format;
};
constexpr Row kRows[] = {{Layout::Gray8, QImage::Format_Grayscale8}, {Layout::Gray16, QImage::Format_Grayscale16},
                         {Layout::Rgbx8, QImage::Format_RGBX8888},   {Layout::Rgba8, QImage::Format_RGBA8888},
                         {Layout::Rgbx16, QImage::Format_RGBX64},    {Layout::Rgba16, QImage::Format_RGBA64}};

QImage::Format formatOf(Layout layout)
{
    return std::find_if(std::begin(kRows), std::end(kRows), [=](const Row &row) { return row.layout == layout; })
        ->format;
}

Layout layoutOf(QImage::Format format)
{
    return std::find_if(std::begin(kRows), std::end(kRows), [=](const Row &row) { return row.format == format; })
        ->layout;
}

std::string bytesOf(const QByteArray &bytes)
{
    return bytes.toStdString();
}

class QtDecoder : public ForeignDecoder
{
public:
    explicit QtDecoder(const Photo &photo);
    Header readHeader() override;
    Done decode(const Canvas &canvas) override;

private:
    std::unique_ptr<SourceFile> m_source;
    std::unique_ptr<QtReader> m_reader;
    Header m_header;
};

QtDecoder::QtDecoder(const Photo &photo)
{
    // Whatever plugins there are, loaded as long as that can be done.
    (void)QImageReader::supportedImageFormats();
    Outcome<std::unique_ptr<SourceFile>> source = SourceFile::ofDescriptor(photo.descriptor);
    if (!source)
        fail(source.failure());
    m_source = std::move(*source);
    m_reader = std::make_unique<QtReader>(*m_source);
}

Header QtDecoder::readHeader()
{
    if (const std::optional<Failure> failure = m_reader->readHeader())
        fail(*failure);
    const PictureInfo info = m_reader->info();
    m_header.format = bytesOf(info.format);
    std::transform(info.frames.begin(), info.frames.end(), std::back_inserter(m_header.frames), [](QSize size) {
        return Size{uint32_t(size.width()), uint32_t(size.height())};
    });
    m_header.layout = layoutOf(m_reader->pixelFormat());
    m_header.bitsPerChannel = uint8_t(std::clamp(info.bitsPerChannel, 1, 32));
    m_header.hasAlpha = info.hasAlpha;
    m_header.isGray = info.colorModel == ColorModel::Gray;
    if (info.dpi) {
        m_header.dotsPerInchX = info.dpi->width();
        m_header.dotsPerInchY = info.dpi->height();
    }
    m_header.iccProfile = bytesOf(info.iccProfile);
    return m_header;
}

Done QtDecoder::decode(const Canvas &canvas)
{
    Outcome<Picture> picture = m_reader->decode({});
    if (!picture)
        fail(picture.failure());
    QImage pixels = std::move(picture->pixels);
    pixels.convertTo(formatOf(m_header.layout));
    if (uint32_t(pixels.width()) != canvas.size.width || uint32_t(pixels.height()) != canvas.size.height)
        throw NoPicture(Trouble::Damaged, {});
    const size_t bytes = std::min(canvas.stride, size_t(pixels.bytesPerLine()));
    for (uint32_t y = 0; y < canvas.size.height; ++y)
        std::memcpy(canvas.row8(y), pixels.constScanLine(int(y)), bytes);
    return {};
}

} // namespace

} // namespace hazelmark::glass

extern "C" hazelmark::glass::ForeignDecoder *makeForeignDecoder(const hazelmark::glass::Photo &photo)
{
    return new hazelmark::glass::QtDecoder(photo);
}
