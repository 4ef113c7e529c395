#include "ZlibStream.h"

#include <algorithm>

#include <zlib.h>

namespace hazelmark {

QByteArray inflateZlib(const QByteArray &stream, qsizetype limit)
{
    constexpr qsizetype kFirstSize = 64 * 1024;
    z_stream zlib = {};
    if (inflateInit(&zlib) != Z_OK)
        return {};
    zlib.next_in = reinterpret_cast<Bytef *>(const_cast<char *>(stream.constData()));
    zlib.avail_in = uInt(stream.size());
    QByteArray content;
    int status = Z_OK;
    while (status == Z_OK && content.size() < limit) {
        const qsizetype filled = content.size();
        content.resize(std::min(limit, std::max(kFirstSize, 2 * filled)));
        zlib.next_out = reinterpret_cast<Bytef *>(content.data() + filled);
        zlib.avail_out = uInt(content.size() - filled);
        status = inflate(&zlib, Z_NO_FLUSH);
        content.resize(content.size() - qsizetype(zlib.avail_out));
    }
    inflateEnd(&zlib);
    return status == Z_STREAM_END ? content : QByteArray();
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
