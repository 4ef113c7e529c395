#include "SourceCursor.h"

#include <algorithm>
#include <cstring>

namespace hazelmark {

qint64 SourceCursor::read(char *bytes, qint64 count)
{
    qint64 done = 0;
    while (done < count) {
        const qint64 offset = m_position - m_bufferStart;
        if (offset >= 0 && offset < m_buffer.size()) {
            const qint64 part = std::min(count - done, m_buffer.size() - offset);
            std::memcpy(bytes + done, m_buffer.constData() + offset, size_t(part));
            done += part;
            m_position += part;
            continue;
        }
        if (count - done >= kBufferSize) {
            const qint64 got = m_source.read(m_position, bytes + done, count - done);
            m_position += std::max<qint64>(got, 0);
            return got < 0 && done == 0 ? got : done + std::max<qint64>(got, 0);
        }
        m_bufferStart = m_position;
        m_buffer.resize(kBufferSize);
        const qint64 got = m_source.read(m_position, m_buffer.data(), kBufferSize);
        m_buffer.truncate(std::max<qint64>(got, 0));
        if (got <= 0)
            return got < 0 && done == 0 ? got : done;
    }
    return done;
}

QByteArray SourceCursor::read(qint64 count)
{
    QByteArray bytes(std::clamp<qint64>(m_source.size() - m_position, 0, count), Qt::Uninitialized);
    bytes.truncate(std::max<qint64>(read(bytes.data(), bytes.size()), 0));
    return bytes;
}

std::optional<quint8> SourceCursor::readByte()
{
    char byte = 0;
    return read(&byte, 1) == 1 ? std::optional(quint8(byte)) : std::nullopt;
}

} // namespace hazelmark
