#include "Exiv2Session.h"

#include <QByteArray>

#include <exiv2/exiv2.hpp>

namespace hazelmark {

namespace {

std::mutex g_exiv2Mutex;
std::once_flag g_exiv2Started;

void passToLog(int level, const char *message)
{
    const QByteArray text = QByteArray(message).simplified();
    if (level >= Exiv2::LogMsg::warn)
        qCWarning(lcDocument).noquote() << text;
    else
        qCDebug(lcDocument).noquote() << text;
}

} // namespace

Exiv2Session::Exiv2Session()
    : m_lock(g_exiv2Mutex)
{
    std::call_once(g_exiv2Started, [] {
        Exiv2::LogMsg::setHandler(passToLog);
        Exiv2::XmpParser::initialize();
    });
}

} // namespace hazelmark
