#include "JpegBand.h"
#include "JpegSegments.h"
#include "ParallelFor.h"
#include "PictureEncoders.h"
#include "TiffBytes.h"

#include <QtEndian>

#include <algorithm>
#include <condition_variable>
#include <cstdio>
#include <map>
#include <mutex>
#include <new>
#include <vector>

#include <jpeglib.h>

namespace hazelmark {

namespace {

constexpr int kBlockSide = 8;

/// Rows that are encoded as a unit. Depends on the picture's size alone, so that the file does not depend on the number
/// of threads.
int rowsPerBand(QSize size)
{
    constexpr int kPixelsPerBand = 512 * 1024;
    constexpr int kMaxRestartInterval = 65535;
    const int blocksPerRow = (size.width() + kBlockSide - 1) / kBlockSide;
    const int blockRows = kPixelsPerBand / (blocksPerRow * kBlockSide * kBlockSide);
    return kBlockSide * std::clamp(blockRows, 1, kMaxRestartInterval / blocksPerRow);
}

/// Encodes a picture in bands, several at a time, and joins them to one scan with a restart marker between them: byte
/// for byte the file that one encoder with this restart interval writes.
class JpegWriter
{
public:
    JpegWriter(const QImage &pixels, const EncodeOptions &options, FileSink &sink);

    Outcome<Done> encode();

private:
    void work();
    void take(int index, JpegBand &&band);
    bool writeNext(const JpegBand &band, int index);
    bool writeHead(const JpegBand &band);
    void fail(const QString &message);

    const QImage &m_pixels;
    FileSink &m_sink;
    const std::vector<JpegSegment> m_segments;
    const int m_bandRows;
    const int m_bandCount;
    JpegBandOptions m_options;

    std::mutex m_mutex;
    std::condition_variable m_hasAdvanced;
    // Guarded by the mutex:
    std::map<int, JpegBand> m_waiting; ///< encoded before their predecessors
    int m_nextToEncode = 0;
    int m_nextToWrite = 0;
    bool m_hasFailed = false;
    QString m_message;
};

JpegWriter::JpegWriter(const QImage &pixels, const EncodeOptions &options, FileSink &sink)
    : m_pixels(pixels)
    , m_sink(sink)
    , m_segments(metadataSegments(options.metadata))
    , m_bandRows(rowsPerBand(pixels.size()))
    , m_bandCount((pixels.height() + m_bandRows - 1) / m_bandRows)
{
    const int blocksPerRow = (pixels.width() + kBlockSide - 1) / kBlockSide;
    m_options.quality = options.jpegQuality;
    m_options.dpi = options.metadata.dpi;
    m_options.restartInterval = m_bandCount > 1 ? unsigned(blocksPerRow * (m_bandRows / kBlockSide)) : 0;
}

Outcome<Done> JpegWriter::encode()
{
    const int threads = std::min(defaultThreadCount(), m_bandCount);
    parallelFor(threads, threads, [this](int) { work(); });
    if (m_hasFailed)
        return m_sink.failure(m_message);
    return Done{};
}

/// Encodes one band after the other until there is none left, never far ahead of the file.
void JpegWriter::work()
{
    constexpr int kMaxAhead = 64;
    try {
        while (true) {
            std::unique_lock lock(m_mutex);
            m_hasAdvanced.wait(lock, [this] { return m_hasFailed || m_nextToEncode < m_nextToWrite + kMaxAhead; });
            if (m_hasFailed || m_nextToEncode == m_bandCount)
                return;
            const int index = m_nextToEncode++;
            lock.unlock();
            const int first = index * m_bandRows;
            JpegBand band(m_pixels, first, std::min(first + m_bandRows, m_pixels.height()), m_options);
            lock.lock();
            take(index, std::move(band));
        }
    } catch (const std::bad_alloc &) {
        const std::lock_guard lock(m_mutex);
        fail(QStringLiteral("there is not enough memory"));
    }
}

/// Writes the band if it is the next one, and those behind it that wait. Called with the mutex held.
void JpegWriter::take(int index, JpegBand &&band)
{
    if (m_hasFailed)
        return;
    if (band.file().isEmpty())
        return fail(band.error());
    m_waiting.emplace(index, std::move(band));
    for (auto next = m_waiting.find(m_nextToWrite); next != m_waiting.end(); next = m_waiting.find(m_nextToWrite)) {
        if (!writeNext(next->second, m_nextToWrite))
            return fail({});
        m_waiting.erase(next);
        ++m_nextToWrite;
    }
    m_hasAdvanced.notify_all();
}

bool JpegWriter::writeNext(const JpegBand &band, int index)
{
    constexpr uchar kFirstRestartMarker = 0xd0;
    constexpr int kRestartMarkers = 8;
    const uchar restart[] = {0xff, uchar(kFirstRestartMarker + (index + kRestartMarkers - 1) % kRestartMarkers)};
    const uchar end[] = {0xff, 0xd9};
    return (index == 0 ? writeHead(band) : m_sink.write(restart, sizeof restart)) &&
           m_sink.write(band.scan().data(), size_t(band.scan().size())) &&
           (index + 1 < m_bandCount || m_sink.write(end, sizeof end));
}

bool JpegWriter::writeHead(const JpegBand &band)
{
    QByteArray head = band.start().toByteArray();
    for (const JpegSegment &segment : m_segments) {
        head += tiffBytes(quint16(0xff00 | segment.marker), true) + tiffBytes(quint16(segment.data.size() + 2), true);
        head += segment.data;
    }
    QByteArray headers = band.headers().toByteArray();
    qToBigEndian(quint16(m_pixels.height()), headers.data() + band.heightOffset());
    head += headers;
    return m_sink.write(head.constData(), size_t(head.size()));
}

void JpegWriter::fail(const QString &message)
{
    if (!m_hasFailed)
        m_message = message;
    m_hasFailed = true;
    m_hasAdvanced.notify_all();
}

} // namespace

Outcome<Done> encodeJpeg(const QImage &pixels, const EncodeOptions &options, FileSink &sink)
{
    if (std::max(pixels.width(), pixels.height()) > JPEG_MAX_DIMENSION)
        return sink.failure(QStringLiteral("a side of more than %1 pixels").arg(JPEG_MAX_DIMENSION));
    return JpegWriter(pixels, options, sink).encode();
}

} // namespace hazelmark
