// The commands of the menus and keys: undoing, everything, comparing, painting by keyboard, and what is said of drops.
#include "ScreenFixture.h"

#include "AlertSheet.h"
#include "CalloutWindow.h"
#include "FilePanelLook.h"
#include "FloatSlider.h"
#include "IMGButton.h"
#include "KeyboardCursor.h"
#include "Notices.h"
#include "NotificationNames.h"
#include "PaintView.h"
#include "PhotoImageView.h"
#include "SettingsPanel.h"
#include "SheetQueue.h"
#include "SummaryBar.h"
#include "ZoomField.h"

#include <QApplication>
#include <QClipboard>
#include <QFileDialog>
#include <QLineEdit>
#include <QMimeData>
#include <QPushButton>
#include <QTest>
#include <QWheelEvent>

namespace hazelmark {

namespace {

class Editing : public ScreenFixture
{
protected:
    QString said() const { return view().vwBottom->exportText(); }
};

TEST_F(Editing, TheMenusUndoWhatWasPaintedAndNameIt)
{
    openPhoto();
    stroke({0.3, 0.5}, {0.7, 0.5});
    EXPECT_EQ(m_application.m_menu.undo, u"UNDO_STROKE %@"_qs);
    QTest::mouseClick(m_screen->panel().btnBlurEverything(), Qt::LeftButton);
    EXPECT_EQ(m_application.m_menu.undo, u"UNDO_BLUR_EVERYTHING %@"_qs);
    EXPECT_EQ(paintAt({0.1, 0.1}), 255);
    perform(MenuCommand::Undo);
    perform(MenuCommand::Undo);
    EXPECT_EQ(paintAt({0.5, 0.5}), 0);
    EXPECT_EQ(m_application.m_menu.redo, u"REDO_STROKE %@"_qs);
    perform(MenuCommand::Redo);
    EXPECT_GT(paintAt({0.5, 0.5}), 0);
    EXPECT_TRUE(m_window->isWindowModified());
    EXPECT_EQ(m_window->windowTitle(), u"a.png[*]"_qs);
    // In the middle of a stroke nothing is taken back, and the tool stays in the hand.
    stroke({0.3, 0.2}, {0.7, 0.2}, false);
    perform(MenuCommand::Undo);
    perform(MenuCommand::Eraser);
    EXPECT_GT(paintAt({0.5, 0.5}), 0);
    EXPECT_FALSE(view().paintView->eraser());
    QTest::mouseRelease(view().paintView, Qt::LeftButton);
}

TEST_F(Editing, APaintingComesBackFromItsStoreAndFromAFile)
{
    start();
    const QString path = photo(u"a.png"_qs, {600, 400});
    open(path);
    FloatSlider &blur = *panel().slider(Setting::BlurAmount);
    blur.setValueByUser(80);
    panel().slider(Setting::Vignette)->setValueByUser(0.1);
    stroke({0.3, 0.5}, {0.7, 0.5});
    const auto choose = [this](MenuCommand command, const QString &name) {
        perform(command);
        auto *files = m_window->findChild<QFileDialog *>(u"paintingPanel"_qs);
        const QStringList shown{files->windowTitle(),
                                files->selectedNameFilter(),
                                files->labelText(QFileDialog::Accept),
                                files->labelText(QFileDialog::Reject),
                                files->directory().path(),
                                files->findChild<QLineEdit *>(u"fileNameEdit"_qs)->text()};
        EXPECT_TRUE(files->isVisible());
        files->findChild<QLineEdit *>(u"fileNameEdit"_qs)->setText(m_folder.filePath(name));
        static_cast<QDialog *>(files)->accept();
        EXPECT_TRUE(QTest::qWaitFor([files = QPointer(files)] { return !files; }));
        return shown.join(u'|').remove(u" %@"_qs).replace(m_folder.path(), u"here"_qs).toStdString();
    };
    const std::string saving = "SAVE_PAINTING_AS|PAINTING_FILES (*.json)|SAVE|CANCEL|";
    EXPECT_EQ(choose(MenuCommand::SavePaintingAs, u"mine"_qs), saving + picturesFolder().toStdString() + "|a")
        << "as one from the clipboard";
    EXPECT_TRUE(QTest::qWaitFor([this] { return said() == u"PAINTING_SAVED mine.json"_qs; }));
    stroke({0.3, 0.2}, {0.7, 0.2});
    const auto size = [this] { return QFileInfo(m_folder.filePath(u"mine.json"_qs)).size(); };
    for (const bool replaces : {false, true}) {
        const qint64 before = size();
        EXPECT_EQ(choose(MenuCommand::SavePaintingAs, u"mine.json"_qs), saving + "here|a");
        ASSERT_TRUE(QTest::qWaitFor([this] { return !sheetText().isEmpty(); }));
        EXPECT_EQ(sheetText().toStdString(), "REPLACE_TITLE mine.json|REPLACE_MSG %@");
        auto *question = static_cast<AlertSheet *>(SheetQueue::forWindow(*m_window).current());
        QTest::mouseClick(replaces ? question->alternateButton() : question->defaultButton(), Qt::LeftButton);
        EXPECT_TRUE(QTest::qWaitFor([&] { return sheetText().isEmpty() && (size() > before) == replaces; }));
    }
    m_screen.reset();
    start();
    open(path);
    const auto offered = [this] { return view().vwBottom->btnRestore()->isVisible(); };
    ASSERT_TRUE(QTest::qWaitFor(offered));
    const QDateTime when = m_screen->session().storedPaintings().at(0).when.toLocalTime();
    EXPECT_EQ(m_application.m_menu.storedPaintings,
              QStringList(u"RESTORE_PAINTING_OF "_qs + QLocale().toString(when, QLocale::ShortFormat)));
    view().vwBottom->btnRestore()->click();
    EXPECT_TRUE(QTest::qWaitFor([this] { return paintAt({0.5, 0.5}) > 0; }));
    EXPECT_EQ(m_application.m_menu.undo, u"UNDO_RESTORE %@"_qs);
    EXPECT_FALSE(offered());
    EXPECT_EQ(panel().field(Setting::BlurAmount)->text(), u"80"_qs);
    perform(MenuCommand::ClearPainting);
    EXPECT_EQ(choose(MenuCommand::OpenPainting, u"mine.json"_qs),
              "OPEN_PAINTING|PAINTING_FILES (*.json)|OPEN|CANCEL|here|");
    EXPECT_TRUE(QTest::qWaitFor([this] { return paintAt({0.5, 0.5}) > 0; }));
    choose(MenuCommand::OpenPainting, u"a.png"_qs);
    EXPECT_EQ(answeredSheet().toStdString(), "ERROR_CANT_OPEN_PAINTING %@|REFUSED_NOT_A_PAINTING a.png");
    perform(MenuCommand::ForgetPaintings);
    EXPECT_EQ(said(), u"PAINTINGS_FORGOTTEN %@"_qs);
    EXPECT_TRUE(QTest::qWaitFor([this] { return m_application.m_menu.storedPaintings.isEmpty(); }));
}

TEST_F(Editing, SlidersKeysAndWheelSetTheBrush)
{
    openPhoto();
    panel().slider(Setting::BrushHardness)->setValueByUser(49.6);
    EXPECT_FLOAT_EQ(canvas().hardness(), 0.5F);
    EXPECT_FLOAT_EQ(canvas().pointSize(), 64.8F) << "hardness alone leaves the stamp size";
    EXPECT_EQ(panel().field(Setting::BrushHardness)->text(), u"49"_qs);
    panel().slider(Setting::BrushDiameter)->setValueByUser(50.7);
    EXPECT_FLOAT_EQ(canvas().pointSize(), 1.32F * 50.7F);
    EXPECT_EQ(panel().field(Setting::BrushDiameter)->text(), u"50"_qs);
    panel().slider(Setting::BrushSizeAuto)->setValueByUser(80.6);
    EXPECT_FLOAT_EQ(canvas().pointSize(), 1.32F * 81);
    EXPECT_EQ(panel().field(Setting::BrushDiameter)->text(), u"80"_qs);
    panel().btnResetSliderSettingsTapped(SettingsPanel::kResetMasking);
    EXPECT_FLOAT_EQ(canvas().hardness(), 0);
    EXPECT_FLOAT_EQ(canvas().pointSize(), 64.8F);
    const auto value = [this](Setting setting) { return panel().slider(setting)->value(); };
    const std::tuple<MenuCommand, Setting, double> steps[] = {{MenuCommand::BrushLarger, Setting::BrushDiameter, 44},
                                                              {MenuCommand::BrushSmaller, Setting::BrushDiameter, 40},
                                                              {MenuCommand::BrushHarder, Setting::BrushHardness, 10},
                                                              {MenuCommand::BrushSofter, Setting::BrushHardness, 0}};
    for (const auto &[command, setting, expected] : steps) {
        perform(command);
        EXPECT_EQ(value(setting), expected) << int(command);
    }
    QWheelEvent wheel({5, 5}, {5, 5}, {}, {120, 0}, Qt::NoButton, Qt::AltModifier, Qt::NoScrollPhase, false);
    QCoreApplication::sendEvent(view().vwPreviewContainer, &wheel);
    EXPECT_EQ(value(Setting::BrushDiameter), 44);
    EXPECT_EQ(canvas().pointSize(), 44 * 1.62F) << "the canvas has it";
}

TEST_F(Editing, ANewPhotoStartsEmptyWhateverIsStillDueOrUnderWay)
{
    openPhoto();
    stroke({0.2, 0.5}, {0.8, 0.5});
    post(kNotificationWindowEndResizing); // a redraw of that stroke is due in a second
    QTest::mouseClick(panel().btnEraser(), Qt::LeftButton);
    stroke({0.2, 0.5}, {0.8, 0.5}, false);
    open(photo(u"b.png"_qs, {1000, 1500}, Qt::blue));
    QTest::mouseMove(&canvas(), canvas().rect().center());
    QTest::mouseRelease(&canvas(), Qt::LeftButton, {}, canvas().rect().center());
    EXPECT_TRUE(canvas().arrDrawedPoints()->empty()) << "the stroke ended with its photo";
    EXPECT_EQ(m_screen->toolType(), Painting::kToolPaint);
    stroke({0.5, 0.1}, {0.5, 0.2});
    letTimersFire(1100);
    EXPECT_EQ(paintAt({0.5, 0.5}), 0) << "the stroke on the photo before";
    EXPECT_GT(paintAt({0.5, 0.15}), 200) << "the stroke on this one";
    EXPECT_EQ(canvas().arrDrawedPoints()->size(), 11U);
}

TEST_F(Editing, ThePhotoIsComparedAndThePaintingHidden)
{
    openPhoto();
    QTest::keyPress(m_window.get(), Qt::Key_C);
    EXPECT_FALSE(view().imgvwAfterBokesh->isVisible());
    EXPECT_EQ(view().paintView->opacity(), 0);
    QTest::keyRelease(m_window.get(), Qt::Key_C);
    EXPECT_TRUE(view().imgvwAfterBokesh->isVisible());
    EXPECT_EQ(view().paintView->opacity(), 0.6);
    // The key comes up elsewhere, or the person paints on.
    for (const bool paints : {false, true}) {
        QTest::keyPress(m_window.get(), Qt::Key_C, Qt::ShiftModifier);
        EXPECT_TRUE(view().vwBottom->btnCompare()->isChecked());
        panel().field(Setting::BlurAmount)->setFocus();
        QEvent away(QEvent::WindowDeactivate);
        paints ? stroke({0.3, 0.5}, {0.4, 0.5}) : void(QCoreApplication::sendEvent(m_window.get(), &away));
        EXPECT_FALSE(view().vwBottom->btnCompare()->isChecked());
        EXPECT_EQ(panel().field(Setting::BlurAmount)->hasFocus(), !paints) << "keys are for the painting then";
    }
    perform(MenuCommand::ShowPainting);
    perform(MenuCommand::AllSettings);
    EXPECT_EQ(view().paintView->opacity(), 0);
    EXPECT_TRUE(m_application.m_menu.showsAllSettings && !m_application.m_menu.showsPainting);
    QTest::mousePress(view().vwBottom->btnCompare(), Qt::LeftButton);
    EXPECT_FALSE(view().imgvwAfterBokesh->isVisible());
    QTest::mouseRelease(view().vwBottom->btnCompare(), Qt::LeftButton);
    m_screen.reset();
    openPhoto();
    EXPECT_EQ(view().paintView->opacity(), 0) << "remembered";
    EXPECT_TRUE(m_screen->panel().isUnfolded());
}

TEST_F(Editing, IsDoneByKeyboardAlone)
{
    openPhoto();
    QTest::keyClick(m_window.get(), Qt::Key_Tab);
    EXPECT_TRUE(m_window->focusWidget() == m_screen->panel().toolInForce());
    KeyboardCursor *cursor = view().keyboardCursor;
    QStringList order;
    for (int tabs = 0; tabs < 40 && !order.contains(m_window->focusWidget()->objectName()); ++tabs) {
        order << m_window->focusWidget()->objectName();
        QTest::keyClick(m_window->focusWidget(), Qt::Key_Tab);
    }
    EXPECT_EQ(order.join(u' ').toStdString(),
              "btnPaint btnEraser btnBlurEverything btnClearPainting btnReset0 txtBrushDiameter sliderBrushDiameter "
              "txtBrushHardness sliderBrushHardness sliderBrushSizeAuto btnReset1 txtBlurAmount sliderBlurAmount "
              "sliderVignette keyboardCursor zoomField btnCompare btnAddPhoto btnShareService btnExport ");
    cursor->setFocus(Qt::TabFocusReason);
    ASSERT_TRUE(cursor->isCircleShown());
    post(kNotificationMouseout);
    EXPECT_TRUE(view().paintView->isVisible()) << "the circle counts as the pointer";
    for (const auto &[key, isTaken] : {std::pair(Qt::Key_Space, true), {Qt::Key_Left, true}, {Qt::Key_Z, false}}) {
        QKeyEvent shortcut(QEvent::ShortcutOverride, key, Qt::NoModifier);
        shortcut.ignore();
        QCoreApplication::sendEvent(cursor, &shortcut);
        EXPECT_EQ(shortcut.isAccepted(), isTaken) << key;
    }
    QTest::keyClick(cursor, Qt::Key_Left, Qt::ShiftModifier);
    QTest::keyPress(cursor, Qt::Key_Space);
    for (int i = 0; i < 20; ++i)
        QTest::keyClick(cursor, Qt::Key_Right);
    QTest::keyRelease(cursor, Qt::Key_Space);
    EXPECT_GT(paintAt({0.5, 0.5}), 0);
    EXPECT_EQ(paintAt({0.5, 0.1}), 0);
    EXPECT_EQ(m_application.m_menu.undo, u"UNDO_STROKE %@"_qs);
    QTest::keyClick(cursor, Qt::Key_Tab);
    EXPECT_FALSE(cursor->isCircleShown() || view().paintView->isVisible());
    EXPECT_EQ(m_window->focusWidget(), view().vwBottom->zoomField());
}

TEST_F(Editing, ARefusedDropIsExplained)
{
    start();
    m_screen->sayWhyRefused({});
    const auto *callout = m_window->findChild<CalloutWindow *>();
    ASSERT_TRUE(callout && callout->isVisible()) << "without a bar";
    EXPECT_EQ(callout->accessibleName(), u"DROP_NO_FILE %@"_qs);
    m_screen->openPhotos({photo(u"a.png"_qs, {60, 40}), photo(u"b.png"_qs, {60, 40})});
    EXPECT_TRUE(QTest::qWaitFor([this] { return said().startsWith(u"ONE_PHOTO_AT_A_TIME"_qs); }));
    EXPECT_EQ(view().vwBottom->txtPixelSize(), u"PIXEL_SIZE 60"_qs);
    m_screen->session().setLastExportedImage(m_screen->inputImage());
    const std::pair<QString, QString> drops[] = {{{}, u"DROP_NO_FILE"_qs},
                                                 {m_folder.filePath(u"none"_qs), u"REFUSED_NO_SUCH_FILE"_qs},
                                                 {file(u"x.txt"_qs, "x"), u"REFUSED_NOT_A_PICTURE"_qs}};
    for (const auto &[path, key] : drops) {
        m_screen->sayWhyRefused(path);
        EXPECT_TRUE(said().startsWith(key)) << qPrintable(said());
    }
    m_screen->photoDraggedWithPath(photo(u"b.png"_qs, {60, 40}));
    EXPECT_TRUE(said().startsWith(u"DROP_AFTER_EXPORT"_qs));
    auto *read = m_screen->view()->findChild<Notices *>()->findChild<QTimer *>();
    EXPECT_EQ(read->interval(), 15000);
    read->setInterval(0);
    EXPECT_TRUE(QTest::qWaitFor([this] { return said().isEmpty(); }));
    m_screen->btnAddPhotoTapped(); // the panel opens one all the same
    auto *files = m_window->findChild<QFileDialog *>();
    ASSERT_NE(files, nullptr);
    files->selectFile(m_folder.filePath(u"b.png"_qs));
    static_cast<QDialog *>(files)->accept();
    EXPECT_TRUE(QTest::qWaitFor([this] { return m_screen->imageUrl().endsWith(u"/b.png"_qs); }));
}

TEST_F(Editing, AFileOrAPictureIsPasted)
{
    openPhoto();
    auto *files = new QMimeData;
    const QString copied = photo(u"copied.png"_qs, {60, 40});
    files->setUrls({QUrl::fromLocalFile(copied)});
    QGuiApplication::clipboard()->setMimeData(files);
    perform(MenuCommand::PastePhoto);
    EXPECT_TRUE(QTest::qWaitFor([&] { return m_screen->imageUrl() == copied; }));
    QFile bytes(copied); // as from another program
    ASSERT_TRUE(bytes.open(QIODevice::ReadOnly));
    auto *offered = new QMimeData;
    offered->setData(u"image/svg+xml"_qs, "<svg/>");
    offered->setData(u"image/x-tiff"_qs, bytes.readAll());
    QGuiApplication::clipboard()->setMimeData(offered);
    perform(MenuCommand::PastePhoto);
    EXPECT_TRUE(QTest::qWaitFor([&] { return m_screen->imageUrl().endsWith(u"/Clipboard.tiff"_qs); }));
    const QString path = m_screen->imageUrl();
    QGuiApplication::clipboard()->setText(u"words"_qs);
    perform(MenuCommand::PastePhoto);
    EXPECT_TRUE(said().startsWith(u"CLIPBOARD_WITHOUT_PHOTO"_qs));
    m_screen.reset();
    EXPECT_FALSE(QFile::exists(path));
}

} // namespace

} // namespace hazelmark
