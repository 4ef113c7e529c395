#include "SavePanel.h"
#include "ProcessWide.h"
#include "ViewSettings.h"

#include "FakeApplication.h"
#include "FloatSlider.h"
#include "TestPhotos.h"

#include <QComboBox>
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

class SavePanelTest : public testing::Test
{
protected:
    void open(const QString &photoName, QSize pixelSize = {64, 48})
    {
        m_photo = writeTestPhoto(m_folder.filePath(photoName));
        QDir(m_folder.path()).mkpath(QStringLiteral("out"));
        const QString extension = photoName.section(QLatin1Char('.'), -1);
        m_panel = std::make_unique<SavePanel>(m_application, SavePanel::Photo{m_photo, pixelSize},
                                              ExportFormats::forSource(extension), out());
        QObject::connect(m_panel.get(), &SavePanel::chosen, [this](const QString &path) { m_chosen << path; });
        m_panel->open();
    }
    QString out() const { return m_folder.filePath(QStringLiteral("out")); }
    QString inOut(const char *name) const { return out() + QLatin1Char('/') + QString::fromUtf8(name); }
    void type(const QString &name)
    {
        m_panel->nameField()->setText(name); // not key by key: completions would open
        emit m_panel->nameField()->textEdited(name);
    }
    void save()
    {
        auto *box = m_panel->findChild<QDialogButtonBox *>();
        QTest::mouseClick(box->button(QDialogButtonBox::Save), Qt::LeftButton);
    }
    void saveAs(const QString &name)
    {
        type(name);
        save();
    }
    void chooseFormat(const char *title)
    {
        QComboBox *popup = m_panel->btnPopupFileFormat();
        const int index = popup->findText(QLatin1String(title));
        ASSERT_GE(index, 0);
        m_panel->selectFormat(index);
    }

    FakeApplication m_application;
    QTemporaryDir m_folder;
    QString m_photo;
    std::unique_ptr<SavePanel> m_panel;
    QStringList m_chosen;
};

struct NameCase
{
    const char *photo;
    const char *format; ///< chosen in the popup; null leaves it alone
    const char *typed;  ///< null leaves the name alone
    const char *written;
};

class SavePanelNameTest : public SavePanelTest, public testing::WithParamInterface<NameCase>
{
};

} // namespace

TEST_P(SavePanelNameTest, AlwaysEndsInAnExtensionOfTheList)
{
    const NameCase &c = GetParam();
    open(QString::fromUtf8(c.photo));
    if (c.format)
        chooseFormat(c.format);
    if (c.typed)
        type(QString::fromUtf8(c.typed));
    save();
    EXPECT_EQ(m_chosen, QStringList(inOut(c.written))) << m_panel->message().toStdString();
}

INSTANTIATE_TEST_SUITE_P(
    Names, SavePanelNameTest,
    testing::Values(NameCase{"a b.JPG", nullptr, nullptr, "a b.jpg"}, NameCase{"a.jpeg", nullptr, nullptr, "a.jpeg"},
                    NameCase{"a.b.png", nullptr, nullptr, "a.b.png"}, NameCase{"a.jpg", nullptr, "x", "x.jpg"},
                    NameCase{"a.jpg", nullptr, "x.JPEG", "x.jpg"}, NameCase{"a.jpeg", nullptr, "x.Jpg", "x.jpeg"},
                    NameCase{"a.jpg", nullptr, "x.tif", "x.tiff"}, NameCase{"a.jpg", nullptr, "x.webp", "x.webp.jpg"},
                    NameCase{"a.jpg", nullptr, "v1.2", "v1.2.jpg"}, NameCase{"a.jpg", nullptr, "x.", "x.jpg"},
                    NameCase{"a.jpg", nullptr, ".png", ".png.jpg"}, NameCase{"a.jpg", nullptr, "$HOME", "$HOME.jpg"},
                    NameCase{"a.jpg", nullptr, "Föhn 50 %", "Föhn 50 %.jpg"},
                    NameCase{"a.jpg", "PNG (*.png)", nullptr, "a.png"},
                    NameCase{"a.b.jpg", "Tiff (*.tiff)", nullptr, "a.b.tiff"},
                    // After a choice in the popup only that format is allowed.
                    NameCase{"a.jpg", "PNG (*.png)", "x.tiff", "x.tiff.png"},
                    NameCase{"a.jpg", "JPEG (*.jpg)", "x.JPEG", "x.jpg"},
                    NameCase{"a.jpg", "PNG (*.png)", "x.PNG", "x.png"}));

TEST_F(SavePanelTest, ThePopupShowsTheQualityForJpegOnly)
{
    UserDefaults defaults(m_folder.filePath(QStringLiteral("defaults.conf")));
    const ProcessWide<UserDefaults>::Replacement replacement(defaults);
    open(QStringLiteral("a.jpg"));
    EXPECT_FALSE(m_panel->viewExportQuality()->isVisible()) << "it changes nothing, and comes with all settings";
    ViewSettings::setShowsAllSettings(true);
    open(QStringLiteral("a.png"));
    EXPECT_EQ(m_panel->btnPopupFileFormat()->itemText(0), QStringLiteral("PNG (*.png)"));
    EXPECT_FALSE(m_panel->viewExportQuality()->isVisible());
    EXPECT_EQ(m_panel->allowedFileTypes().size(), 5);
    chooseFormat("JPEG (*.jpg)");
    EXPECT_TRUE(m_panel->viewExportQuality()->isVisible());
    EXPECT_EQ(m_panel->allowedFileTypes(), QStringList(QStringLiteral("jpeg")));
    EXPECT_EQ(m_panel->nameField()->text(), QStringLiteral("a.jpeg"));
    EXPECT_EQ(m_panel->nameField()->selectedText(), QStringLiteral("a"));
    chooseFormat("GIF (*.gif)");
    EXPECT_FALSE(m_panel->viewExportQuality()->isVisible());

    open(QStringLiteral("b.JPG"));
    EXPECT_TRUE(m_panel->viewExportQuality()->isVisible());
    type(QStringLiteral("x.bmp"));
    EXPECT_EQ(m_panel->btnPopupFileFormat()->currentText(), QStringLiteral("BMP (*.bmp)"))
        << "it follows what is typed";
    EXPECT_EQ(m_panel->allowedFileTypes().size(), 5) << "but forbids nothing";
    EXPECT_FALSE(m_panel->viewExportQuality()->isVisible());
}

