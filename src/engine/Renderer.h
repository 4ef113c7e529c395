#pragma once

#include "FilterImage.h"
#include "ParallelFor.h"

#include <QImage>

#include <functional>

namespace hazelmark {

/// Draws filter images in software. The only place that knows tiles and threads: it asks the last node of a graph for
/// tiles, all threads at work, and holds a few tiles besides input and output.
///
/// Stateless; one may be used by many threads at once.
class Renderer
{
public:
    /// Called with the fraction of tiles done, 0 < f <= 1, from any thread of the render, never by two at once.
    using Progress = std::function<void(double)>;

    explicit Renderer(int threads = defaultThreadCount(), Progress progress = {});

    /// The pixels of the image's extent, top row first: RGBX8888 or RGBA8888 for 8-bit pictures, RGBX64 or RGBA64 for
    /// 16-bit ones. A null image for the empty picture. Throws std::bad_alloc when memory runs out.
    QImage draw(const FilterImage &image) const;

private:
    int m_threads;
    Progress m_progress;
};

} // namespace hazelmark
