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
    const std::pair<QWidget *, const char *> rows[] = {
        {&panel, // a plus for each further setting
         "4: 12 btnPaint[40x40] 0 btnEraser[40x40] 16 btnBlurEverything[40x40] 0 btnClearPainting[40x40] ~\n"
         "0: 16 PAINT' 16\n8: 0 QFrame 0\n"
         "16: 16 GROUP_BRUSH* 4 btnReset0 16\n8: 16 lblBrushSize 8 txtBrushDiameter[48x24] 16\n"
         "0: 16 sliderBrushDiameter 16++\n"
         "20: 16 GROUP_BLUR* 4 btnReset1 16\n8: 16 lblBlur 8 txtBlurAmount[48x24] 16\n0: 16 sliderBlurAmount 16+\n"
         "4: 16 VIGNETTE_ON_EXPORT' 16\n20: 16 QFrame 16\n8: 16 btnMoreSettings 16\n"
         "12: 16 GROUP_BLURRED_AREA* 16\n8: 16 lblContrast 8 txtContrast[48x24] 16\n0: 16 sliderContrast 16+++++++\n"
         "8: 16 VIGNETTE_COLOR 6 colorPickerVignette 16\n20: 16 GROUP_IN_FOCUS_AREA* 4 btnReset3 16\n"
         "8: 16 lblInFocusBrightness 8 txtInFocusBrightness[48x24] 16\n0: 16 sliderInFocusBrightness 16++++\n~"},
        {&bar,
         "0: 16 txtFilePath 16 txtPhotoSize' 16 txtPixelSize' 16 QLabel[16x16] 8 txtNotice 16 txtStoredPainting 8 "
         "btnRestore ~ txtExport 16 zoomField 16 btnCompare 16\n0"},
        {&tips, "24: 24 lblDemoMsg* 24\n16: 24 imageViewTips[480x264] 24\n12: 24 TIP_OPEN_TITLE* 24\n"
                "8: 24 TIP_OPEN_TEXT 24\n16: 24 TIP_BACK ~ DotPageControl ~ TIP_NEXT 24\n24"},
        {&alert, "20: 20 QLabel[40x40] 16 title* 20\n~: ~ message 20\n16: ~ no 8 yes 20\n20"},
        {&changes, "16: 16 lblSaveChangeHeader* 16\n8: 16 lblSaveChangeMsg 16\n"
                   "16: 16 btnDontSave ~ btnCancel 8 btnSave 16\n16"},
    };
    static const QRegularExpression kFurther(
        QStringLiteral("\n4: 16 lbl\\w+ 8 txt\\w+\\[48x24\\] 16\n0: 16 slider\\w+ 16"));
    for (const auto &[widget, outline] : rows) {
        widget->show();
        ASSERT_TRUE(QTest::qWaitForWindowExposed(widget));
        EXPECT_EQ(outlineOf(*widget).replace(kFurther, QStringLiteral("+")).toStdString(), outline);
    }
    EXPECT_NEAR(tips.geometry().center().x(), 500, 8);
    EXPECT_NEAR(tips.geometry().center().y(), 400, 8);
}

TEST(Places, OfTheAreasFollowTheWindow)
{
    ScreenApplication application;
    MainScreenView view(application);
    view.makeSettingsPanel(application);
    view.show();
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
    view.showLoading(QStringLiteral("opening"));
    EXPECT_TRUE(!view.vwDragging->isVisible() && note->isVisible());
    view.showLoading({});
    EXPECT_EQ(outlineOf(*view.vwDragging).toStdString(),
              "~: ~ QLabel[120x120] ~\n30: ~ txtAddPhoto ~\n30: ~ btnAddPhotoOnPrompt ~\n~");
}

} // namespace hazelmark
