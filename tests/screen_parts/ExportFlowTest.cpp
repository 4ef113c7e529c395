#include "ExportFlow.h"

#include "AlertSheet.h"
#include "Bundle.h"
#include "Decoder.h"
#include "FakeApplication.h"
#include "FloatSlider.h"
#include "NotificationCenter.h"
#include "NotificationNames.h"
#include "PhotoFile.h"
#include "ProcessWide.h"
#include "SavePanel.h"
#include "TestPhotos.h"
#include "UserDefaults.h"
#include "Workspace.h"

#include <QDialogButtonBox>
#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QLineEdit>
#include <QPushButton>
#include <QSemaphore>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QTest>
#include <QWidget>

#include <gtest/gtest.h>

#include <memory>

using namespace hazelmark;

namespace {

class OpeningWorkspace : public Workspace
{
public:
    void openUrl(const QUrl &url, Completion completion) override
    {
        m_opened << url.toLocalFile();
        if (completion)
            completion(true);
    }

    QStringList m_opened;
};

class FakeScreen : public ExportScreen
{
public:
    bool isRunningAlgorithm() const override { return m_running; }
    void setIsRunningAlgorithm(bool running) override { m_running = running; }
    const QString &imageUrl() const override { return m_imageUrl; }
    const PhotoImagePtr &maskImage() const override { return m_mask; }
    const PhotoImagePtr &lastExportedImage() const override { return m_lastExported; }
    void setLastExportedImage(const PhotoImagePtr &image) override { m_lastExported = image; }
    void setExportLocked(bool locked) override { m_locked = locked; }
    CoreFilterObject createPresetObjectFromSettingWithTitle(const QString &) const override { return m_settings; }
    void setExportButtonOff() override { ++m_buttonOff; }
    void closeColorPanel() override { ++m_colorPanelClosed; }

    QString m_imageUrl;
    PhotoImagePtr m_mask;
    PhotoImagePtr m_lastExported;
    CoreFilterObject m_settings;
    bool m_running = false;
    bool m_locked = false;
    int m_buttonOff = 0;
    int m_colorPanelClosed = 0;
};

QString version()
{
    return Bundle::infoDictionary().value(QStringLiteral("CFBundleVersion")).toString();
}

class ExportFlowTest : public testing::Test
{
protected:
    ExportFlowTest()
    {
        QDir(m_folder.path()).mkpath(QStringLiteral("out"));
        m_window.resize(600, 400);
        m_window.show();
        m_defaults.setString(QStringLiteral("appVersion"), version()); // answered: no prompt
        openPhoto(QStringLiteral("photo.png"));
        makeFlow({});
    }

    void openPhoto(const QString &name)
    {
        m_screen.m_imageUrl = writeTestPhoto(m_folder.filePath(name));
        m_application.setSelectedImageFile(std::make_shared<PhotoFile>(m_screen.m_imageUrl));
    }
    void makeFlow(const ExportFlow::Work &work)
    {
        m_flow = std::make_unique<ExportFlow>(m_screen, m_application, m_window, m_button, work);
        m_ended = std::make_unique<QSignalSpy>(m_flow.get(), &ExportFlow::exportEnded);
    }
    QString out(const char *name) const { return m_folder.filePath(QStringLiteral("out/") + QLatin1String(name)); }
    void openPanel()
    {
        m_flow->btnExportDenoisedImageTapped();
        ASSERT_TRUE(QTest::qWaitFor([&] { return m_flow->savePanel() && m_flow->savePanel()->isVisible(); }));
    }
    AlertSheet *alert() { return qobject_cast<AlertSheet *>(SheetQueue::forWindow(m_window).current()); }
    void chooseInPanel(const QString &path)
    {
        SavePanel *panel = m_flow->savePanel();
        ASSERT_TRUE(panel && panel->isVisible());
        panel->nameField()->setText(path);
        QTest::mouseClick(panel->findChild<QDialogButtonBox *>()->button(QDialogButtonBox::Save), Qt::LeftButton);
        EXPECT_EQ(panel->message(), QString());
    }
    void exportTo(const QString &path)
    {
        openPanel();
        chooseInPanel(path);
        ASSERT_TRUE(m_ended->size() > 0 || m_ended->wait());
        m_ended->clear();
    }
    QString writtenPath() const { return m_ended->last().at(0).toString(); }
    bool opens(const QString &path)
    {
        return QTest::qWaitFor([&] { return m_workspace.m_opened.contains(path); });
    }
    bool pickerIsOpen() { return m_flow->sharePicker().menu() && m_flow->sharePicker().menu()->isVisible(); }

