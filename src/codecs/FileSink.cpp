#include "FileSink.h"

#include <algorithm>
#include <cerrno>

#include <fcntl.h>
#include <unistd.h>

namespace hazelmark {

FileSink::FileSink(int descriptor, const QString &path)
    : m_path(path)
    , m_descriptor(::fcntl(descriptor, F_DUPFD_CLOEXEC, 0))
{
    if (m_descriptor < 0)
        m_error = errno;
}

FileSink::~FileSink()
{
    if (m_descriptor >= 0)
        ::close(m_descriptor);
}

bool FileSink::write(const void *bytes, size_t count)
{
    const char *next = static_cast<const char *>(bytes);
    while (m_error == 0 && count > 0) {
        const ssize_t written = ::write(m_descriptor, next, count);
        if (written < 0) {
            if (errno != EINTR)
                m_error = errno;
            continue;
        }
        next += written;
        count -= size_t(written);
    }
    return m_error == 0;
}

int64_t FileSink::seek(int64_t offset, int whence)
{
    return ::lseek(m_descriptor, offset, whence);
}

QByteArray FileSink::readAt(int64_t offset, size_t count)
{
    QByteArray bytes(qsizetype(count), Qt::Uninitialized);
    const ssize_t got = ::pread(m_descriptor, bytes.data(), count, offset);
    bytes.truncate(std::max<ssize_t>(got, 0));
    return bytes;
}

Outcome<Done> FileSink::finish()
{
    const int descriptor = m_descriptor;
    m_descriptor = -1;
    if (descriptor >= 0 && ::close(descriptor) != 0 && m_error == 0 && errno != EINTR)
        m_error = errno;
    if (m_error != 0)
        return Failure::ofWriteError(m_error, m_path);
    return Done{};
}

Failure FileSink::failure(const QString &encoderMessage) const
{
    if (m_error != 0)
        return Failure::ofWriteError(m_error, m_path);
    return {Failure::Reason::EncodeFailed, m_path, encoderMessage};
}

} // namespace hazelmark
