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
    records.reserve(qsizetype(m_steps->size()));
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
