#pragma once

#include <QRectF>
#include <QWidget>

class QLabel;
class QPushButton;

namespace hazelmark {

class ApplicationDelegate;
class BarProgressIndicator;
class DrawTrackingView;
class FileDraggingView;
class IMGButton;
class KeyboardCursor;
class OverviewView;
class PaintView;
class PhotoImageView;
class SettingsPanel;
class SummaryBar;

/// The layout of the one screen: the title strip on top; below it the photo area with the summary bar at its foot, and
/// the settings panel at the right. Without a photo a hint how to open one fills the area.
///
/// It says only where things are; what they do is MainScreenVC's. Distances are in points, on the grid of the theme.
class MainScreenView : public QWidget
{
    Q_OBJECT

public:
    /// Narrower and lower by this than the main container is the preview container.
    static constexpr int kPreviewInsetPoints = 40;
    static constexpr int kProgressHeightPoints = 3;

    explicit MainScreenView(ApplicationDelegate &application, QWidget *parent = nullptr);

    /// Makes `vwSettingOptions`, which nobody sees before a photo is open: the window is there sooner without it.
    void makeSettingsPanel(ApplicationDelegate &application);
    /// Tools and settings, photo, bottom bar, title strip: the order in which Tab goes, once there is a panel.
    void orderTabs(const QList<QWidget *> &windowButtons);

    /// The texts that belong to the screen itself, in the interface language.
    void setLocalizedStrings(ApplicationDelegate &application);

    /// The main container as large as the whole view, with the hint; or left of the panel's place, with the photo.
    void showAddPhotoLayout();
    void showPhotoLayout();
    void setPanelAndBarVisible(bool visible);
    /// Where the photo stands in the preview container (W × H points): `picture` is the fitted rectangle.
    void placePhoto(const QRectF &picture);
    QRectF photoFrame() const;
    /// Shows it so near instead: all of it would cover `whole`, `visible` is in sight. placePhoto() ends it.
    void placeNear(const QRectF &whole, const QRectF &visible);
    /// What is in sight of the photo.
    QRectF visiblePhotoFrame() const { return m_visiblePicture; }

    /// Says that a photo is being opened; an empty text takes the note away.
    void showLoading(const QString &text);
    /// The hint how to open a photo. Its button would hand the focus on when it goes, in the end to the button that
    /// closes the window: it lets it go instead, and has it again when the hint comes back.
    void setPromptVisible(bool visible);
    /// A mark in the title strip for work that is not exported yet.
    void setUnsavedMarkVisible(bool visible);

    /// Of the preview container, in points: as it is, and as it will be once a photo is shown beside the panel.
    QSize previewSize() const;
    QSize previewSizeWithPhoto() const;
    /// Larger than this, in pixels, the photo will be on no screen.
    QSize largestPixelSize() const;

    // Named as the interface has them.
    QWidget *vwTopContainer = nullptr;
    QWidget *vwMainContainer = nullptr;
    QWidget *vwPreviewContainer = nullptr;
    QWidget *vwRightContainer = nullptr;
    QWidget *vwDragging = nullptr; ///< the drop prompt
    QLabel *txtAddPhoto = nullptr; ///< the hint in it
    QPushButton *btnAddPhotoOnPrompt = nullptr;
    FileDraggingView *dropTarget = nullptr;
    SummaryBar *vwBottom = nullptr;
    SettingsPanel *vwSettingOptions = nullptr; ///< null until it is made
    BarProgressIndicator *progressBar = nullptr;
    PhotoImageView *imgvwBeforeBokesh = nullptr;
    PhotoImageView *imgvwAfterBokesh = nullptr;
    DrawTrackingView *drawTrackingView = nullptr;
    PaintView *paintView = nullptr;
    OverviewView *overview = nullptr; ///< of the photo, while a part of it is out of sight
    KeyboardCursor *keyboardCursor = nullptr;
    IMGButton *btnAddPhoto = nullptr;
    IMGButton *btnExport = nullptr;
    IMGButton *btnShareService = nullptr;
    // Titled, and never shown: the prompt that a person sees has texts of its own.
    QPushButton *btnRateUs = nullptr;
    QLabel *lblRateusTitle = nullptr;
    QLabel *lblRateusMsg = nullptr;
    QPushButton *btnYesOnRateus = nullptr;
    QPushButton *btnNoOnRateus = nullptr;

protected:
    void resizeEvent(QResizeEvent *event) override;
    void paintEvent(QPaintEvent *event) override;

private:
    void makeTitleStrip();
    void makePrompt();
    void makePhotoArea();
    void makeRateUs();
    void layOut();
    void layOutTitleStrip();
    void layOutMainContainer();
    QRect mainContainerFrame(bool besidePanel) const;
    void placeLoadingNote();

    QLabel *m_unsavedMark = nullptr;
    QLabel *m_loadingNote = nullptr;
    bool m_besidePanel = false;
    bool m_photoShown = false;
    bool m_promptHadFocus = false;
    QRectF m_picture;
    QRectF m_visiblePicture;
};

} // namespace hazelmark
