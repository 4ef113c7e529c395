#pragma once

#include "ViewRenderer.h"
#include "WorkQueue.h"

#include <QObject>
#include <QTimer>

#include <memory>
#include <mutex>
#include <optional>

namespace hazelmark {

/// Draws pictures of what is in sight of the photo, off the main thread and beside the previews. Only the newest wish
/// is drawn: one that is replaced before its turn comes is left out. While wishes follow each other they are drawn in
/// haste; of the last one another picture follows where something was left out. Main thread only.
class ViewRunner : public QObject
{
    Q_OBJECT

public:
    explicit ViewRunner(QObject *parent = nullptr);

    void request(const ViewJob &job);
    /// Nothing that was asked for is wanted any more; what is kept from picture to picture is let go of.
    void forget();
    bool isBusy() const { return m_queue.pending() > 0 || m_settling.isActive(); }

signals:
    void drawn(const hazelmark::ViewPicture &picture);
    /// All that was asked for is drawn, or given up: isBusy() no more.
    void rested();

private:
    struct Shared
    {
        std::mutex mutex;
        std::optional<ViewJob> wish;
        quint64 number = 0; ///< of the newest wish
        quint64 era = 0;    ///< counts forget()
        quint64 rendererEra = 0;
        ViewRenderer renderer; ///< the worker's
    };
    struct Drawn
    {
        quint64 era = 0; ///< of the wish
        quint64 number = 0;
        ViewPicture picture;
        std::optional<ViewJob> rest; ///< to be drawn without haste
    };
    static Drawn drawWish(Shared &shared);
    void wish(const ViewJob &job);
    void runWish();
    void stopSettling();

    std::optional<ViewJob> m_rest;
    QTimer m_settling; ///< until nothing newer has been wished for a while, then `m_rest` is drawn
    std::shared_ptr<Shared> m_shared = std::make_shared<Shared>();
    WorkQueue m_queue{1};
};

} // namespace hazelmark
