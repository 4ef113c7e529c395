#include "PageSlider.h"

#include <QStyle>

#include <cmath>

namespace hazelmark {

PageSlider::PageSlider(QWidget *parent)
    : QWidget(parent)
{
    m_slide.setStartValue(0.0);
    m_slide.setEndValue(1.0);
    m_slide.setEasingCurve(QEasingCurve::InOutCubic);
    connect(&m_slide, &QVariantAnimation::valueChanged, this,
            [this](const QVariant &progress) { place(progress.toDouble()); });
    connect(&m_slide, &QVariantAnimation::finished, this, &PageSlider::completeTransition);
}

void PageSlider::addPage(QWidget *page)
{
    page->setParent(this);
    m_pages.push_back(page);
    page->setVisible(count() - 1 == m_selectedIndex);
    updateGeometry();
}

void PageSlider::setSelectedIndex(int index)
{
    if (index < 0 || index >= count() || index == m_selectedIndex)
        return;
    m_previousIndex = m_selectedIndex;
    m_selectedIndex = index;
    completeTransition();
    emit selectedIndexChanged(index);
}

void PageSlider::navigateForward()
{
    slideTo(m_selectedIndex + 1);
}

void PageSlider::navigateBack()
{
    slideTo(m_selectedIndex - 1);
}

void PageSlider::slideTo(int index)
{
    if (index < 0 || index >= count())
        return;
    completeTransition();
    m_previousIndex = m_selectedIndex;
    m_selectedIndex = index;
    // 0 where the desktop asks for no animations.
    m_slide.setDuration(style()->styleHint(QStyle::SH_Widget_Animation_Duration, nullptr, this));
    place(0);
    m_pages[static_cast<size_t>(m_previousIndex)]->show();
    m_pages[static_cast<size_t>(m_selectedIndex)]->show();
    m_slide.start();
    emit selectedIndexChanged(index);
}

void PageSlider::completeTransition()
{
    m_slide.stop();
    m_previousIndex = m_selectedIndex;
    for (int i = 0; i < count(); ++i)
        m_pages[static_cast<size_t>(i)]->setVisible(i == m_selectedIndex);
    place(1);
}

void PageSlider::place(double progress)
{
    if (m_pages.empty())
        return;
    const int direction = m_selectedIndex >= m_previousIndex ? 1 : -1;
    const int way = static_cast<int>(std::lround(progress * width()));
    m_pages[static_cast<size_t>(m_previousIndex)]->setGeometry(-direction * way, 0, width(), height());
    m_pages[static_cast<size_t>(m_selectedIndex)]->setGeometry(direction * (width() - way), 0, width(), height());
}

QSize PageSlider::sizeHint() const
{
    QSize size;
    for (const QWidget *page : m_pages)
        size = size.expandedTo(page->sizeHint());
    return size;
}

void PageSlider::resizeEvent(QResizeEvent *)
{
    completeTransition();
}

} // namespace hazelmark