    QTemporaryDir m_folder;
    UserDefaults m_defaults{m_folder.filePath(QStringLiteral("defaults.conf"))};
    ProcessWide<UserDefaults>::Replacement m_ownDefaults{m_defaults};
    OpeningWorkspace m_workspace;
    ProcessWide<Workspace>::Replacement m_ownWorkspace{m_workspace};
    FakeApplication m_application;
    FakeScreen m_screen;
    QWidget m_window;
    QWidget m_button{&m_window};
    std::unique_ptr<ExportFlow> m_flow;
    std::unique_ptr<QSignalSpy> m_ended;
};

} // namespace

TEST_F(ExportFlowTest, WritesTheFileAndOpensIt)
{
    int posted = 0;
    const auto token = NotificationCenter::defaultCenter().addObserver(kNotificationSaveChnagesUnsaved,
                                                                       [&](const QVariantMap &) { ++posted; });
    // Everything painted, darkened by a stop.
    QImage mask(20, 15, QImage::Format_RGBX8888);
    mask.fill(Qt::green);
    m_screen.m_mask = PhotoImage::fromBitmap(mask);
    m_screen.m_settings.blurAmount = 0;
    m_screen.m_settings.vignetteAmount = 0.1f;
    QSignalSpy progress(m_flow.get(), &ExportFlow::progressChanged);

    openPanel();
    EXPECT_EQ(m_flow->arrformatsSupportedByIM().first(), QStringLiteral("png"));
    EXPECT_EQ(m_flow->savePanel()->nameField()->text(), QStringLiteral("photo.png"));
    EXPECT_EQ(m_screen.m_buttonOff, 0);
    chooseInPanel(out("a.TIF"));
    EXPECT_EQ(m_screen.m_buttonOff, 1);
    EXPECT_TRUE(m_screen.m_locked && m_screen.m_running && m_flow->isExporting());
    EXPECT_EQ(posted, 1);
    EXPECT_FALSE(m_flow->isExportingPhoto());
    EXPECT_EQ(m_flow->fileTypeToExportImage(), QStringLiteral("tiff"));
    EXPECT_EQ(m_flow->pathToExportImage(), out("a.tiff"));
    ASSERT_TRUE(m_ended->wait());
    EXPECT_FALSE(m_screen.m_locked || m_screen.m_running || m_flow->isExporting());
    EXPECT_EQ(writtenPath(), out("a.tiff"));
    EXPECT_EQ(progress.first().first().toDouble(), 0);
    EXPECT_EQ(progress.last().first().toDouble(), 0);

    const Outcome<Picture> written = decodePicture(out("a.tiff"));
    ASSERT_TRUE(written);
    EXPECT_EQ(written->pixels.size(), QSize(64, 48));
    const QColor before = testPicture().pixelColor(60, 20);
    const QColor after = written->pixels.pixelColor(60, 20);
    EXPECT_LT(after.red(), before.red() - 40);
    ASSERT_TRUE(m_screen.m_lastExported);
    EXPECT_EQ(m_screen.m_lastExported->pixelSize(), QSize(64, 48));
    EXPECT_TRUE(opens(out("a.tiff")));
    EXPECT_EQ(m_application.m_rateAlerts, 0);
}

TEST_F(ExportFlowTest, ThePhotosFolderIsLeftForTheLastExports)
{
    exportTo(out("a.png"));
    openPanel();
    EXPECT_EQ(m_flow->savePanel()->directory().absolutePath(), m_folder.filePath(QStringLiteral("out")));
}

TEST_F(ExportFlowTest, RestsWhileARenderRuns)
{
    m_screen.m_running = true;
    m_flow->btnExportDenoisedImageTapped();
    EXPECT_EQ(m_flow->savePanel(), nullptr);
    EXPECT_EQ(m_screen.m_buttonOff, 1);
    m_flow->btnSocialShareImageTapped();
    EXPECT_FALSE(m_flow->isExporting());
    EXPECT_EQ(m_screen.m_colorPanelClosed, 1);
}

