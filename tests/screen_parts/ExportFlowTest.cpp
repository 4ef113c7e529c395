// Saving and sharing as a person meets it: panel, picker, alerts, and what follows. The export itself: tests of
// Session.
#include "ExportFlow.h"

#include "AlertSheet.h"
#include "Bundle.h"
#include "Decoder.h"
#include "FakeApplication.h"
#include "NotificationCenter.h"
#include "NotificationNames.h"
#include "PaintCanvas.h"
#include "PhotoFile.h"
#include "ProcessWide.h"
#include "SavePanel.h"
#include "Session.h"
#include "TestPhotos.h"
#include "UserDefaults.h"
#include "Workspace.h"

#include <QDialogButtonBox>
#include <QDir>
#include <QFile>
#include <QLineEdit>
#include <QPushButton>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QTest>

#include <gtest/gtest.h>

#include <memory>

using namespace hazelmark;

namespace {

class OpeningWorkspace : public Workspace
{
public:
    void openUrl(const QUrl &url, Completion) override { m_opened << url.toLocalFile(); }

    QStringList m_opened;
};

class ExportFlowTest : public testing::Test
{
protected:
    ExportFlowTest()
    {
        QDir(m_folder.path()).mkpath(QStringLiteral("out"));
        m_window.resize(600, 400);
        m_window.show();
        m_defaults.setString(QStringLiteral("appVersion"),
                             Bundle::infoDictionary().value(QStringLiteral("CFBundleVersion")).toString());
        start({});
    }

    void start(const PhotoExport::Work &work)
    {
        m_flow.reset();
        m_session = std::make_unique<Session>(m_canvas, Session::Work{.exporting = work});
        m_ended = std::make_unique<QSignalSpy>(m_session.get(), &Session::exportEnded);
        openPhoto();
        m_flow = std::make_unique<ExportFlow>(*m_session, m_application, m_window, m_button,
                                              [] { return CoreFilterObject(); });
    }
    void openPhoto()
    {
        OpenPhoto photo;
        photo.record = std::make_shared<PhotoFile>(writeTestPhoto(m_folder.filePath(QStringLiteral("photo.png"))));
        m_session->setPhoto(photo);
    }
    QString out(const char *name) const { return m_folder.filePath(QStringLiteral("out/") + QLatin1String(name)); }
    void openPanel()
    {
        m_flow->btnExportDenoisedImageTapped();
        ASSERT_TRUE(QTest::qWaitFor([&] { return m_flow->savePanel() && m_flow->savePanel()->isVisible(); }));
        EXPECT_TRUE(m_flow->isSaving());
    }
    void exportTo(const QString &path)
    {
        openPanel();
        SavePanel *panel = m_flow->savePanel();
        panel->nameField()->setText(path);
        QTest::mouseClick(panel->findChild<QDialogButtonBox *>()->button(QDialogButtonBox::Save), Qt::LeftButton);
        if (panel->replaceButton()->isVisible())
            QTest::mouseClick(panel->replaceButton(), Qt::LeftButton);
        EXPECT_FALSE(m_flow->isSaving());
        ASSERT_TRUE(m_ended->size() > 0 || m_ended->wait());
        m_ended->clear();
    }
    void share()
    {
        m_flow->btnSocialShareImageTapped();
        ASSERT_TRUE(QTest::qWaitFor([&] { return pickerIsOpen(); }));
        m_flow->sharePicker().menu()->close();
    }
    bool opens(const QString &path)
    {
        return QTest::qWaitFor([&] { return m_workspace.m_opened.contains(path); }, 500);
    }
    bool pickerIsOpen() { return m_flow->sharePicker().menu() && m_flow->sharePicker().menu()->isVisible(); }
    AlertSheet *alert() { return qobject_cast<AlertSheet *>(SheetQueue::forWindow(m_window).current()); }

    QTemporaryDir m_folder;
    UserDefaults m_defaults{m_folder.filePath(QStringLiteral("defaults.conf"))};
    ProcessWide<UserDefaults>::Replacement m_ownDefaults{m_defaults};
    OpeningWorkspace m_workspace;
    ProcessWide<Workspace>::Replacement m_ownWorkspace{m_workspace};
    FakeApplication m_application;
    PaintCanvas m_canvas;
    QWidget m_window;
    QPushButton m_button{&m_window};
    std::unique_ptr<Session> m_session;
    std::unique_ptr<QSignalSpy> m_ended;
    std::unique_ptr<ExportFlow> m_flow;
};

} // namespace

