#pragma once

#include "Log.h"

#include <exception>
#include <mutex>

namespace hazelmark {

/// The right to use Exiv2, held for as long as this object lives. One at a time in the whole process: the library's
/// table of XMP namespaces grows with every file that brings a new one, and is read elsewhere without a lock. What is
/// done under it is a matter of milliseconds, and no file is read or written meanwhile but for its headers.
///
/// The library's messages go to the log category of this module.
class Exiv2Session
{
public:
    Exiv2Session();

private:
    std::unique_lock<std::mutex> m_lock;
};

/// Runs `step` with Exiv2 and tells whether it ended well. Whatever the library throws at metadata that it cannot make
/// sense of ends here, as a warning that names `path`.
template <typename Step>
bool withExiv2(const QString &path, const Step &step)
{
    const Exiv2Session session;
    try {
        step();
        return true;
    } catch (const std::exception &error) {
        qCWarning(lcDocument).noquote() << path + QStringLiteral(": metadata left out:") << error.what();
    } catch (...) {
        qCWarning(lcDocument).noquote() << path + QStringLiteral(": metadata left out");
    }
    return false;
}

} // namespace hazelmark
