// Where things stand on the main screen and in its sheets.
#include "../support/Outline.h"
#include "../support/ScreenApplication.h"
#include "AlertSheet.h"
#include "BarProgressIndicator.h"
#include "DrawTrackingView.h"
#include "FileDraggingView.h"
#include "IMGButton.h"
#include "KeyboardCursor.h"
#include "MainScreenView.h"
#include "OverviewView.h"
#include "PaintView.h"
#include "PhotoImageView.h"
#include "SaveChangesSheet.h"
#include "SettingsPanel.h"
#include "SummaryBar.h"
#include "TipsWindow.h"

#include <QLabel>
#include <QPushButton>
#include <QRegularExpression>
#include <QTest>

#include <gtest/gtest.h>

namespace hazelmark {

TEST(Places, OfWhatPanelBarAndSheetsHold)
{
    ScreenApplication application;
    SettingsPanel panel(application);
    panel.resize(250, 1600);
    panel.setAllSettingsShown(true);
    SummaryBar bar(application);
    bar.resize(1600, 36);
    bar.showPartlyDamaged();
    bar.setStoredPainting(QStringLiteral("stored"));
    bar.setPixelSize({1, 2});
    bar.showMessage(QStringLiteral("message"));
    QWidget window;
    TipsWindow tips(application, &window);
    tips.addDemoWindow({1000, 800});
    AlertSheet alert(QStringLiteral("title"), QStringLiteral(" message"), QStringLiteral("yes"), QStringLiteral("no"));
    SaveChangesSheet changes(application);
    const std::tuple<QWidget *, const char *, const char *> rows[] = {
        {&panel, // a plus for each further setting
         "4: 12 btnPaint[40x40] 0 btnEraser[40x40] 16 btnBlurEverything[40x40] 0 btnClearPainting[40x40] ~\n"
         "0: 16 PAINT@11'/ 16\n8: 0 QFrame 0\n"
         "16: 16 GROUP_BRUSH*/ 4 btnReset0@11 16\n8: 16 lblBrushSize 8 txtBrushDiameter[48x24] 16\n"
         "0: 16 sliderBrushDiameter 16++\n"
         "20: 16 GROUP_BLUR*/ 4 btnReset1@11 16\n8: 16 lblBlur 8 txtBlurAmount[48x24] 16\n0: 16 sliderBlurAmount 16+\n"
         "4: 16 VIGNETTE_ON_EXPORT@11'/ 16\n20: 16 QFrame 16\n8: 16 btnMoreSettings 16\n"
         "12: 16 GROUP_BLURRED_AREA*/ 16\n8: 16 lblContrast 8 txtContrast[48x24] 16\n0: 16 sliderContrast 16+++++++\n"
         "8: 16 VIGNETTE_COLOR 6 colorPickerVignette 16\n20: 16 GROUP_IN_FOCUS_AREA*/ 4 btnReset3@11 16\n"
         "8: 16 lblInFocusBrightness 8 txtInFocusBrightness[48x24] 16\n0: 16 sliderInFocusBrightness 16++++\n~",
         "vwSettingOptions: Grouping SETTINGS_PANEL; btnPaint: RadioButton PAINT (PAINT (B)) t^x; "
         "btnEraser: RadioButton ERASE (ERASE (E)) t^; "
         "btnBlurEverything: Button BLUR_EVERYTHING (BLUR_EVERYTHING (Ctrl+Shift+A)) t^; "
         "btnClearPainting: Button CLEAR_PAINTING (CLEAR_PAINTING (Del)) t^; btnReset0: Button GROUP_BRUSH: RESET t; "
         "BrushDiameter=BRUSH_SIZE s; BrushHardness=BRUSH_HARDNESS s; BrushSizeAuto=SLIDER_BRUSH_SIZE_AUTO o; "
         "btnReset1: Button GROUP_BLUR: RESET t; BlurAmount=BLUR s; Vignette=SLIDER_VIGNETTE o; "
         "btnMoreSettings: ButtonDropDown SLIDERS_WITHOUT_EFFECT t^v; Contrast=SLIDER_CONTRAST s; "
         "Highlights=SLIDER_HIGHLIGHTS s; Saturation=SLIDER_SATURATION s; Warmth=SLIDER_WARMTH s; "
         "MotionBlurAmount=SLIDER_MOTION_BLUR_AMOUNT o; MotionRadialTwist=SLIDER_MOTION_RADIAL_TWIST o; "
         "MotionLinearAngle=SLIDER_MOTION_LINEAR_ANGLE o; EdgeBlurAmount=SLIDER_EDGE_BLUR_AMOUNT o; "
         "colorPickerVignette: Button VIGNETTE_COLOR t^; btnReset3: Button GROUP_IN_FOCUS_AREA: RESET t; "
         "InFocusBrightness=SLIDER_IN_FOCUS_BRIGHTNESS s; InFocusSharpness=SLIDER_IN_FOCUS_SHARPNESS s; "
         "InFocusClarity=SLIDER_IN_FOCUS_CLARITY s; InFocusVividness=SLIDER_IN_FOCUS_VIVIDNESS s; "
         "InFocusWarmth=SLIDER_WARMTH s"},
        {&bar,
         "0: 16 txtFilePath 16 txtPhotoSize' 16 txtPixelSize' 16 QLabel[16x16] 8 txtNotice 16 txtStoredPainting 8 "
         "btnRestore ~ txtExport 16 zoomField 16 btnCompare 16\n0",
         "vwBottom: StatusBar BOTTOM_BAR; QLabel: Graphic; txtStoredPainting: StaticText stored; "
         "btnRestore: Button RESTORE t^; txtExport: StaticText message; zoomField: ComboBox ZOOM; "
         "QLineEdit: EditableText ZOOM s; btnCompare: Button COMPARE (COMPARE_TIP (C)) t^"},
        {&tips,
         "24: 24 lblDemoMsg@17*/ 24\n16: 24 imageViewTips[480x264] 24\n12: 24 TIP_OPEN_TITLE@15*/ 24\n"
         "8: 24 TIP_OPEN_TEXT/ 24\n16: 24 TIP_BACK ~ DotPageControl ~ TIP_NEXT 24\n24",
         "demoWin: Dialog TIPS_TITLE; imageViewTips: Graphic TIP_OPEN_TITLE; QPushButton: Button TIP_BACK s-; "
         "DotPageControl: PageTabList TIP_PAGE 1 t^; QPushButton: Button TIP_NEXT s"},
        {&alert, "20: 20 QLabel[40x40] 16 title*/# 20\n~: ~ message/# 20\n16: ~ no 8 yes 20\n20",
         "AlertSheet: Dialog title [ message]; QLabel: Graphic; QPushButton: Button no s; QPushButton: Button yes s!"},
        {&changes,
         "16: 16 lblSaveChangeHeader*/ 16\n8: 16 lblSaveChangeMsg/ 16\n"
         "16: 16 btnDontSave ~ btnCancel 8 btnSave 16\n16",
         "windowSaveChanges: Dialog; btnDontSave: Button DONT_SAVE s; btnCancel: Button CANCEL s; "
         "btnSave: Button SAVE s!"},
    };
    static const QRegularExpression kFurther(
        QStringLiteral("\n4: 16 lbl\\w+ 8 txt\\w+\\[48x24\\] 16\n0: 16 slider\\w+ 16"));
    static const QRegularExpression kRow(
        QStringLiteral("txt(\\w+): EditableText (\\w+)( s| o)?; slider\\1: Slider \\2 s"));
    for (const auto &[widget, outline, told] : rows) {
        widget->show();
        ASSERT_TRUE(QTest::qWaitForWindowExposed(widget));
        EXPECT_EQ(outlineOf(*widget).replace(kFurther, QStringLiteral("+")).toStdString(), outline);
        EXPECT_EQ(toldOf(*widget).replace(kRow, QStringLiteral("\\1=\\2\\3")).toStdString(), told);
    }
    EXPECT_NEAR(tips.geometry().center().x(), 500, 8);
    EXPECT_NEAR(tips.geometry().center().y(), 400, 8);
}

TEST(Places, OfTheAreasFollowTheWindow)
{
    ScreenApplication application;
    MainScreenView view(application);
    view.setLocalizedStrings(application);
    view.show();
    view.showPhotoLayout();
    view.overview->show();
    view.progressBar->show();
    EXPECT_EQ(toldOf(view).toStdString(),
              "imgvwBeforeBokesh: Graphic PHOTO_BEFORE; imgvwAfterBokesh: Graphic PHOTO_AREA; "
              "keyboardCursor: Canvas CANVAS t; overview: Graphic OVERVIEW ^; "
              "progressBar: ProgressBar EXPORT_PROGRESS; vwBottom: StatusBar BOTTOM_BAR; QLabel: Graphic; "
              "zoomField: ComboBox ZOOM; QLineEdit: EditableText ZOOM s; "
              "btnCompare: Button COMPARE (COMPARE_TIP (C)) t^; vwTopContainer: ToolBar TITLE_STRIP; "
              "btnAddPhoto: Button ADD_IMAGE (ADD_IMAGE (Ctrl+O)) t^; btnShareService: Button SHARE t^; "
              "btnExport: Button SAVE (SAVE (Ctrl+S)) t^");
    view.progressBar->hide();
    view.makeSettingsPanel(application);
    view.setUnsavedMarkVisible(true);
    view.showLoading(QStringLiteral("opening"));
    const auto *note = view.findChild<QLabel *>(QStringLiteral("loadingNote"));
    const auto *mark = view.findChild<QLabel *>(QStringLiteral("unsavedMark"));
    for (const QSize size : {QSize(1220, 640), QSize(1601, 901)}) {
        const int width = size.width(), height = size.height();
        view.resize(size);
        for (const bool hasPhoto : {false, true}) {
            hasPhoto ? view.showPhotoLayout() : view.showAddPhotoLayout();
            const QRect area = hasPhoto ? QRect(0, 60, width - 250, height - 96) : QRect(0, 60, width, height - 60);
            const QRect note2((area.width() - note->width()) / 2, 0, note->width(), 32);
            const std::pair<const QWidget *, QRect> places[] = {
                {view.vwTopContainer, {0, 0, width, 60}},
                {view.btnExport, {width - 48, 10, 40, 40}},
                {view.btnShareService, {width - 96, 10, 40, 40}},
                {view.btnAddPhoto, {width - 144, 10, 40, 40}},
                {mark, {QPoint(width - 152 - mark->width(), (60 - mark->height()) / 2), mark->size()}},
                {view.vwRightContainer, {width - 250, 60, 250, height - 60}},
                {view.vwSettingOptions, {0, 0, 250, height - 60}},
                {view.vwBottom, {0, height - 36, width - 250, 36}},
                {view.vwMainContainer, area},
                {view.dropTarget, {QPoint(), area.size()}},
                {view.vwDragging, {QPoint(), area.size()}},
                {view.vwPreviewContainer, {QPoint(20, 20), area.size() - QSize(40, 40)}},
                {view.progressBar, {0, 0, area.width(), 3}},
                {note, note2.translated(0, hasPhoto ? area.height() - 1 - 20 - 16 - 32 : (area.height() - 1) / 2 - 16)},
            };
            for (const auto &[widget, place] : places)
                EXPECT_EQ(widget->geometry(), place) << qPrintable(widget->objectName()) << width << hasPhoto;
            EXPECT_EQ(view.vwPreviewContainer->isVisible(), hasPhoto);
            EXPECT_FALSE(view.vwDragging->isVisible()) << "the note stands in its place";
            EXPECT_EQ(view.previewSizeWithPhoto(), size - QSize(290, 136));
        }
    }
    const QRectF photo(10, 20, 300, 200), near(-50, -40, 600, 400);
    view.placePhoto(photo);
    EXPECT_EQ(view.photoFrame(), photo);
    EXPECT_EQ(view.paintView->frame(), photo);
    for (const bool isNear : {false, true}) {
        if (isNear)
            view.placeNear(near, photo);
        EXPECT_EQ(view.imgvwBeforeBokesh->pictureFrame(), isNear ? near : photo);
        EXPECT_EQ(view.imgvwAfterBokesh->pictureFrame(), isNear ? near : photo);
        EXPECT_EQ(view.imgvwAfterBokesh->size(), view.previewSize());
        for (const QWidget *over :
             {static_cast<QWidget *>(view.drawTrackingView), static_cast<QWidget *>(view.keyboardCursor)})
            EXPECT_EQ(over->geometry(), view.paintView->geometry());
    }
    view.showAddPhotoLayout();
    view.showLoading({});
    EXPECT_TRUE(view.vwDragging->isVisible() && !note->isVisible());
    EXPECT_EQ(toldOf(*view.vwDragging), u"QLabel: Graphic; btnAddPhotoOnPrompt: Button OPEN_IMAGE s!"_qs);
    EXPECT_EQ(outlineOf(*view.vwDragging).toStdString(),
              "~: ~ QLabel[120x120] ~\n30: ~ txtAddPhoto@17 ~\n30: ~ btnAddPhotoOnPrompt ~\n~");
}

} // namespace hazelmark
