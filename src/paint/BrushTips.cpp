#include "BrushTips.h"

#include "Bundle.h"

#include <QFile>

#include <cmath>
#include <sys/stat.h>

namespace hazelmark {

namespace {

constexpr int kHardestLevel = 100;

QString tipName(int level)
{
    return u"Brush_hardness_%1"_qs.arg(level);
}

/// What a file cannot change in without this changing too; empty when there is no file.
QByteArray stateOfFile(const QString &path)
{
    struct stat found
    {
    };
    if (path.isEmpty() || ::stat(QFile::encodeName(path).constData(), &found) != 0)
        return {};
    const qint64 state[] = {qint64(found.st_dev),         qint64(found.st_ino),          qint64(found.st_size),
                            qint64(found.st_mtim.tv_sec), qint64(found.st_mtim.tv_nsec), qint64(found.st_ctim.tv_sec),
                            qint64(found.st_ctim.tv_nsec)};
    return {reinterpret_cast<const char *>(state), sizeof(state)};
}

} // namespace

BrushTips &BrushTips::shared()
{
    static BrushTips tips;
    return tips;
}

QImage BrushTips::tipForHardness(float hardness)
{
    std::lock_guard lock(m_mutex);
    const float level = std::round(hardness * kHardestLevel);
    // A number that no name is made of (a not-a-number too) has no tip of its own.
    const bool nameable = std::abs(level) < 1e6F;
    const QImage tip = nameable ? tipNamed(tipName(int(level))) : QImage();
    return tip.isNull() ? tipNamed(tipName(kHardestLevel)) : tip;
}

QImage BrushTips::tipNamed(const QString &name)
{
    const QString path = Bundle::mainBundle().subBundle(u"Brushes"_qs).pathForResource(name, u"png"_qs);
    const QByteArray state = stateOfFile(path);
    if (state.isEmpty())
        return {};
    if (const Kept *kept = m_kept.object(path); kept && kept->fileState == state)
        return kept->tip;
    const QImage tip(path, "png");
    m_kept.insert(path, new Kept{state, tip});
    return tip;
}

} // namespace hazelmark
