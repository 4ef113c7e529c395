#include "PaintSession.h"

#include <utility>

namespace hazelmark {

PaintSession::PaintSession(const QVariantList &dataArray)
{
    setDataArray(dataArray);
}

void PaintSession::addStep(const PaintStep &step)
{
    m_steps->push_back(step);
}

void PaintSession::addSteps(const PaintStepList &steps)
{
    m_steps->insert(m_steps->end(), steps.begin(), steps.end());
}

PaintStepList PaintSession::takeSteps(std::size_t first)
{
    const auto begin = m_steps->begin() + std::ptrdiff_t(first);
    PaintStepList taken(begin, m_steps->end());
    m_steps->erase(begin, m_steps->end());
    return taken;
}

void PaintSession::clear()
{
    m_steps->clear();
}

void PaintSession::setSteps(std::shared_ptr<PaintStepList> steps)
{
    m_steps = steps ? std::move(steps) : std::make_shared<PaintStepList>();
}

QVariantList PaintSession::dataArray() const
{
    QVariantList records;
    for (const PaintStep &step : *m_steps)
        records.append(QVariant(step.data()));
    return records;
}

void PaintSession::setDataArray(const QVariantList &dataArray)
{
    clear();
    for (const QVariant &record : dataArray)
        addStep(PaintStep(record.toList()));
}

} // namespace hazelmark
