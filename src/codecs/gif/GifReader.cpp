#include "LargeMemory.h"
#include "PictureFormat.h"
#include "SourceCursor.h"

#include <algorithm>

#include <gif_lib.h>

namespace hazelmark {

namespace {

/// The first frame of a GIF file on its canvas. Read with giflib rather than through Qt, which hands back what it has
/// got of a cut-off file.
class GifReader : public PictureReader
{
public:
    explicit GifReader(SourceFile &source);
    ~GifReader() override;
    GifReader(const GifReader &) = delete;
    GifReader &operator=(const GifReader &) = delete;

    /// Reads up to the first frame's pixels.
    std::optional<Failure> readHeader() override;
    PictureInfo info() override;
    DecodeCost cost(QSize) override { return {qint64(canvasSize().width()) * canvasSize().height() * 4}; }
    Outcome<Picture> decode(QSize) override;

private:
    enum class Record { Frame, End, Broken };

    /// Blocks of up to 255 bytes that are read over in search of frames: some 64 MB. A file can be made to hold nothing
    /// but the smallest.
    static constexpr int kMaxSkippedBlocks = 250'000;
    static constexpr qsizetype kMaxProfileSize = 16 << 20;

    static int read(GifFileType *gif, GifByteType *bytes, int count);
    Record nextFrame();
    bool readExtension();
    bool skipPixels();
    Failure failure() const;
    QSize canvasSize() const;
    bool hasAlpha() const;
    bool readRows(QImage &canvas, const ColorMapObject &colors);

