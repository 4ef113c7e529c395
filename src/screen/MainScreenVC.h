#pragma once

#include "ExportFlow.h"
#include "MainScreenView.h"
#include "NotificationCenter.h"
#include "PaintControl.h"
#include "PaintStep.h"
#include "PhotoImage.h"
#include "PhotoOpener.h"
#include "PreviewRunner.h"
#include "ViewController.h"

#include <QObject>
#include <QPointer>

#include <memory>
#include <optional>
#include <vector>

namespace hazelmark {

class ApplicationDelegate;
class SaveChangesSheet;
class SettingsPanel;
class TipsWindow;
class TitlebarWindow;

/// The controller of the one screen: the photo workflow, the paint modes, the previews, and the window's own buttons.
/// Its collaborators do the work; this class says when, and holds the state of the working session. Main thread only.
class MainScreenVC : public QObject, public ViewController, public ExportScreen
{
    Q_OBJECT

public:
    /// The tool in hand.
    enum ToolType : qint32 {
        kToolPaint = 4,
        kToolErase = 13,
        kToolNone = 14, ///< no painting: before a photo is open, and for a moment while one is opened
    };

    /// What takes time. Tests put something else in its place.
    struct Work
    {
        PhotoOpener::Steps open = PhotoOpener::Steps::real();
        PreviewRunner::Render render = PreviewRunner::realRender();
        ExportFlow::Work exporting;
    };

    explicit MainScreenVC(ApplicationDelegate &application);
    MainScreenVC(ApplicationDelegate &application, const Work &work);
    ~MainScreenVC() override;

    QWidget *view() override;
    MainScreenView *mainScreenView() const { return m_view; }
    SettingsPanel &panel();

    // Start-up.
    void loadView();
    void initialViewSet();
    /// The rest of the start-up, of which nothing is seen before a photo is open: the settings panel and the brush.
    /// Done after the window's first picture, or when it is first needed.
    void prepareEditing();
    void setLocalizedStrings();

    // Menu commands, as they arrive.
    void btnOpenFileFromMenuTapped();
    void btncloseFileFromMenuTapped();
    void btnSaveFileFromMenuTapped();

    // The photo.
    void btnAddPhotoTapped();
    /// The person chose the file at `path` in the open panel.
    void openPanelFinished(const QString &path);
    /// Opens a photo that was dropped, or given on the command line. Ignored when the result was exported and has not
    /// changed since.
    void photoDraggedWithPath(const QString &path);
    /// Takes the photo at `path` for the open one if it is whole, and waits for its pixels; otherwise the photo before
    /// stays. Answers yes in every case: what callers do afterwards is done either way.
    bool isValidImage(const QString &path);
    /// The same with a photo that is there already.
    bool isValidImage(const OpenedPhoto &photo);
    void resizeImageToFitContainer(const PhotoImagePtr &image);
    void selectedImageChanged();
    void showHideRightMenu();
    void setupRightSettingOptionWithSelectionIndex(qint32 index);
    void btnResetTapped();
    void setupBottomSummaryInfo();
    /// Does nothing: the tips are not shown by themselves.
    void showDemoWindowFirsttime() {}
    void addDemoWindow();

    // Painting.
    void segmentPaintEraseTapped(const QObject *sender);
    void hadleSliderBrushDiameter();
    void hadleSliderBrushHardness();
    void handleSliderBrushSizeAutoMode();
    void mousemoveOutFromImageRegion();
    void mousemoveInsideImageRegion();
    void brushDrawedRegionUpdate();
    void loadInitMaskImages();
    void adjustPaintEraseview();
    void drawPaintCustomAlfterDelay();
    void clearControlForBrushDrawing() {}

    // Previews.
    void btnProcessTapped();
    void applyeffectOnPreviewInBackground();
    void applyCustomEnhanceFilterOnPreviewImage();

    // Export and sharing.
    void btnExportDenoisedImageTapped();
    void btnSocialShareImageTapped();
    /// The flow of saving and sharing; null until the window is there.
    ExportFlow *exportFlow() const { return m_exportFlow.get(); }

    // The window.
    void setupTitleBarViewForWindow(TitlebarWindow *window);
    void hideWindowBtnsAfterDelay();
    void btnCloseWindowTapped();
    void btnSaveChangesTapped();
    void btnDontSaveChangesTapped();
    void btnCancelChangesTapped();
    void btnMinimizeWindowTapped();
    void btnZoomWindowTapped();
    void windowisResizing();
    void windowEndResizing();
    void windowDidResize();
    void windowDidEndLiveResize();
    void keyDown(Qt::KeyboardModifiers modifiers);

    void showAlertWithTitle(const QString &title, const QString &andMessage);

