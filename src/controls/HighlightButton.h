#pragma once

#include "HoverTracker.h"

#include <QAbstractButton>
#include <QPixmap>
#include <QTimer>

namespace hazelmark {

/// A button that changes its image and the weight of its title while the pointer is over it. The tag selects a style:
/// 101 shows an image, 107 is a flat coloured button, any other follows the rules for the title only.
class HighlightButton : public QAbstractButton
{
    Q_OBJECT

public:
    static constexpr int kImageTag = 101;
    static constexpr int kFlatTag = 107;

    /// `image` and `alternateImage` are resource names; they become the normal and the selected state's image.
    explicit HighlightButton(int tag, const QString &image = {}, const QString &alternateImage = {},
                             QWidget *parent = nullptr);

    int tag() const { return m_tag; }
    QString imgNormalState() const { return m_imgNormalState; }
    void setImgNormalState(const QString &name);
    QString imgSelectedState() const { return m_imgSelectedState; }
    void setImgSelectedState(const QString &name);
    /// The image on show.
    QString image() const { return m_image; }
    bool isHighlighted() const { return m_highlighted; }
    /// The flat style's ground.
    QColor backgroundColor() const { return m_background; }

    void setButtonDefault();
    void setButtonHighlighted();

    QSize sizeHint() const override;

protected:
    bool event(QEvent *event) override;
    void mousePressEvent(QMouseEvent *event) override;
    void keyPressEvent(QKeyEvent *event) override;
    void paintEvent(QPaintEvent *event) override;

private:
    void setHighlighted(bool highlighted);
    void highlight();
    QFont titleFont() const;

    int m_tag;
    QString m_imgNormalState;
    QString m_imgSelectedState;
    QString m_image;
    bool m_highlighted = false;
    QColor m_background = Qt::transparent;
    QTimer m_endOfPress;
    HoverTracker m_hover;
};

} // namespace hazelmark
