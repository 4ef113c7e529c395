#pragma once

#include "SourceFile.h"

namespace hazelmark {

/// A place in a SourceFile from which one reads on, with a buffer for those who read byte by byte.
class SourceCursor
{
public:
    explicit SourceCursor(const SourceFile &source, qint64 position = 0)
        : m_source(source)
        , m_position(position)
    {
    }

    qint64 position() const { return m_position; }
    bool atEnd() const { return m_position >= m_source.size(); }
    /// Also beyond the end, where nothing is read.
    void seek(qint64 position) { m_position = position; }
    void skip(qint64 count) { m_position += count; }

    /// How many bytes there were, or -1 when the device failed.
    qint64 read(char *bytes, qint64 count);
    /// Fewer than `count` bytes where the file ends.
    QByteArray read(qint64 count);
    /// Nothing at the end of the file.
    std::optional<quint8> readByte();

private:
    static constexpr qint64 kBufferSize = 16 * 1024;

    const SourceFile &m_source;
    qint64 m_position;
    QByteArray m_buffer; ///< of what begins at m_bufferStart
    qint64 m_bufferStart = 0;
};

} // namespace hazelmark
