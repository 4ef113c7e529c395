#pragma once

#include "BrushControls.h"
#include "CanvasSight.h"
#include "ClipboardPhoto.h"
#include "EditCommands.h"
#include "ExportFlow.h"
#include "MainScreenView.h"
#include "MainWindowChrome.h"
#include "Notices.h"
#include "NotificationCenter.h"
#include "PhotoZoom.h"
#include "ScreenKeys.h"
#include "Session.h"
#include "ViewController.h"

#include <QObject>
#include <QPointer>

#include <memory>
#include <vector>

namespace hazelmark {

class ApplicationDelegate;
class SettingsPanel;
class TipsWindow;
class TitlebarWindow;

/// The controller of the one screen: brings what a person does to the session, and what becomes of the session to the
/// screen. What is worked on is the session's; the settings live in the panel. Main thread only.
class MainScreenVC : public QObject, public ViewController
{
    Q_OBJECT

public:
    explicit MainScreenVC(ApplicationDelegate &application, Session::Work work = {});
    ~MainScreenVC() override;

    QWidget *view() override;
    MainScreenView *mainScreenView() const { return m_view; }
    SettingsPanel &panel();
    /// What is worked on; there as long as the view is.
    Session &session() { return *m_session; }
    /// There from setupTitleBarViewForWindow() on.
    MainWindowChrome &chrome() { return *m_chrome; }

    // Start-up.
    void loadView();
    void initialViewSet();
    /// The rest of the start-up, of which nothing is seen before a photo is open: the settings panel and the brush.
    /// Done after the window's first picture, or when it is first needed.
    void prepareEditing();
    void setLocalizedStrings();

    // Menu commands, as they arrive.
    void btnOpenFileFromMenuTapped() { btnAddPhotoTapped(); }
    void btncloseFileFromMenuTapped() { btnCloseWindowTapped(); }
    void btnSaveFileFromMenuTapped() { btnExportDenoisedImageTapped(); }

    void commandFromMenuTapped(MenuCommand command, int index);

    // The photo.
    void btnAddPhotoTapped();
    /// The person chose the file at `path` in the open panel.
    void openPanelFinished(const QString &path);
    /// Opens a photo that was dropped, or given on the command line. Ignored when the result was exported and has not
    /// changed since.
    void photoDraggedWithPath(const QString &path);
    /// Of the photos on the command line the first one is opened.
    void openPhotos(const QStringList &paths);
    /// Opens the photo on the clipboard.
    void pastePhoto();
    /// Says why a drag or a drop is not taken; see FileDraggingView::refused().
    void sayWhyRefused(const QString &path);
    /// Takes the photo at `path` for the open one if it is whole, and waits for its pixels; otherwise the photo before
    /// stays. Answers yes in every case: what callers do afterwards is done either way.
    bool isValidImage(const QString &path);
    /// The same with a photo that is there already.
    bool isValidImage(const OpenPhoto &photo);
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
    void segmentPaintEraseTapped(const QObject *sender) { m_brush->segmentPaintEraseTapped(sender); }
    void hadleSliderBrushDiameter() { m_brush->hadleSliderBrushDiameter(); }
    void hadleSliderBrushHardness() { m_brush->hadleSliderBrushHardness(); }
    void handleSliderBrushSizeAutoMode() { m_brush->handleSliderBrushSizeAutoMode(); }
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
    /// How near one is to the photo; there as long as the view is.
    PhotoZoom &zoom() { return *m_zoom; }
    /// The flow of saving and sharing; null until the window is there.
    ExportFlow *exportFlow() const { return m_exportFlow.get(); }

    // The window.
    void setupTitleBarViewForWindow(TitlebarWindow *window);
    void hideWindowBtnsAfterDelay() { m_chrome->hideWindowBtnsAfterDelay(); }
    void btnCloseWindowTapped();
    void btnSaveChangesTapped() { m_chrome->btnSaveChangesTapped(); }
    void btnDontSaveChangesTapped() { m_chrome->btnDontSaveChangesTapped(); }
    void btnCancelChangesTapped() { m_chrome->btnCancelChangesTapped(); }
    void btnMinimizeWindowTapped() { m_chrome->btnMinimizeWindowTapped(); }
    void btnZoomWindowTapped() { m_chrome->btnZoomWindowTapped(); }
    void windowisResizing();
    void windowEndResizing();
    void windowDidResize();
    /// The refit itself has been done, and the redraw follows on "notificationWindowEndResizing".
    void windowDidEndLiveResize() {}
    void keyDown(Qt::KeyboardModifiers modifiers);

    void showAlertWithTitle(const QString &title, const QString &andMessage);

    // State.
    bool hasPhoto() const { return m_session && m_session->state() != Session::State::Empty; }
    const PhotoImagePtr &inputImage() const { return m_session->photo().inputImage; }
    QString imageUrl() const { return m_session->photo().path(); }
    const PhotoImagePtr &resizedInputImage() const { return m_session->resizedInputImage(); }
    const PhotoImagePtr &maskImage() const { return m_session->painting().maskImage(); }
    qint32 toolType() const { return m_session->painting().toolType(); }
    qint32 menuSelectedIndex() const { return m_menuSelectedIndex; }
    bool isRunningAlgorithm() const { return m_session->isRunningAlgorithm(); }
    bool isResizingWindow() const { return m_isResizingWindow; }
    const PhotoImagePtr &lastExportedImage() const { return m_session->lastExportedImage(); }
    const std::shared_ptr<PaintStepList> &arrDrawedPointsForCustomBrushOption() const
    {
        return m_session->painting().strokes();
    }

signals:
    /// A preview has come into the after-image view.
    void previewShown();

protected:
    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    bool isPainting() const { return m_session->painting().isPainting(); }
    QString text(const char *key) const;
    CoreFilterObject createPresetObjectFromSettingWithTitle(const QString &title);

    void observeNotifications();
    void connectControls();
    void connectSession();

    void openPhotoAtPath(const QString &path);
    void photoRead(const OpenPhoto &photo);
    void photoRefused(const Failure &failure);
    PhotoView wantedView() const;

    void clearCanvas();
    void checkPointerOverPhoto();
    void updateUnsavedMark();
    void sessionStateChanged();
    void updateStripButtons();
    void followScreen(QScreen *screen);

    ApplicationDelegate &m_application;
    Session::Work m_work;
    QPointer<MainScreenView> m_view;
    QPointer<TitlebarWindow> m_window;
    QPointer<TipsWindow> m_demoWin;
    std::vector<NotificationCenter::Token> m_observers;
    qint32 m_menuSelectedIndex = -1;
    bool m_isResizingWindow = false;
    QString m_lastFolder; ///< of the photo that was opened last
    QPointer<QWidget> m_focusBeforeExport;
    QString m_noticeAfterOpening;
    ClipboardPhoto m_clipboard;
    QPointer<CanvasSight> m_sight; ///< the view's, as the notices are
    QPointer<Notices> m_notices;

    std::unique_ptr<Session> m_session;
    std::unique_ptr<BrushControls> m_brush;
    std::unique_ptr<EditCommands> m_commands;
    std::unique_ptr<ScreenKeys> m_keys;
    std::unique_ptr<MainWindowChrome> m_chrome;
    std::unique_ptr<ExportFlow> m_exportFlow;
    QPointer<PhotoZoom> m_zoom;     ///< the view's
    WorkQueue m_previewRequests{1}; ///< last, so that its thread is over before anything else goes
};

} // namespace hazelmark