TEST_F(ExportFlowTest, ASecondTapOpensNoSecondPanel)
{
    m_flow->btnExportDenoisedImageTapped();
    openPanel();
    SavePanel *first = m_flow->savePanel();
    m_flow->btnExportDenoisedImageTapped();
    EXPECT_EQ(m_flow->savePanel(), first);
    first->reject();
    EXPECT_TRUE(m_workspace.m_opened.isEmpty());
    EXPECT_FALSE(m_flow->isExporting());
    EXPECT_TRUE(QTest::qWaitFor([&] { return m_flow->savePanel() == nullptr; }));
}

TEST_F(ExportFlowTest, TakesAlongWhatItNeedsWhenItStarts)
{
    QSemaphore go;
    ExportFlow::Work work;
    work.render = [&](const ExportJob &job) {
        go.acquire();
        return job.run();
    };
    makeFlow(work);
    QSignalSpy started(m_flow.get(), &ExportFlow::exportStarted);
    openPanel();
    chooseInPanel(out("a.png"));
    ASSERT_EQ(started.size(), 1);
    // A preview clears the busy flag; what rests, rests on the export's own lock.
    m_screen.setIsRunningAlgorithm(false);
    m_flow->btnExportDenoisedImageTapped();
    m_flow->btnSocialShareImageTapped();
    EXPECT_TRUE(m_flow->isExporting() && m_screen.m_locked);
    EXPECT_FALSE(m_flow->savePanel() && m_flow->savePanel()->isVisible());
    openPhoto(QStringLiteral("other.jpg"));
    go.release();
    ASSERT_TRUE(m_ended->wait());
    const Outcome<Picture> written = decodePicture(out("a.png"));
    ASSERT_TRUE(written);
    EXPECT_EQ(written->pixels.pixelColor(60, 20), testPicture().pixelColor(60, 20)) << "the first photo, losslessly";
    EXPECT_EQ(writtenPath(), out("a.png"));
}

TEST_F(ExportFlowTest, AWriteThatFailsIsInTheLogAndNowhereElse)
{
    writeTestPhoto(out("a.png"));
    QFile old(out("a.png"));
    ASSERT_TRUE(old.open(QIODevice::ReadOnly));
    const QByteArray before = old.readAll();
    ExportFlow::Work work;
    work.write = [](const auto &, const QString &path, const auto &) -> Outcome<Done> {
        return Failure{Failure::Reason::DiskFull, path, {}};
    };
    makeFlow(work);
    openPanel();
    m_flow->savePanel()->nameField()->setText(out("a.png"));
    QTest::mouseClick(m_flow->savePanel()->findChild<QDialogButtonBox *>()->button(QDialogButtonBox::Save),
                      Qt::LeftButton);
    testing::internal::CaptureStderr();
    QTest::mouseClick(m_flow->savePanel()->replaceButton(), Qt::LeftButton);
    ASSERT_TRUE(m_ended->wait());
    EXPECT_NE(testing::internal::GetCapturedStderr().find("a.png"), std::string::npos);
    EXPECT_EQ(writtenPath(), QString());
    EXPECT_FALSE(opens(out("a.png"))) << "an old file is not shown for the new one";
    old.seek(0);
    EXPECT_EQ(old.readAll(), before);
    EXPECT_EQ(SheetQueue::forWindow(m_window).waiting(), 0);
}

TEST_F(ExportFlowTest, APhotoThatIsGoneEndsTheExportWithoutAFile)
{
    openPanel();
    QFile::remove(m_screen.m_imageUrl);
    chooseInPanel(out("a.png"));
    ASSERT_TRUE(m_ended->wait());
    EXPECT_FALSE(QFile::exists(out("a.png")));
    EXPECT_EQ(writtenPath(), QString());
    EXPECT_FALSE(m_screen.m_lastExported);
    EXPECT_FALSE(m_screen.m_locked);
    EXPECT_EQ(QDir(m_folder.filePath(QStringLiteral("out")))
                  .entryList(QDir::AllEntries | QDir::NoDotAndDotDot | QDir::Hidden),
              QStringList());
}

TEST_F(ExportFlowTest, ClosingWaitsForTheFile)
{
    ExportFlow::Work work;
    work.render = [](const ExportJob &job) {
        QTest::qSleep(100);
        return job.run();
    };
    makeFlow(work);
    openPanel();
    chooseInPanel(out("a.png"));
    m_flow.reset();
    EXPECT_TRUE(decodePicture(out("a.png"))) << "whole, since it had begun";
    EXPECT_TRUE(m_screen.m_locked) << "nothing of the screen is touched afterwards";
    m_ended.reset();
}

