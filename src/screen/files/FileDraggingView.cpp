#include "FileDraggingView.h"

#include "Theme.h"

#include <QDragEnterEvent>
#include <QMimeData>
#include <QPainter>
#include <QUrl>

#include <algorithm>

namespace hazelmark {

namespace {

constexpr qreal kHighlightWidth = 6.0;

/// The paths of the dragged files, in order. A file that is not on this machine has an empty one.
QStringList draggedPaths(const QMimeData &data)
{
    QStringList paths;
    const QList<QUrl> urls = data.urls();
    for (const QUrl &url : urls)
        paths << (url.isLocalFile() ? url.toLocalFile() : QString());
    return paths;
}

} // namespace

FileDraggingView::FileDraggingView(ImageTest isImage, QWidget *parent)
    : QWidget(parent)
    , m_isImage(std::move(isImage))
{
    setAcceptDrops(true);
}

void FileDraggingView::setHighlighted(bool highlighted)
{
    m_isHighlighted = highlighted;
    update();
}

bool FileDraggingView::isImage(const QString &path) const
{
    return !path.isEmpty() && m_isImage(path);
}

void FileDraggingView::dragEnterEvent(QDragEnterEvent *event)
{
    // What is no list of files is not refused here; dropping it does nothing.
    if (event->mimeData()->hasUrls()) {
        const QStringList paths = draggedPaths(*event->mimeData());
        const auto other =
            std::find_if_not(paths.begin(), paths.end(), [this](const QString &path) { return isImage(path); });
        if (other != paths.end()) {
            setHighlighted(false);
            event->ignore();
            emit refused(*other);
            return;
        }
    }
    event->setDropAction(Qt::CopyAction);
    event->accept();
}

void FileDraggingView::dragMoveEvent(QDragMoveEvent *event)
{
    event->setDropAction(Qt::CopyAction); // each move begins with the action that the source proposes
    event->accept();
}

void FileDraggingView::dragLeaveEvent(QDragLeaveEvent *)
{
    setHighlighted(false);
}

void FileDraggingView::dropEvent(QDropEvent *event)
{
    if (event->mimeData()->hasUrls()) {
        const QStringList paths = draggedPaths(*event->mimeData());
        for (const QString &path : paths) {
            if (isImage(path))
                emit photoDraggedWithPath(path);
            else
                emit refused(path);
        }
    } else {
        emit refused(QString());
    }
    setHighlighted(false);
    event->setDropAction(Qt::CopyAction);
    event->accept();
}

void FileDraggingView::paintEvent(QPaintEvent *event)
{
    QWidget::paintEvent(event);
    if (!m_isHighlighted)
        return;
    QPainter painter(this);
    painter.setPen(QPen(theme::kFocus, kHighlightWidth));
    painter.drawRect(geometry()); // the frame as such, though these are the view's own coordinates
}

} // namespace hazelmark
