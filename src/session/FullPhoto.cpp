#include "FullPhoto.h"

#include "AvailableMemory.h"
#include "Log.h"

#include <utility>

namespace hazelmark {

FullPhoto::FullPhoto(Load load, QObject *parent)
    : QObject(parent)
    , m_load(std::move(load))
{
}

void FullPhoto::setPhoto(const PhotoPtr &photo)
{
    m_photo = photo;
    m_isDecoding = false;
    m_hasFailed = false;
    giveBack();
}

void FullPhoto::ask()
{
    // What could not be read will not be read the next time either, and is not tried with every move of a wheel.
    if (!m_photo || m_loaded || m_isDecoding || m_hasFailed)
        return;
    m_isDecoding = true;
    emit changed();
    m_queue.run([load = m_load, photo = m_photo] { return load(*photo); },
                [this, photo = m_photo](const Outcome<ImageLoader::Loaded> &loaded) {
                    if (photo != m_photo)
                        return;
                    m_isDecoding = false;
                    m_hasFailed = !loaded;
                    if (loaded)
                        m_loaded = *loaded;
                    else
                        qCWarning(lcSession).noquote() << loaded.failure().sentence();
                    emit changed();
                });
}

void FullPhoto::giveBack()
{
    if (std::exchange(m_loaded, std::nullopt))
        emit changed();
}

void FullPhoto::giveBackIfShort()
{
    if (m_loaded && availableMemory() < m_loaded->photo->bitmap().sizeInBytes())
        giveBack();
}

} // namespace hazelmark
