#pragma once

#include <QByteArray>
#include <QByteArrayView>

#include <zlib.h>

namespace hazelmark {

/// Larger colour profiles than this are passed over.
inline constexpr qsizetype kMaxIccProfileSize = 64 * 1024 * 1024;

/// Unpacks one stream after the other, with the memory for one.
class Inflater
{
public:
    enum Header { ZlibHeader = 0, AnyHeader = 32 }; ///< the latter: zlib's or gzip's
    explicit Inflater(Header header);
    ~Inflater() { inflateEnd(&m_zlib); }
    Inflater(const Inflater &) = delete;
    Inflater &operator=(const Inflater &) = delete;

    struct Content
    {
        QByteArray bytes; ///< as much as could be had, also of a damaged stream
        qsizetype taken;  ///< bytes of the stream
        bool isWhole;
    };
    /// Of what begins with a stream. Ends soon when there are more bytes than `limit`.
    Content unpacked(QByteArrayView stream, qsizetype limit);

private:
    z_stream m_zlib = {};
    bool m_isReady;
};

/// The content of a zlib stream; empty when the stream is damaged, cut off, or unpacks to more than `limit` bytes.
QByteArray inflateZlib(const QByteArray &stream, qsizetype limit);
/// The bytes as a zlib stream; empty when there is no memory.
QByteArray deflateZlib(const QByteArray &bytes);

} // namespace hazelmark
