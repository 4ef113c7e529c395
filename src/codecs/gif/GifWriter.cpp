#include "ColorProfile.h"
#include "GifPalette.h"
#include "PictureEncoders.h"

#include <gif_lib.h>

namespace hazelmark {

namespace {

constexpr int kMaxSide = 65535;
constexpr size_t kBufferSize = 64 * 1024;

/// The library writes a few bytes at a time.
class GifOutput
{
public:
    explicit GifOutput(FileSink &sink)
        : m_sink(sink)
    {
        m_buffer.reserve(kBufferSize);
    }

    static int take(GifFileType *gif, const GifByteType *bytes, int count)
    {
        return static_cast<GifOutput *>(gif->UserData)->append(bytes, count) ? count : 0;
    }
    bool flush()
    {
        const bool isWritten = m_sink.write(m_buffer.data(), m_buffer.size());
        m_buffer.clear();
        return isWritten;
    }

private:
    bool append(const GifByteType *bytes, int count)
    {
        m_buffer.insert(m_buffer.end(), bytes, bytes + count);
        return m_buffer.size() < kBufferSize || flush();
    }

    FileSink &m_sink;
    std::vector<GifByteType> m_buffer;
};

/// The library asks for a power of two.
ColorMapObject *makeColorMap(const GifPalette &palette)
{
    int size = 2;
    while (size < int(palette.colors.size()))
        size *= 2;
    ColorMapObject *map = GifMakeMapObject(size, nullptr);
    for (size_t i = 0; map && i < palette.colors.size(); ++i)
        map->Colors[i] = {palette.colors[i][0], palette.colors[i][1], palette.colors[i][2]};
    return map;
}

bool writeTransparency(GifFileType *gif, int transparentIndex)
{
    const GraphicsControlBlock block = {DISPOSAL_UNSPECIFIED, false, 0, transparentIndex};
    GifByteType bytes[4];
    const size_t size = EGifGCBToExtension(&block, bytes);
    return EGifPutExtension(gif, GRAPHICS_EXT_FUNC_CODE, int(size), bytes) == GIF_OK;
}

bool writePicture(GifFileType *gif, GifPalette &palette, QSize size)
{
    ColorMapObject *map = makeColorMap(palette);
    if (!map)
        return false;
    EGifSetGifVersion(gif, palette.transparentIndex.has_value());
    const bool isScreenPut = EGifPutScreenDesc(gif, size.width(), size.height(), 8, 0, map) == GIF_OK;
    GifFreeMapObject(map);
    if (!isScreenPut || (palette.transparentIndex && !writeTransparency(gif, *palette.transparentIndex)) ||
        EGifPutImageDesc(gif, 0, 0, size.width(), size.height(), false, nullptr) != GIF_OK)
        return false;
    for (int y = 0; y < size.height(); ++y) {
        if (EGifPutLine(gif, palette.indices.data() + qsizetype(y) * size.width(), size.width()) != GIF_OK)
            return false;
    }
    return true;
}

} // namespace

Outcome<Done> encodeGif(const QImage &original, const EncodeOptions &options, FileSink &sink)
{
    if (original.width() > kMaxSide || original.height() > kMaxSide)
        return sink.failure(QStringLiteral("a GIF file cannot hold more than 65535 x 65535 pixels"));
    const QImage pixels = convertedToSrgb(original, options.metadata.iccProfile);
    GifPalette palette = GifPalette::of(pixels);
    if (palette.indices.empty())
        return sink.failure(QStringLiteral("no palette could be made"));

    GifOutput output(sink);
    int error = 0;
    GifFileType *gif = EGifOpen(&output, &GifOutput::take, &error);
    if (!gif)
        return sink.failure(QString::fromLatin1(GifErrorString(error)));
    const bool isWritten = writePicture(gif, palette, pixels.size());
    const bool isClosed = EGifCloseFile(gif, &error) == GIF_OK;
    if (!isWritten || !isClosed || !output.flush())
        return sink.failure(QString::fromLatin1(GifErrorString(error)));
    return Done{};
}

} // namespace hazelmark
