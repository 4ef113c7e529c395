#pragma once

#include <QVariantAnimation>
#include <QWidget>

#include <vector>

namespace hazelmark {

/// Shows one of several pages. Setting the index shows a page at once; navigating slides to its neighbour.
class PageSlider : public QWidget
{
    Q_OBJECT

public:
    explicit PageSlider(QWidget *parent = nullptr);

    void addPage(QWidget *page); ///< the slider owns it
    int count() const { return static_cast<int>(m_pages.size()); }

    int selectedIndex() const { return m_selectedIndex; }
    void setSelectedIndex(int index);
    void navigateForward();
    void navigateBack();
    /// Brings a slide under way to its end.
    void completeTransition();

    QSize sizeHint() const override;

signals:
    void selectedIndexChanged(int index);

protected:
    void resizeEvent(QResizeEvent *event) override;

private:
    void slideTo(int index);
    void place(double progress);

    std::vector<QWidget *> m_pages;
    int m_selectedIndex = 0;
    int m_previousIndex = 0;
    QVariantAnimation m_slide;
};

} // namespace hazelmark
