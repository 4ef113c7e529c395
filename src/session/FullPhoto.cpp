#include "FullPhoto.h"

#include "AvailableMemory.h"
#include "DecodeScope.h"
#include "Log.h"

#include <algorithm>
#include <chrono>
#include <utility>

namespace hazelmark {

namespace {
constexpr std::chrono::milliseconds kPollInterval{100};
}

FullPhoto::FullPhoto(Load load, QObject *parent)
    : QObject(parent)
    , m_load(std::move(load))
{
    m_poll.setInterval(kPollInterval);
    connect(&m_poll, &QTimer::timeout, this, [this] {
        if (*m_done > 0)
            emit progressed(*m_done);
    });
}

FullPhoto::~FullPhoto()
{
    ++*m_photos;
}

void FullPhoto::setPhoto(const PhotoPtr &photo)
{
    m_photo = photo;
    ++*m_photos;
    m_poll.stop();
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
    m_done = std::make_shared<std::atomic<double>>(0);
    m_poll.start();
    emit changed();
    m_queue.run(
        [load = m_load, photo = m_photo, done = m_done, photos = m_photos, number = int(*m_photos)] {
            const DecodeScope scope([&] { return *photos != number; },
                                    [&](double share) { *done = std::clamp(share, double(*done), 1.0); });
            return load(*photo);
        },
        [this, number = int(*m_photos)](const Outcome<ImageLoader::Loaded> &loaded) {
            if (number != *m_photos)
                return;
            m_poll.stop();
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
