// Saving and sharing from the main screen: what rests meanwhile, what is shown, what is left.
#include "../support/NotedWorkspace.h"
#include "ScreenFixture.h"

#include "BarProgressIndicator.h"
#include "FloatSlider.h"
#include "IMGButton.h"
#include "NotificationNames.h"
#include "RenderCommand.h"
#include "SavePanel.h"
#include "SummaryBar.h"

#include <QDialogButtonBox>
#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QLineEdit>
#include <QPushButton>
#include <QSignalSpy>
#include <QTest>

namespace hazelmark {

namespace {

class Export : public ScreenFixture
{
protected:
    /// A photo that is dark on the left and bright on the right, painted over its middle.
    void openAndPaint()
    {
        start();
        QImage image(600, 400, QImage::Format_RGB32);
        for (int x = 0; x < 600; ++x) {
            for (int y = 0; y < 400; ++y)
                image.setPixelColor(x, y, x < 300 ? QColor(20, 30, 40) : QColor(220, 210, 200));
        }
        const QString path = m_folder.filePath(QStringLiteral("photo.png"));
        ASSERT_TRUE(image.save(path, "PNG"));
        open(path);
        stroke({0.45, 0.5}, {0.55, 0.5});
        ASSERT_TRUE(QTest::qWaitFor([&] { return isSoft(shownAt({0.499, 0.5})); })) << "where it was painted";
    }
    static bool isSoft(const QColor &edge) { return edge.red() > 40 && edge.red() < 200; }
    SavePanel *savePanel() const { return m_screen->exportFlow()->savePanel(); }
    void save(const QString &path)
    {
        post(kNotificationSavePhotoFromMenuTapped);
        ASSERT_TRUE(QTest::qWaitFor([&] { return savePanel() && savePanel()->isVisible(); }));
        savePanel()->nameField()->setText(path);
        QTest::mouseClick(savePanel()->findChild<QDialogButtonBox *>()->button(QDialogButtonBox::Save), Qt::LeftButton);
        if (savePanel())
            QTest::mouseClick(savePanel()->replaceButton(), Qt::LeftButton);
        ASSERT_TRUE(isExporting());
    }
    void share()
    {
        QTest::mouseClick(view().btnShareService, Qt::LeftButton);
        SharePicker &picker = m_screen->exportFlow()->sharePicker();
        ASSERT_TRUE(QTest::qWaitFor([&] { return picker.isOpen(); }));
        picker.menu()->close();
        ASSERT_TRUE(QTest::qWaitFor([&] { return !picker.isOpen(); }));
    }
    bool opens(const QString &path)
    {
        return QTest::qWaitFor([&] { return m_workspace.m_opened.contains(QFileInfo(path).fileName()); });
    }
    void waitForTheEnd()
    {
        ASSERT_TRUE(QTest::qWaitFor([&] { return !isExporting(); }));
    }
    bool isExporting() const { return m_screen->session().state() == Session::State::Exporting; }
    bool isMarked() const { return m_screen->view()->findChild<QWidget *>(QStringLiteral("unsavedMark"))->isVisible(); }

