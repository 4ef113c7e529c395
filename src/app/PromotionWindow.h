#pragma once

#include <QTimer>
#include <QVariantList>
#include <QWidget>

#include <functional>

class QCheckBox;
class QLabel;
class QPushButton;

namespace hazelmark {

class DotPageControl;
class Localisation;

/// The last window before the process ends: shows, one after the other, programs that go well with this one and are
/// not installed. What its closing means is the application delegate's affair.
class PromotionWindow : public QWidget
{
    Q_OBJECT

public:
    using InstalledTest = std::function<bool(const QString &name)>;

    static constexpr std::chrono::milliseconds kPageTime{4000};

    explicit PromotionWindow(Localisation &texts, InstalledTest isInstalled = isApplicationInstalledWithName);

    /// Builds the list from the configuration, without what is installed, and shows its first entry.
    void promotionWindowSetup();
    /// Dictionaries with "appName", "imageName", "url" and "Desc".
    const QVariantList &arrOurApps() const { return m_arrOurApps; }
    /// Looks where other systems put a program, and only there.
    static bool isApplicationInstalledWithName(const QString &name);

    /// Rebuilds the list, brings the window to the front and begins to turn the pages. `kPageTime` a page.
    void present();
    int selectedRecommendedAppIndex() const { return m_selectedRecommendedAppIndex; }
    bool isRotating() const { return m_timerOfApps.isActive(); }
    DotPageControl *control() const { return m_control; }
    QCheckBox *btnCheckDontShow() const { return m_btnCheckDontShow; }
    QPushButton *btnQuitAppPromotion() const { return m_btnQuitAppPromotion; }
    QPushButton *btnOpenSuggestedApp() const { return m_btnOpenSuggestedApp; }

    void setLocalizedStrings();
    void changeAppDetail();
    void pageControlDidSelectPageAtIndex(int index);
    void btnOpenSuggestedAppTapped();

signals:
    void quitTapped();

protected:
    void hideEvent(QHideEvent *event) override;
    void keyPressEvent(QKeyEvent *event) override;

private:
    void layOut();
    void setupPageControl();
    void showEntry(int index);
    void pressFocusedButton();

    Localisation &m_texts;
    InstalledTest m_isInstalled;
    QVariantList m_arrOurApps;
    int m_selectedRecommendedAppIndex = 0;
    QTimer m_timerOfApps;
    DotPageControl *m_control;
    QLabel *m_lblRecommendedTitle;
    QLabel *m_imgViewAppLogo;
    QLabel *m_lblAppName;
    QLabel *m_lblAppDesc;
    QCheckBox *m_btnCheckDontShow;
    QPushButton *m_btnOpenSuggestedApp;
    QPushButton *m_btnQuitAppPromotion;
};

} // namespace hazelmark