    // State.
    bool hasPhoto() const { return m_inputImage != nullptr; }
    bool isLoading() const { return m_opener.isLoading(); }
    const PhotoImagePtr &inputImage() const { return m_inputImage; }
    const QString &imageUrl() const override { return m_imageUrl; }
    const PhotoImagePtr &resizedInputImage() const { return m_resizedInputImage; }
    const PhotoImagePtr &maskImage() const override { return m_maskImage; }
    const PhotoImagePtr &overlayImage() const { return m_overlayImage; }
    void setOverlayImage(const PhotoImagePtr &image) { m_overlayImage = image; }
    qint32 toolType() const { return m_toolType; }
    qint32 menuSelectedIndex() const { return m_menuSelectedIndex; }
    bool isRunningAlgorithm() const override { return m_isRunningAlgorithm; }
    void setIsRunningAlgorithm(bool running) override { m_isRunningAlgorithm = running; }
    bool isResizingWindow() const { return m_isResizingWindow; }
    bool isExportingWithAddingNewImage() const { return m_isExportingWithAddingNewImage; }
    void setIsExportingWithAddingNewImage(bool exporting) { m_isExportingWithAddingNewImage = exporting; }
    const PhotoImagePtr &lastExportedImage() const override { return m_lastExportedImage; }
    void setLastExportedImage(const PhotoImagePtr &image) override;
    const std::shared_ptr<PaintStepList> &arrDrawedPointsForCustomBrushOption() const { return m_arrDrawedPoints; }

    /// While an export runs: no second one, no sharing, no other settings, no painting, no other photo.
    void setExportLocked(bool locked) override;
    bool isExportLocked() const { return m_exportLocked; }

signals:
    /// A preview has come into the after-image view.
    void previewShown();

protected:
    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    /// What was done to the photo. A redraw of the strokes at another size changes nothing of it.
    struct Edits
    {
        CoreFilterObject settings;
        std::shared_ptr<PaintStepList> steps;
        std::size_t stepCount = 0;
        bool operator==(const Edits &) const = default;
    };

    bool isPainting() const { return m_toolType == kToolPaint || m_toolType == kToolErase; }
    QString text(const char *key) const;

    void observeNotifications();
    void connectControls();
    void connectWorkers();
    void connectPanel();

    void openPhotoAtPath(const QString &path);
    void photoOpened(const OpenedPhoto &photo);
    void photoRefused(const Failure &failure);
    void takeArrivedPhoto();
    void returnFocus(const QPointer<QWidget> &before);
    void showRefusal(const Failure &failure);
    PhotoOpener::Sizes wantedSizes() const;

    void takeMask();
    void finishPainting();
    void clearCanvas();
    void applyBrushHardness();
    void applyBrushValues();
    void setArrowCursor();
    void showToolInForce();
    void checkPointerOverPhoto();
    Edits edits() const;
    void updateUnsavedMark();
    void updateLocks();
    void updateStripButtons();
    void makeExportFlow();
    CoreFilterObject createPresetObjectFromSettingWithTitle(const QString &title) const override;
    void setExportButtonOff() override;
    void closeColorPanel() override;
    void takeDownSaveChanges();
    void followScreen();

    ApplicationDelegate &m_application;
    ExportFlow::Work m_exportWork;
    QPointer<MainScreenView> m_view;
    QPointer<TitlebarWindow> m_window;
    QPointer<SaveChangesSheet> m_windowSaveChanges;
    QPointer<TipsWindow> m_demoWin;
    PaintControl m_paintControl;
    std::vector<NotificationCenter::Token> m_observers;

    PhotoImagePtr m_inputImage;
    QString m_imageUrl;
    QString m_imageType; ///< of `m_imageUrl`: its extension, or what its content is where the name does not tell
    bool m_isPartlyDamaged = false;
    PhotoImagePtr m_resizedInputImage;
    PhotoImagePtr m_fittedImage; ///< what `m_resizedInputImage` was made from
    PhotoImagePtr m_maskImage;
    qint64 m_maskCanvasKey = 0; ///< which pixels of the canvas `m_maskImage` was made from
    PhotoImagePtr m_overlayImage;
    PhotoImagePtr m_maskGreenImageWithCustomPaint;
    PhotoImagePtr m_maskImageWithCustomPaint;
    PhotoImagePtr m_lastExportedImage;
    std::optional<Edits> m_writtenEdits; ///< of the result that was written last, into a file
    std::shared_ptr<PaintStepList> m_arrDrawedPoints;
    qint32 m_toolType = kToolNone;
    qint32 m_menuSelectedIndex = -1;
    bool m_isRunningAlgorithm = false;
    bool m_isResizingWindow = false;
    bool m_isExportingWithAddingNewImage = false;
    bool m_exportLocked = false;
    QPointer<QWidget> m_focusBeforeExport;

    std::unique_ptr<OpenedPhoto> m_arrived; ///< a picture that came during an export
    QString m_lastFolder;

    // Last, so that their threads are over before anything else goes.
    PhotoOpener m_opener;
    PreviewRunner m_previews;
    WorkQueue m_previewRequests{1};
    std::unique_ptr<ExportFlow> m_exportFlow;
};

} // namespace hazelmark
