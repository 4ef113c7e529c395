#include "ZlibStream.h"

#include <algorithm>

namespace hazelmark {

Inflater::Inflater(Header header)
    : m_isReady(inflateInit2(&m_zlib, MAX_WBITS + header) == Z_OK)
{
}

Inflater::Content Inflater::unpacked(QByteArrayView stream, qsizetype limit)
{
    if (!m_isReady || inflateReset(&m_zlib) != Z_OK)
        return {{}, 0, false};
    m_zlib.next_in = reinterpret_cast<Bytef *>(const_cast<char *>(stream.data()));
    m_zlib.avail_in = uInt(std::min<qsizetype>(stream.size(), 1 << 30));
    QByteArray bytes;
    int status = Z_OK;
    for (qsizetype step = 256; status == Z_OK && bytes.size() <= limit; step = std::min<qsizetype>(2 * step, 1 << 20)) {
        const qsizetype filled = bytes.size();
        bytes.resize(filled + step);
        m_zlib.next_out = reinterpret_cast<Bytef *>(bytes.data() + filled);
        m_zlib.avail_out = uInt(step);
        status = inflate(&m_zlib, Z_NO_FLUSH);
        bytes.resize(bytes.size() - qsizetype(m_zlib.avail_out));
    }
    return {bytes, qsizetype(m_zlib.total_in), status == Z_STREAM_END};
}

QByteArray inflateZlib(const QByteArray &stream, qsizetype limit)
{
    const Inflater::Content content = Inflater(Inflater::ZlibHeader).unpacked(stream, limit);
    return content.isWhole && content.bytes.size() <= limit ? content.bytes : QByteArray();
}

QByteArray deflateZlib(const QByteArray &bytes)
{
    uLongf size = compressBound(uLong(bytes.size()));
    QByteArray stream(qsizetype(size), Qt::Uninitialized);
    if (compress(reinterpret_cast<Bytef *>(stream.data()), &size, reinterpret_cast<const Bytef *>(bytes.constData()),
                 uLong(bytes.size())) != Z_OK)
        return {};
    stream.resize(qsizetype(size));
    return stream;
}

} // namespace hazelmark
