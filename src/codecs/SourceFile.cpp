#include "SourceFile.h"

#include <cerrno>
#include <cstring>

#include <sys/stat.h>

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
    source->m_size = source->m_file.size();
    if (source->m_size == 0)
        return Failure{Reason::Empty, path, {}};
    source->m_head = source->m_file.peek(kHeadSize);
    if (source->m_head.isEmpty())
        return Failure{Reason::NotReadable, path, source->m_file.errorString()};
    return source;
}

QByteArray SourceFile::bytesAt(qint64 offset, qint64 count)
{
    if (offset < 0 || offset >= m_size || count <= 0 || !m_file.seek(offset))
        return {};
    return m_file.read(std::min(count, m_size - offset));
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