TEST_F(ExportFlowTest, AsksForARatingUntilThisVersionWasAnswered)
{
    m_defaults.setString(QStringLiteral("appVersion"), QStringLiteral("0.9"));
    exportTo(out("a.png"));
    EXPECT_EQ(m_application.m_rateAlerts, 0) << "a moment later";
    EXPECT_TRUE(QTest::qWaitFor([&] { return m_application.m_rateAlerts == 1; }));
}

TEST_F(ExportFlowTest, SharesWithoutAFileAndASecondTimeWithoutARender)
{
    m_flow->btnSocialShareImageTapped();
    ASSERT_TRUE(QTest::qWaitFor([&] { return m_flow->isExporting(); }));
    EXPECT_TRUE(m_flow->isSocialShareTapped() && m_flow->isExportingPhoto());
    ASSERT_TRUE(m_ended->wait());
    EXPECT_TRUE(pickerIsOpen());
    EXPECT_FALSE(m_flow->isSocialShareTapped());
    EXPECT_EQ(writtenPath(), QString());
    ASSERT_TRUE(m_screen.m_lastExported);
    m_flow->sharePicker().menu()->close();
    m_ended->clear();
    m_flow->btnSocialShareImageTapped();
    EXPECT_TRUE(QTest::qWaitFor([&] { return pickerIsOpen(); }));
    EXPECT_FALSE(m_flow->isExporting());
    // Nothing was written so far, so there is nothing to open; an empty path never is.
    QTest::qWait(300);
    EXPECT_TRUE(m_workspace.m_opened.isEmpty());
}

TEST_F(ExportFlowTest, AShareOpensTheExportBeforeIt)
{
    exportTo(out("a.png"));
    ASSERT_TRUE(opens(out("a.png")));
    m_workspace.m_opened.clear();
    m_screen.m_lastExported.reset(); // the preview changed
    m_flow->btnSocialShareImageTapped();
    ASSERT_TRUE(m_ended->wait());
    EXPECT_TRUE(opens(out("a.png")));
}

/// Strokes belong to the pixels that they were painted on.
TEST_F(ExportFlowTest, APhotoThatIsNoLongerTheOneThatWasOpenedIsNeitherExportedNorShared)
{
    const QString path = m_screen.m_imageUrl;
    const QByteArray content = [&] {
        QFile file(path);
        EXPECT_TRUE(file.open(QIODevice::ReadOnly));
        return file.readAll();
    }();
    const auto put = [](const QString &path, const QByteArray &bytes) {
        QFile file(path);
        EXPECT_TRUE(file.open(QIODevice::WriteOnly) && file.write(bytes) == bytes.size());
    };
    const QString changed = QStringLiteral("\n REFUSED_SOURCE_CHANGED<photo.png>");
    const QString gone = QStringLiteral("\n ERROR_PHOTO_NOT_AVAILABLE<%@>");
    const std::tuple<const char *, std::function<void()>, QString> changes[]{
        {"rewritten, as long as before", [&] { put(path, content); }, changed},
        {"replaced by another",
         [&] {
             put(path + QStringLiteral("~"), content);
             QFile::remove(path);
             QFile::rename(path + QStringLiteral("~"), path);
         },
         changed},
        {"gone", [&] { QFile::remove(path); }, gone},
    };
    for (const auto &[what, change, message] : changes) {
        SCOPED_TRACE(what);
        openPhoto(QStringLiteral("photo.png"));
        QTest::qWait(15); // the file system's clock
        change();
        for (const bool sharing : {false, true}) {
            sharing ? m_flow->btnSocialShareImageTapped() : m_flow->btnExportDenoisedImageTapped();
            ASSERT_TRUE(QTest::qWaitFor([&] { return alert() != nullptr; }));
            EXPECT_EQ(alert()->messageText(),
                      QLatin1String(sharing ? "ERROR_CANT_SHARE_IMAGE<%@>" : "ERROR_CANT_EXPORT_IMAGE<%@>"));
            EXPECT_EQ(alert()->informativeText(), message);
            EXPECT_FALSE(m_flow->isSaving() || m_flow->isSharing() || m_flow->isExporting());
            alert()->accept();
            ASSERT_TRUE(QTest::qWaitFor([&] { return alert() == nullptr; }));
        }
    }
}
