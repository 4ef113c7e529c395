#include "SheetQueue.h"

#include <QDialog>
#include <QEvent>
#include <QWidget>

#include <algorithm>

namespace hazelmark {

SheetQueue::SheetQueue(QWidget &window)
    : QObject(&window)
    , m_window(window)
{
    m_window.installEventFilter(this);
}

SheetQueue &SheetQueue::forWindow(QWidget &window)
{
    auto *queue = window.findChild<SheetQueue *>(QString(), Qt::FindDirectChildrenOnly);
    return queue ? *queue : *new SheetQueue(window);
}

int SheetQueue::waiting() const
{
    return static_cast<int>(
        std::count_if(m_waiting.begin(), m_waiting.end(), [](const auto &sheet) { return !sheet.isNull(); }));
}

void SheetQueue::present(QDialog *sheet)
{
    sheet->setParent(&m_window, sheet->windowFlags() | Qt::Dialog);
    sheet->setWindowModality(Qt::WindowModal);
    m_waiting.emplace_back(sheet);
    showNext();
}

void SheetQueue::showNext()
{
    while (!m_current && m_holds == 0 && m_window.isVisible() && !m_waiting.empty()) {
        QDialog *sheet = m_waiting.front();
        m_waiting.pop_front();
        if (!sheet)
            continue;
        m_current = sheet;
        connect(sheet, &QDialog::finished, sheet, &QObject::deleteLater);
        // Later, so that the owner's handlers of `finished` run before the next sheet is up.
        connect(sheet, &QObject::destroyed, this, &SheetQueue::showNext, Qt::QueuedConnection);
        sheet->open();
    }
}

bool SheetQueue::eventFilter(QObject *watched, QEvent *event)
{
    if (watched == &m_window && event->type() == QEvent::Show)
        QMetaObject::invokeMethod(this, &SheetQueue::showNext, Qt::QueuedConnection);
    if (watched == &m_window && event->type() == QEvent::WindowActivate && m_current && m_current->isVisible())
        QMetaObject::invokeMethod(m_current, &QWidget::activateWindow, Qt::QueuedConnection);
    return QObject::eventFilter(watched, event);
}

SheetQueue::Hold::Hold(SheetQueue &queue)
    : m_queue(&queue)
{
    ++queue.m_holds;
}

SheetQueue::Hold::~Hold()
{
    if (m_queue && --m_queue->m_holds == 0)
        QMetaObject::invokeMethod(m_queue, &SheetQueue::showNext, Qt::QueuedConnection);
}

} // namespace hazelmark
