#include "CanvasSight.h"

#include "MainScreenView.h"
#include "PaintView.h"
#include "PhotoImageView.h"
#include "SummaryBar.h"

#include <QPushButton>

#include <chrono>

namespace hazelmark {

namespace {

constexpr double kCanvasOpacity = 0.6;
constexpr std::chrono::milliseconds kClick{400};

} // namespace

CanvasSight::CanvasSight(MainScreenView &view)
    : QObject(&view)
    , m_view(view)
{
    QPushButton *button = view.vwBottom->btnCompare();
    connect(button, &QPushButton::pressed, this, [this] {
        m_wasComparing = m_isComparing;
        m_pressed.start();
        setComparing(true);
    });
    connect(button, &QPushButton::released, this, [this] {
        // After a short click it stays until the next one; a press that was held has shown enough.
        m_isComparing = !m_pressed.hasExpired(kClick.count()) && !m_wasComparing;
        apply();
    });
}

void CanvasSight::setPaintingShown(bool shown)
{
    m_isPaintingShown = shown;
    apply();
}

void CanvasSight::setComparing(bool comparing)
{
    if (comparing == m_isComparing)
        return;
    m_isComparing = comparing;
    apply();
}

void CanvasSight::apply()
{
    m_view.paintView->setOpacity(m_isPaintingShown && !m_isComparing ? kCanvasOpacity : 0);
    m_view.imgvwAfterBokesh->setVisible(!m_isComparing); // the photo as it was lies below it
    m_view.vwBottom->btnCompare()->setChecked(m_isComparing);
}

} // namespace hazelmark