TEST_F(SavePanelTest, AsksBeforeItReplacesWhatWillReallyBeWritten)
{
    open(QStringLiteral("a.jpg"));
    writeTestPhoto(inOut("x.jpg"));
    saveAs(QStringLiteral("x.JPEG"));
    EXPECT_TRUE(m_chosen.isEmpty());
    EXPECT_TRUE(m_panel->isVisible());
    EXPECT_TRUE(m_panel->message().contains(QStringLiteral("REPLACE_TITLE<x.jpg>")))
        << m_panel->message().toStdString();
    QTest::keyClick(m_panel->nameField(), Qt::Key_Return);
    EXPECT_TRUE(m_chosen.isEmpty()) << "Return is no answer";
    type(QStringLiteral("y"));
    EXPECT_TRUE(m_panel->message().isEmpty());
    EXPECT_FALSE(m_panel->replaceButton()->isVisible());
    saveAs(QStringLiteral("x"));
    QTest::mouseClick(m_panel->replaceButton(), Qt::LeftButton);
    EXPECT_EQ(m_chosen, QStringList(inOut("x.jpg")));
    EXPECT_FALSE(m_panel->isVisible());
}

TEST_F(SavePanelTest, RefusesWithASentenceAndStaysOpen)
{
    open(QStringLiteral("a.jpg"));
    QFile::link(m_photo, inOut("link.jpg"));
    QDir(out()).mkpath(QStringLiteral("closed"));
    QFile::setPermissions(inOut("closed"), QFile::ReadOwner | QFile::ExeOwner);
    writeTestPhoto(inOut("protected.jpg"));
    QFile::setPermissions(inOut("protected.jpg"), QFile::ReadOwner);
    QDir(out()).mkpath(QStringLiteral("folder.jpg"));
    const std::pair<QString, const char *> cases[] = {
        {m_photo, "REFUSED_SAME_AS_SOURCE<a.jpg>"},
        {QStringLiteral("../a"), "REFUSED_SAME_AS_SOURCE<a.jpg>"},
        {QStringLiteral("link"), "REFUSED_SAME_AS_SOURCE<link.jpg>"},
        {QStringLiteral("closed/x.jpg"), "REFUSED_FOLDER_NOT_WRITABLE<x.jpg>"},
        {QStringLiteral("nowhere/x.jpg"), "REFUSED_NO_SUCH_FOLDER<x.jpg>"},
        {QStringLiteral("protected"), "REFUSED_READ_ONLY<protected.jpg>"},
        {QStringLiteral("folder"), "REFUSED_IS_FOLDER<folder.jpg>"},
        {QString(260, QLatin1Char('n')), "REFUSED_WRITE_FAILED<"},
    };
    for (const auto &[typed, sentence] : cases) {
        saveAs(typed);
        EXPECT_TRUE(m_panel->message().startsWith(QLatin1String(sentence))) << m_panel->message().toStdString();
        EXPECT_FALSE(m_panel->replaceButton()->isVisible()) << sentence;
        EXPECT_TRUE(m_panel->isVisible()) << sentence;
    }
    EXPECT_TRUE(m_chosen.isEmpty());
    QFile::setPermissions(inOut("closed"), QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
}

TEST_F(SavePanelTest, RefusesADiskWithoutRoom)
{
    open(QStringLiteral("a.jpg"), QSize(1'000'000'000, 1'000'000'000));
    saveAs(QStringLiteral("x.bmp"));
    EXPECT_EQ(m_panel->message(), QStringLiteral("REFUSED_DISK_FULL<x.bmp>"));
    EXPECT_TRUE(m_chosen.isEmpty());
}

TEST_F(SavePanelTest, ATypedFolderIsEntered)
{
    open(QStringLiteral("a.jpg"));
    QDir(out()).mkpath(QStringLiteral("deeper"));
    saveAs(QStringLiteral("deeper"));
    EXPECT_TRUE(m_chosen.isEmpty());
    EXPECT_EQ(m_panel->directory().absolutePath(), inOut("deeper"));
    saveAs(QStringLiteral("x"));
    EXPECT_EQ(m_chosen, QStringList(inOut("deeper/x.jpg")));
}

TEST_F(SavePanelTest, LooksAgainWhenTheQuestionWasAnswered)
{
    open(QStringLiteral("a.jpg"));
    writeTestPhoto(inOut("x.jpg"));
    saveAs(QStringLiteral("x"));
    QFile::setPermissions(inOut("x.jpg"), QFile::ReadOwner); // in the meantime
    QTest::mouseClick(m_panel->replaceButton(), Qt::LeftButton);
    EXPECT_TRUE(m_chosen.isEmpty());
    EXPECT_EQ(m_panel->message(), QStringLiteral("REFUSED_READ_ONLY<x.jpg>"));
}
