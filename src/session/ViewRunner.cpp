#include "ViewRunner.h"

#include "Log.h"

#include <new>
#include <utility>

namespace hazelmark {

ViewRunner::ViewRunner(QObject *parent)
    : QObject(parent)
{
}

ViewRunner::Drawn ViewRunner::drawWish(Shared &shared)
{
    std::optional<ViewJob> job;
    Drawn drawn;
    {
        std::lock_guard lock(shared.mutex);
        job = std::exchange(shared.wish, std::nullopt);
        drawn.era = shared.era;
        if (std::exchange(shared.rendererEra, shared.era) != shared.era)
            shared.renderer = {};
    }
    if (!job)
        return drawn;
    try {
        drawn.picture = shared.renderer.render(*job);
    } catch (const std::bad_alloc &) {
        qCWarning(lcSession, "no memory to draw what is in sight");
    }
    return drawn;
}

void ViewRunner::runWish()
{
    m_queue.run([shared = m_shared] { return drawWish(*shared); },
                [this](const Drawn &drawn) {
                    bool isWanted = false;
                    {
                        std::lock_guard lock(m_shared->mutex);
                        isWanted = drawn.era == m_shared->era;
                    }
                    if (isWanted && !drawn.picture.shown.isNull())
                        emit this->drawn(drawn.picture);
                    if (!isBusy())
                        emit rested();
                });
}

void ViewRunner::request(const ViewJob &job)
{
    bool replaces = false;
    {
        std::lock_guard lock(m_shared->mutex);
        replaces = m_shared->wish.has_value();
        m_shared->wish = job;
    }
    if (!replaces) // else its turn is this one's
        runWish();
}

void ViewRunner::forget()
{
    {
        std::lock_guard lock(m_shared->mutex);
        m_shared->wish.reset();
        ++m_shared->era;
    }
    runWish();
}

} // namespace hazelmark
