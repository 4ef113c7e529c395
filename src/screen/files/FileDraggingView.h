#pragma once

#include <QWidget>

#include <functional>

class QMimeData;

namespace hazelmark {

/// The view over the photo area that takes photos dragged in from a file manager: lists of local files. A drag that
/// holds anything but photos is refused as a whole when it enters; of one that is dropped all the same, the photos
/// count. A drop is taken as a copy, since after a move the file manager would delete the original.
class FileDraggingView : public QWidget
{
    Q_OBJECT

public:
    /// Whether the file at a path is a photo that can be opened.
    using ImageTest = std::function<bool(const QString &path)>;

    explicit FileDraggingView(ImageTest isImage, QWidget *parent = nullptr);

    /// Nothing switches the highlight on.
    bool isHighlighted() const { return m_isHighlighted; }
    void setHighlighted(bool highlighted);

signals:
    /// Once for every photo of a drop, in the order of the drag.
    void photoDraggedWithPath(const QString &path);
    /// The drag, or a part of the drop, is not taken because of this: the path of what is no photo, or an empty one
    /// where it is no file of this machine.
    void refused(const QString &path);

protected:
    void dragEnterEvent(QDragEnterEvent *event) override;
    void dragMoveEvent(QDragMoveEvent *event) override;
    void dragLeaveEvent(QDragLeaveEvent *event) override;
    void dropEvent(QDropEvent *event) override;
    void paintEvent(QPaintEvent *event) override;

private:
    bool isImage(const QString &path) const;

    ImageTest m_isImage;
    bool m_isHighlighted = false;
};

} // namespace hazelmark
