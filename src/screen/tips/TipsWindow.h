#pragma once

#include <QWidget>

class QCheckBox;
class QLabel;
class QPushButton;

namespace hazelmark {

class ApplicationDelegate;
class DotPageControl;
class PageSlider;
class ScaleToFillImageView;

/// The paged help window over the main window: four pages with a picture and a few words each. There is one, which is
/// shown and hidden; it blocks nothing, stays above the main window, moves and goes with it, and Esc closes it.
class TipsWindow : public QWidget
{
    Q_OBJECT

public:
    TipsWindow(ApplicationDelegate &application, QWidget *mainWindow);

    /// Shows the window, or brings it to the front. It is placed by the main window's size alone, wherever that stands:
    /// over its middle when the main window stands in the main screen's top left corner.
    void addDemoWindow(QSize mainWindowSize);
    void setLocalizedStrings();

    PageSlider *pageController() const { return m_pageController; }
    DotPageControl *pageButtons() const { return m_pageButtons; }
    QCheckBox *btnCheckShowTipsAgain() const { return m_btnCheckShowTipsAgain; }
    QPushButton *btnBackPage() const { return m_btnBackPage; }
    QPushButton *btnNextpage() const { return m_btnNextpage; }

    void pageButtonsAction(int selectedColumn);
    void btnBackPageTapped();
    void btnNextpageTapped(); ///< on the last page "Done": closes the window
    /// Off is remembered in the user's defaults; on changes nothing there.
    void btnLaunchAppTapped();

protected:
    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    QString lookup(const char *key) const;
    QWidget *makePage(int page);
    bool isLastPage() const;
    int widthOfNext(const char *key);
    void showPage(int page);

    ApplicationDelegate &m_application;
    QLabel *m_lblDemoMsg;
    PageSlider *m_pageController;
    DotPageControl *m_pageButtons;
    QCheckBox *m_btnCheckShowTipsAgain;
    QPushButton *m_btnBackPage;
    QPushButton *m_btnNextpage;
    QList<QLabel *> m_titles;
    QList<QLabel *> m_texts;
    QList<ScaleToFillImageView *> m_pictures;
};

} // namespace hazelmark
