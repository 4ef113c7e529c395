#include "SourceFile.h"

#include <cerrno>
#include <cstring>

#include <sys/stat.h>
#include <unistd.h>

namespace hazelmark {

SourceFile::SourceFile(const QString &path)
    : m_path(path)
    , m_file(path)
{
}

Outcome<std::unique_ptr<SourceFile>> SourceFile::open(const QString &path)
{
    using Reason = Failure::Reason;
    struct stat status = {};
    if (::stat(QFile::encodeName(path).constData(), &status) != 0) {
        const bool missing = errno == ENOENT || errno == ENOTDIR || errno == ENAMETOOLONG;
        return Failure{missing ? Reason::NoSuchFile : Reason::NotReadable, path,
                       missing ? QString() : QString::fromLocal8Bit(std::strerror(errno))};
    }
    if (S_ISDIR(status.st_mode))
        return Failure{Reason::IsFolder, path, {}};
    if (!S_ISREG(status.st_mode))
        return Failure{Reason::NotARegularFile, path, {}};

    std::unique_ptr<SourceFile> source(new SourceFile(path));
    if (!source->m_file.open(QIODevice::ReadOnly))
        return Failure{Reason::NotReadable, path, source->m_file.errorString()};
    if (const std::optional<Failure> failure = source->readBeginning())
        return *failure;
    return source;
}

Outcome<std::unique_ptr<SourceFile>> SourceFile::ofDescriptor(int descriptor)
{
    std::unique_ptr<SourceFile> source(new SourceFile({}));
    if (!source->m_file.open(descriptor, QIODevice::ReadOnly))
        return source->failure(Failure::Reason::NotReadable, source->m_file.errorString());
    if (const std::optional<Failure> failure = source->readBeginning())
        return *failure;
    return source;
}

std::optional<Failure> SourceFile::readBeginning()
{
    m_identity = FileIdentity::ofDescriptor(m_file.handle());
    m_size = m_file.size();
    if (m_size == 0)
        return failure(Failure::Reason::Empty);
    m_head = bytesAt(0, kHeadSize);
    if (m_head.isEmpty() || !m_identity)
        return failure(Failure::Reason::NotReadable, QString::fromLocal8Bit(std::strerror(errno)));
    return std::nullopt;
}

qint64 SourceFile::read(qint64 offset, char *bytes, qint64 count) const
{
    qint64 done = 0;
    while (offset >= 0 && done < count) {
        const ssize_t got = ::pread(m_file.handle(), bytes + done, size_t(count - done), offset + done);
        if (got < 0 && errno == EINTR)
            continue;
        if (got <= 0)
            return got < 0 && done == 0 ? -1 : done;
        done += got;
    }
    return done;
}

QByteArray SourceFile::bytesAt(qint64 offset, qint64 count) const
{
    if (offset < 0 || offset >= m_size || count <= 0)
        return {};
    QByteArray bytes(std::min(count, m_size - offset), Qt::Uninitialized);
    bytes.truncate(std::max<qint64>(read(offset, bytes.data(), bytes.size()), 0));
    return bytes;
}

std::optional<Failure> SourceFile::checkSize(qint64 width, qint64 height) const
{
    if (width <= 0 || height <= 0)
        return failure(Failure::Reason::Damaged, QStringLiteral("the picture has no pixels"));
    // Divided rather than multiplied: a hostile header may state any two numbers.
    if (width > kMaxPixels / height)
        return failure(Failure::Reason::TooLarge, QStringLiteral("%1 x %2 pixels").arg(width).arg(height));
    if (std::max(width, height) > kMaxPictureSide)
        return failure(Failure::Reason::UnsupportedFormat, QStringLiteral("%1 x %2 pixels").arg(width).arg(height));
    return std::nullopt;
}

} // namespace hazelmark