    const int kAfterExport = 250; ///< milliseconds until the result is opened
    NotedWorkspace m_workspace;
};

} // namespace

TEST_F(Export, SaysWhatItWritesAndIsSavedUntilTheNextStroke)
{
    openAndPaint();
    EXPECT_TRUE(isMarked());
    EXPECT_EQ(shownAt({0.49, 0.1}), QColor(20, 30, 40)) << "hard where it was not painted";
    const QString path = m_folder.filePath(QStringLiteral("out.tiff"));
    save(m_folder.filePath(QStringLiteral("out.TIF")));
    waitForTheEnd();
    EXPECT_EQ(m_screen->exportFlow()->pathToExportImage(), path);
    EXPECT_FALSE(isMarked());
    EXPECT_EQ(view().vwBottom->exportText(), QStringLiteral("EXPORTED out.tiff"));
    EXPECT_TRUE(opens(path));

    // A redraw changes nothing of it, a stroke does.
    resizeWindow({1000, 700});
    post(kNotificationWindowEndResizing);
    waitForPreviews(m_shown + 1);
    EXPECT_FALSE(isMarked());
    stroke({0.45, 0.7}, {0.55, 0.7});
    EXPECT_TRUE(QTest::qWaitFor([&] { return isMarked(); }));
}

TEST_F(Export, OnlyWhatThisExportWroteIsOpenedAndTheRestGoesOnAllTheSame)
{
    m_work.exporting.write = [real = m_work.exporting.write](const auto &settings, const QString &path,
                                                             const auto &image) -> Outcome<Done> {
        if (path.endsWith(QLatin1String("full.png")))
            return Failure{Failure::Reason::DiskFull, path, {}};
        return real(settings, path, image);
    };
    openAndPaint();
    const QString full = file(QStringLiteral("full.png"), "an old file");
    save(full);
    waitForTheEnd();
    letTimersFire(kAfterExport);
    EXPECT_EQ(m_workspace.m_opened, QStringList());
    EXPECT_TRUE(sheetText().isEmpty()) << "it is in the log";
    QSignalSpy started(&m_screen->session(), &Session::exportStarted);
    share();
    EXPECT_EQ(started.size(), 0) << "the result is there already";
    m_screen->session().setLastExportedImage(nullptr);
    share();
    EXPECT_EQ(started.size(), 1);
    letTimersFire(kAfterExport);
    EXPECT_EQ(m_workspace.m_opened, QStringList());
    const QString path = m_folder.filePath(QStringLiteral("out.png"));
    save(path);
    waitForTheEnd();
    EXPECT_TRUE(opens(path));
}

TEST_F(Export, APhotoThatIsNoLongerTheOneThatWasOpenedIsNeitherSavedNorShared)
{
    openAndPaint();
    for (const bool gone : {false, true}) {
        QTest::qSleep(15); // the file system's clock
        gone ? void(QFile::remove(m_screen->imageUrl())) : void(photo(QStringLiteral("photo.png"), {600, 400}));
        for (IMGButton *button : {view().btnExport, view().btnShareService}) {
            QTest::mouseClick(button, Qt::LeftButton);
            EXPECT_EQ(answeredSheet(), (button == view().btnExport ? QStringLiteral("ERROR_CANT_EXPORT_IMAGE %@|\n ")
                                                                   : QStringLiteral("ERROR_CANT_SHARE_IMAGE %@|\n ")) +
                                           (gone ? QStringLiteral("ERROR_PHOTO_NOT_AVAILABLE %@")
                                                 : QStringLiteral("REFUSED_SOURCE_CHANGED photo.png")));
            EXPECT_FALSE(button->isChecked() || isExporting() || savePanel());
        }
    }
}

TEST_F(Export, TheCommandLineMakesTheSameFile)
{
    openAndPaint();
    panel().slider(Setting::BlurAmount)->setValueByUser(80);
    panel().slider(Setting::Vignette)->setValueByUser(0.05);
    const QString path = m_folder.filePath(QStringLiteral("window.png"));
    save(path);
    waitForTheEnd();

    const QJsonObject strokes{
        {QStringLiteral("canvas"), QJsonArray{canvas().canvasSize().width(), canvas().canvasSize().height()}},
        {QStringLiteral("steps"), QJsonArray::fromVariantList(canvas().paintSession()->dataArray())}};
    RenderRequest request;
    request.photo = m_screen->imageUrl();
    request.strokes = file(QStringLiteral("strokes.json"), QJsonDocument(strokes).toJson());
    request.output = m_folder.filePath(QStringLiteral("line.png"));
    request.blur = 80;
    request.vignette = 0.05f;
    ASSERT_EQ(runRender(request), 0);
    QFile window(path), line(request.output);
    ASSERT_TRUE(window.open(QIODevice::ReadOnly) && line.open(QIODevice::ReadOnly));
    EXPECT_TRUE(window.readAll() == line.readAll());
}

TEST_F(Export, EverythingThatWouldDisturbItRests)
{
    Gate gate;
    m_work.exporting.render = [&gate](const ExportJob &job) {
        job.progress(0.5);
        gate.pass();
        return job.run();
    };
    openAndPaint();
    view().btnShareService->setFocus();
    save(m_folder.filePath(QStringLiteral("out.png")));
    EXPECT_TRUE(m_application.isUiDisabled());
    EXPECT_EQ(m_window->focusWidget(), nullptr) << "a key would close the window";
    EXPECT_FALSE(view().btnExport->isEnabled() || view().btnShareService->isEnabled() ||
                 view().btnAddPhoto->isEnabled() || panel().isEnabled() || canvas().isEnabled());
    EXPECT_TRUE(view().progressBar->isVisible());
    EXPECT_TRUE(QTest::qWaitFor([&] { return view().progressBar->value() == 0.5; }));
    EXPECT_EQ(view().vwBottom->exportText(), QStringLiteral("EXPORTING out.png"));
    const QString before = m_screen->imageUrl();
    m_screen->photoDraggedWithPath(photo(QStringLiteral("other.png"), {100, 100}));
    m_screen->btnProcessTapped(); // a preview clears the busy flag, and frees nothing
    waitForPreviews(m_shown + 1);
    EXPECT_FALSE(m_screen->isRunningAlgorithm());
    post(kNotificationSavePhotoFromMenuTapped);
    EXPECT_FALSE(savePanel());
    gate.open();
    waitForTheEnd();
    EXPECT_EQ(m_screen->imageUrl(), before);
    EXPECT_TRUE(panel().isEnabled() && view().btnExport->isEnabled());
    EXPECT_EQ(m_window->focusWidget(), view().btnShareService);
    EXPECT_FALSE(m_application.isUiDisabled());
}

} // namespace hazelmark
