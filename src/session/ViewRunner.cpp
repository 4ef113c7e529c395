#include "ViewRunner.h"

#include "Log.h"

#include <chrono>
#include <new>
#include <utility>

namespace hazelmark {

namespace {

/// A hand that goes on asks again before that.
constexpr std::chrono::milliseconds kQuiet{50};

} // namespace

ViewRunner::ViewRunner(QObject *parent)
    : QObject(parent)
{
    m_settling.setSingleShot(true);
    m_settling.setInterval(kQuiet);
    connect(&m_settling, &QTimer::timeout, this, [this] {
        if (const std::optional<ViewJob> rest = std::exchange(m_rest, std::nullopt))
            wish(*rest);
    });
}

ViewRunner::Drawn ViewRunner::drawWish(Shared &shared)
{
    std::optional<ViewJob> job;
    Drawn drawn;
    {
        std::lock_guard lock(shared.mutex);
        job = std::exchange(shared.wish, std::nullopt);
        drawn.era = shared.era;
        drawn.number = shared.number;
        if (std::exchange(shared.rendererEra, shared.era) != shared.era)
            shared.renderer = {};
    }
    if (!job)
        return drawn;
    try {
        drawn.picture = shared.renderer.render(*job);
        if (drawn.picture.wasInHaste) {
            job->isInHaste = false;
            drawn.rest = std::move(job);
        }
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
                    bool isNewest = false;
                    {
                        std::lock_guard lock(m_shared->mutex);
                        isWanted = drawn.era == m_shared->era && !drawn.picture.shown.isNull();
                        isNewest = drawn.number == m_shared->number;
                    }
                    if (isWanted && isNewest && drawn.rest) {
                        m_rest = drawn.rest;
                        m_settling.start();
                    }
                    if (isWanted)
                        emit this->drawn(drawn.picture);
                    if (!isBusy())
                        emit rested();
                });
}

void ViewRunner::request(const ViewJob &job)
{
    stopSettling();
    ViewJob hasty = job;
    hasty.isInHaste = true;
    wish(hasty);
}

void ViewRunner::stopSettling()
{
    m_settling.stop();
    m_rest.reset();
}

void ViewRunner::wish(const ViewJob &job)
{
    bool replaces = false;
    {
        std::lock_guard lock(m_shared->mutex);
        replaces = m_shared->wish.has_value();
        m_shared->wish = job;
        ++m_shared->number;
    }
    if (!replaces) // else its turn is this one's
        runWish();
}

void ViewRunner::forget()
{
    stopSettling();
    {
        std::lock_guard lock(m_shared->mutex);
        m_shared->wish.reset();
        ++m_shared->era;
    }
    runWish();
}

} // namespace hazelmark