TEST_F(ExportFlowTest, WritesTheFileThatIsNamedInThePanelAndOpensIt)
{
    int posted = 0;
    const auto token = NotificationCenter::defaultCenter().addObserver(kNotificationSaveChnagesUnsaved,
                                                                       [&](const QVariantMap &) { ++posted; });
    exportTo(out("a.TIF"));
    EXPECT_EQ(posted, 1);
    EXPECT_FALSE(m_flow->isExportingPhoto());
    EXPECT_EQ(m_flow->arrformatsSupportedByIM().first(), QStringLiteral("png"));
    EXPECT_EQ(m_flow->fileTypeToExportImage(), QStringLiteral("tiff"));
    EXPECT_EQ(m_flow->pathToExportImage(), out("a.tiff"));
    const Outcome<Picture> written = decodePicture(out("a.tiff"));
    ASSERT_TRUE(written);
    EXPECT_EQ(written->pixels.pixelColor(60, 20), testPicture().pixelColor(60, 20));
    EXPECT_TRUE(opens(out("a.tiff")));
    EXPECT_EQ(m_application.m_rateAlerts, 0) << "this version was answered";

    m_defaults.setString(QStringLiteral("appVersion"), QStringLiteral("0.9"));
    openPanel();
    SavePanel *panel = m_flow->savePanel();
    EXPECT_EQ(panel->nameField()->text(), QStringLiteral("photo.png"));
    EXPECT_EQ(panel->directory().absolutePath(), m_folder.filePath(QStringLiteral("out"))) << "the last export's";
    m_flow->btnExportDenoisedImageTapped();
    EXPECT_EQ(m_flow->savePanel(), panel) << "no second one";
    panel->reject();
    ASSERT_TRUE(QTest::qWaitFor([&] { return m_flow->savePanel() == nullptr; }));
    EXPECT_EQ(m_session->state(), Session::State::Editing);
    exportTo(out("b.png"));
    EXPECT_EQ(m_application.m_rateAlerts, 0) << "a moment later";
    EXPECT_TRUE(QTest::qWaitFor([&] { return m_application.m_rateAlerts == 1; }));
}

TEST_F(ExportFlowTest, RestsWhileARenderRuns)
{
    m_session->setIsRunningAlgorithm(true);
    m_flow->btnExportDenoisedImageTapped();
    m_flow->btnSocialShareImageTapped();
    QTest::qWait(30);
    EXPECT_FALSE(m_flow->isSaving() || m_flow->isSharing());
    EXPECT_EQ(m_session->state(), Session::State::Editing);
}

TEST_F(ExportFlowTest, AWriteThatFailsIsInTheLogAndNowhereElse)
{
    PhotoExport::Work work;
    work.write = [](const auto &, const QString &path, const auto &) -> Outcome<Done> {
        return Failure{Failure::Reason::DiskFull, path, {}};
    };
    start(work);
    writeTestPhoto(out("a.png"));
    testing::internal::CaptureStderr();
    exportTo(out("a.png"));
    EXPECT_NE(testing::internal::GetCapturedStderr().find("a.png"), std::string::npos);
    EXPECT_FALSE(opens(out("a.png"))) << "an old file is not shown for the new one";
    EXPECT_EQ(alert(), nullptr);
}

TEST_F(ExportFlowTest, SharesWithoutAFileAndASecondTimeWithoutARender)
{
    share();
    EXPECT_FALSE(m_flow->isSocialShareTapped());
    EXPECT_EQ(m_ended->size(), 1);
    share();
    EXPECT_EQ(m_ended->size(), 1);
    EXPECT_FALSE(opens(QString())) << "nothing was written so far";
    m_ended->clear();
    exportTo(out("a.png"));
    ASSERT_TRUE(opens(out("a.png")));
    m_workspace.m_opened.clear();
    m_session->setLastExportedImage(nullptr); // the preview changed
    share();
    EXPECT_TRUE(opens(out("a.png"))) << "the export before it";
}

TEST_F(ExportFlowTest, APhotoThatIsNoLongerTheOneThatWasOpenedIsNeitherExportedNorShared)
{
    for (const bool gone : {false, true}) {
        const QString path = m_session->photo().path();
        QTest::qWait(15); // the file system's clock
        gone ? void(QFile::remove(path)) : void(writeTestPhoto(path));
        for (const bool sharing : {false, true}) {
            sharing ? m_flow->btnSocialShareImageTapped() : m_flow->btnExportDenoisedImageTapped();
            ASSERT_TRUE(QTest::qWaitFor([&] { return alert() != nullptr; }));
            EXPECT_EQ(alert()->messageText(),
                      QLatin1String(sharing ? "ERROR_CANT_SHARE_IMAGE<%@>" : "ERROR_CANT_EXPORT_IMAGE<%@>"));
            EXPECT_EQ(alert()->informativeText(), gone ? QStringLiteral("\n ERROR_PHOTO_NOT_AVAILABLE<%@>")
                                                       : QStringLiteral("\n REFUSED_SOURCE_CHANGED<photo.png>"));
            EXPECT_FALSE(m_flow->isSaving() || m_flow->isSharing());
            alert()->accept();
            ASSERT_TRUE(QTest::qWaitFor([&] { return alert() == nullptr; }));
        }
    }
}