    SourceFile &m_source;
    SourceCursor m_cursor{m_source};
    GifFileType *m_gif = nullptr;
    int m_openError = 0;
    int m_transparentIndex = NO_TRANSPARENT_COLOR;
    bool m_hasHitEnd = false;
    int m_skippedBlocks = 0;
    QByteArray m_iccProfile; ///< in an application block
};

/// The content of a block: its first byte counts the others.
QByteArray bytesOf(const GifByteType *block)
{
    return QByteArray(reinterpret_cast<const char *>(block + 1), block[0]);
}

GifReader::GifReader(SourceFile &source)
    : m_source(source)
{
    m_gif = DGifOpen(this, &read, &m_openError);
}

GifReader::~GifReader()
{
    int error = 0;
    if (m_gif)
        DGifCloseFile(m_gif, &error);
}

int GifReader::read(GifFileType *gif, GifByteType *bytes, int count)
{
    auto *self = static_cast<GifReader *>(gif->UserData);
    const qint64 got = self->m_cursor.read(reinterpret_cast<char *>(bytes), count);
    if (got < count)
        self->m_hasHitEnd = true;
    return int(std::max<qint64>(got, 0));
}

Failure GifReader::failure() const
{
    const char *message = GifErrorString(m_gif ? m_gif->Error : m_openError);
    return m_source.failure(m_hasHitEnd ? Failure::Reason::Truncated : Failure::Reason::Damaged,
                            QString::fromLatin1(message ? message : ""));
}

bool GifReader::readExtension()
{
    int code = 0;
    GifByteType *block = nullptr;
    if (DGifGetExtension(m_gif, &code, &block) != GIF_OK)
        return false;
    GraphicsControlBlock control;
    if (code == GRAPHICS_EXT_FUNC_CODE && block && DGifExtensionToGCB(block[0], block + 1, &control) == GIF_OK)
        m_transparentIndex = control.TransparentColor;
    const bool isProfile =
        code == APPLICATION_EXT_FUNC_CODE && block && bytesOf(block) == "ICCRGBG1012" && m_iccProfile.isEmpty();
    ++m_skippedBlocks;
    while (block) {
        if (++m_skippedBlocks > kMaxSkippedBlocks || DGifGetExtensionNext(m_gif, &block) != GIF_OK)
            return false;
        if (isProfile && block && m_iccProfile.size() < kMaxProfileSize)
            m_iccProfile += bytesOf(block);
    }
    return true;
}

GifReader::Record GifReader::nextFrame()
{
    m_transparentIndex = NO_TRANSPARENT_COLOR;
    while (true) {
        GifRecordType type = UNDEFINED_RECORD_TYPE;
        if (DGifGetRecordType(m_gif, &type) != GIF_OK)
            return Record::Broken;
        if (type == TERMINATE_RECORD_TYPE)
            return Record::End;
        if (type == IMAGE_DESC_RECORD_TYPE)
            return DGifGetImageDesc(m_gif) == GIF_OK ? Record::Frame : Record::Broken;
        if (type != EXTENSION_RECORD_TYPE || m_skippedBlocks > kMaxSkippedBlocks || !readExtension())
            return Record::Broken;
    }
}

bool GifReader::skipPixels()
{
    int codeSize = 0;
    GifByteType *block = nullptr;
    if (DGifGetCode(m_gif, &codeSize, &block) != GIF_OK)
        return false;
    while (block) {
        if (++m_skippedBlocks > kMaxSkippedBlocks || DGifGetCodeNext(m_gif, &block) != GIF_OK)
            return false;
    }
    return true;
}

std::optional<Failure> GifReader::readHeader()
{
    if (!m_gif)
        return failure();
    if (nextFrame() != Record::Frame)
        return failure();
    if (m_gif->Image.Width <= 0 || m_gif->Image.Height <= 0)
        return m_source.failure(Failure::Reason::Damaged, QStringLiteral("a frame without pixels"));
    if (const auto tooLarge = m_source.checkSize(canvasSize().width(), canvasSize().height()))
        return tooLarge;
    // All of a frame has to be unpacked, also what lies beside the canvas.
    constexpr qint64 kAlwaysAllowed = 64 << 20;
    const qint64 framePixels = qint64(m_gif->Image.Width) * m_gif->Image.Height;
    if (framePixels > kAlwaysAllowed && framePixels / 4 > qint64(canvasSize().width()) * canvasSize().height())
        return m_source.failure(Failure::Reason::Damaged, QStringLiteral("its frame is far larger than the picture"));
    return std::nullopt;
}

/// Some files state no canvas.
QSize GifReader::canvasSize() const
{
    if (m_gif->SWidth > 0 && m_gif->SHeight > 0)
        return QSize(m_gif->SWidth, m_gif->SHeight);
    return QSize(m_gif->Image.Left + m_gif->Image.Width, m_gif->Image.Top + m_gif->Image.Height);
}

/// What the frame does not cover is transparent too.
bool GifReader::hasAlpha() const
{
    const GifImageDesc &frame = m_gif->Image;
    return m_transparentIndex != NO_TRANSPARENT_COLOR || frame.Left > 0 || frame.Top > 0 ||
           frame.Left + frame.Width < canvasSize().width() || frame.Top + frame.Height < canvasSize().height();
}

PictureInfo GifReader::info()
{
    PictureInfo info;
    info.format = "gif";
    const QSize size = canvasSize();
    info.frames = {size};
    info.hasAlpha = hasAlpha();
    info.iccProfile = m_iccProfile;
    GifReader rest(m_source); // this one stays at the first frame's pixels
    const bool isReadable = !rest.readHeader();
    while (isReadable && info.frames.size() < kMaxFrames && rest.skipPixels() && rest.nextFrame() == Record::Frame)
        info.frames.push_back(size);
    return info;
}

Outcome<Picture> GifReader::decode(QSize)
{
    const ColorMapObject *colors = m_gif->Image.ColorMap ? m_gif->Image.ColorMap : m_gif->SColorMap;
    if (!colors)
        return m_source.failure(Failure::Reason::Damaged, QStringLiteral("it has no palette"));
    Picture picture;
    picture.pixels = makeLargeBitmap(canvasSize(), hasAlpha() ? QImage::Format_RGBA8888 : QImage::Format_RGBX8888);
    if (picture.pixels.isNull())
        return m_source.failure(Failure::Reason::OutOfMemory);
    if (hasAlpha()) // else every pixel is written
        picture.pixels.fill(0);
    picture.iccProfile = m_iccProfile;
    if (!readRows(picture.pixels, *colors))
        return failure();
    return picture;
}

bool GifReader::readRows(QImage &canvas, const ColorMapObject &colors)
{
    struct Pass
    {
        int first;
        int step;
    };
    constexpr Pass kInterlaced[] = {{0, 8}, {4, 8}, {2, 4}, {1, 2}};
    constexpr Pass kSequential[] = {{0, 1}};
    const GifImageDesc frame = m_gif->Image;
    const Pass *pass = frame.Interlace ? std::begin(kInterlaced) : std::begin(kSequential);
    const Pass *end = frame.Interlace ? std::end(kInterlaced) : std::end(kSequential);
    const int visible = std::min(frame.Width, canvas.width() - frame.Left);
    std::vector<GifPixelType> indices(static_cast<size_t>(frame.Width));
    for (; pass != end; ++pass) {
        for (int y = pass->first; y < frame.Height; y += pass->step) {
            if (DGifGetLine(m_gif, indices.data(), frame.Width) != GIF_OK)
                return false;
            if (frame.Top + y >= canvas.height())
                continue;
            uchar *target = canvas.scanLine(frame.Top + y) + 4 * qsizetype(frame.Left);
            for (int x = 0; x < visible; ++x, target += 4) {
                const int index = indices[size_t(x)];
                if (index >= colors.ColorCount)
                    return false;
                const GifColorType &color = colors.Colors[index];
                target[0] = color.Red;
                target[1] = color.Green;
                target[2] = color.Blue;
                target[3] = index == m_transparentIndex ? 0 : 255;
            }
        }
    }
    return true;
}

bool isGif(const QByteArray &head)
{
    return head.startsWith("GIF87a") || head.startsWith("GIF89a");
}

} // namespace

const PictureFormat kGifFormat = formatReadBy<GifReader>(isGif);

} // namespace hazelmark
