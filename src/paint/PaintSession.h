#pragma once

#include "PaintStep.h"

#include <QVariantList>

#include <memory>

namespace hazelmark {

/// The steps painted on a canvas.
///
/// The list is an object that others may hold too, and it is never copied: whoever got it from steps(), or handed it
/// over with setSteps(), sees every later addStep() and clear().
class PaintSession
{
public:
    PaintSession() = default;
    /// From records of PaintStep::data().
    explicit PaintSession(const QVariantList &dataArray);

    void addStep(const PaintStep &step);
    void addSteps(const PaintStepList &steps);
    /// Takes the steps from number `first` on out of the list.
    PaintStepList takeSteps(std::size_t first);
    /// Empties the list object that is held now.
    void clear();

    const std::shared_ptr<PaintStepList> &steps() const { return m_steps; }
    /// Replaces the list object; none stands for a new empty one.
    void setSteps(std::shared_ptr<PaintStepList> steps);

    /// The record form of every step, in list order.
    QVariantList dataArray() const;
    /// Clears the list, then appends a step for each record.
    void setDataArray(const QVariantList &dataArray);

private:
    std::shared_ptr<PaintStepList> m_steps = std::make_shared<PaintStepList>();
};

} // namespace hazelmark
