#include "AccessibleValue.h"

#include "BarProgressIndicator.h"
#include "FloatSlider.h"

#include <QAccessible>
#include <QAccessibleWidget>

#include <type_traits>

namespace hazelmark {

namespace {

/// For any control with `value()`, `minValue()` and `maxValue()`. Sliders can be set too.
template <typename Control>
class AccessibleValue : public QAccessibleWidget, public QAccessibleValueInterface
{
    static constexpr bool kIsSlider = std::is_same_v<Control, FloatSlider>;

public:
    explicit AccessibleValue(Control &control)
        : QAccessibleWidget(&control, kIsSlider ? QAccessible::Slider : QAccessible::ProgressBar)
        , m_control(control)
    {
    }
    void *interface_cast(QAccessible::InterfaceType type) override
    {
        return type == QAccessible::ValueInterface ? static_cast<QAccessibleValueInterface *>(this)
                                                   : QAccessibleWidget::interface_cast(type);
    }
    QVariant currentValue() const override { return m_control.value(); }
    QVariant minimumValue() const override { return m_control.minValue(); }
    QVariant maximumValue() const override { return m_control.maxValue(); }
    QVariant minimumStepSize() const override
    {
        if constexpr (kIsSlider)
            return m_control.singleStep();
        return 0;
    }
    void setCurrentValue(const QVariant &value) override
    {
        if constexpr (kIsSlider)
            m_control.setValueByUser(value.toDouble());
    }

private:
    Control &m_control;
};

QAccessibleInterface *makeInterface(const QString &, QObject *object)
{
    if (auto *slider = qobject_cast<FloatSlider *>(object))
        return new AccessibleValue(*slider);
    if (auto *bar = qobject_cast<BarProgressIndicator *>(object))
        return new AccessibleValue(*bar);
    return nullptr;
}

} // namespace

void installAccessibleValues()
{
    QAccessible::installFactory(makeInterface); // does nothing the second time
}

void announceValue(QWidget &control, double value)
{
    if (!QAccessible::isActive())
        return;
    QAccessibleValueChangeEvent event(&control, value);
    QAccessible::updateAccessibility(&event);
}

} // namespace hazelmark
