#pragma once

#include <QWidget>

namespace hazelmark {

/// One line of text that loses its middle where there is no room for it; the tool tip then has the whole of it.
class ElidedLabel : public QWidget
{
    Q_OBJECT

public:
    explicit ElidedLabel(const QColor &color, Qt::Alignment alignment = Qt::AlignLeft, QWidget *parent = nullptr);

    QString text() const { return m_text; }
    void setText(const QString &text);

    QSize sizeHint() const override;
    QSize minimumSizeHint() const override;

protected:
    void paintEvent(QPaintEvent *event) override;
    void resizeEvent(QResizeEvent *event) override;

private:
    QString elided() const;

    QColor m_color;
    Qt::Alignment m_alignment;
    QString m_text;
};

} // namespace hazelmark
