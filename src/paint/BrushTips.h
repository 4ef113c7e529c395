#pragma once

#include <QCache>
#include <QImage>
#include <QString>

#include <mutex>

namespace hazelmark {

/// The brush tip images: "Brush_hardness_0.png" to "Brush_hardness_100.png" in the bundle "Brushes" of the program's
/// resources. White squares of any size whose alpha is the coverage of a round tip.
///
/// Every lookup gives what the file holds at that moment. Decoded tips are kept, but only for as long as their file
/// is the same one and unchanged. Any thread.
class BrushTips
{
public:
    static BrushTips &shared();

    /// The tip for a hardness of 0..1 in steps of a hundredth; the hardest one when there is no readable image for
    /// it; a null image when that is missing too.
    QImage tipForHardness(float hardness);

private:
    struct Kept
    {
        QByteArray fileState;
        QImage tip;
    };

    QImage tipNamed(const QString &name);

    /// A few hundred kilobytes a tip; a painting seldom has more than a few hardnesses.
    static constexpr int kKeptTips = 16;
    std::mutex m_mutex;
    QCache<QString, Kept> m_kept{kKeptTips};
};

} // namespace hazelmark
