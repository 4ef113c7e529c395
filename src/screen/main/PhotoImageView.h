#pragma once

#include <QImage>
#include <QRectF>
#include <QWidget>

class QPainter;

namespace hazelmark {

/// Shows the photo, or a preview of it, on the neutral surround.
///
/// The picture stands in a frame of the view's own (points). A picture that has just the frame's pixels is shown
/// pixel for pixel; while another size is on its way, what there is is stretched to the frame.
class PhotoImageView : public QWidget
{
    Q_OBJECT

public:
    explicit PhotoImageView(QWidget *parent = nullptr);

    /// `shown`: in the screen's colours; null for none.
    void setImage(const QImage &shown);
    const QImage &image() const { return m_image; }

    void setPictureFrame(const QRectF &frame);
    QRectF pictureFrame() const { return m_frame; }

    /// A sharp picture of a part of what is shown: `part` of the whole when that measures `size` pixels. It covers the
    /// picture where it lies. `photo`: the most that the whole can measure; from there on it is enlarged pixel by
    /// pixel.
    struct Detail
    {
        QImage shown; ///< null for none
        QSize size;
        QRect part;
        QSize photo;
    };
    void setDetail(const Detail &detail);
    const Detail &detail() const { return m_detail; }

protected:
    void paintEvent(QPaintEvent *event) override;

private:
    QRectF target() const;
    QRectF detailTarget() const;
    void paintDetail(QPainter &painter, const QRectF &rect) const;
    QImage m_image;
    QRectF m_frame;
    Detail m_detail;
};

} // namespace hazelmark
