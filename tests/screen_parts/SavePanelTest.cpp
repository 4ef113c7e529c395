#include "SavePanel.h"

#include "../support/Outline.h"
#include "../support/ScreenApplication.h"
#include "FloatSlider.h"
#include "ProcessWide.h"
#include "UserDefaults.h"
#include "ViewSettings.h"

#include <QComboBox>
#include <QDialogButtonBox>
#include <QDir>
#include <QFile>
#include <QLineEdit>
#include <QPushButton>
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
        QDir(m_folder.path()).mkpath(QStringLiteral("out"));
        m_photo = write(m_folder.filePath(photoName));
        m_chosen.clear();
        m_panel = std::make_unique<SavePanel>(m_application, SavePanel::Photo{m_photo, pixelSize},
                                              ExportFormats::forSource(photoName.section(QLatin1Char('.'), -1)),
                                              m_folder.filePath(QStringLiteral("out")));
        QObject::connect(m_panel.get(), &SavePanel::chosen, [this](const QString &path) { m_chosen << path; });
        m_panel->open();
    }
    static QString write(const QString &path)
    {
        QFile file(path);
        EXPECT_TRUE(file.open(QIODevice::WriteOnly));
        return path;
    }
    QString inOut(const char *name) const
    {
        return m_folder.filePath(QStringLiteral("out/") + QString::fromUtf8(name));
    }
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
        const int index = m_panel->btnPopupFileFormat()->findText(QLatin1String(title));
        ASSERT_GE(index, 0);
        m_panel->selectFormat(index);
    }

    ScreenApplication m_application;
    QTemporaryDir m_folder;
    QString m_photo;
    std::unique_ptr<SavePanel> m_panel;
    QStringList m_chosen;
};

} // namespace

TEST_F(SavePanelTest, ANameAlwaysEndsInAnExtensionOfTheList)
{
    // The photo, what is chosen in the popup, what is typed, what is written; null leaves things alone.
    const std::tuple<const char *, const char *, const char *, const char *> rows[]{
        {"a b.JPG", nullptr, nullptr, "a b.jpg"},
        {"a.jpg", nullptr, "x", "x.jpg"},
        {"a.jpg", nullptr, "x.JPEG", "x.jpg"},
        {"a.jpeg", nullptr, "x.Jpg", "x.jpeg"},
        {"a.jpg", nullptr, "v1.2", "v1.2.jpg"},
        {"a.jpg", nullptr, "x.", "x.jpg"},
        {"a.jpg", nullptr, ".png", ".png.jpg"},
        {"a.jpg", nullptr, "Föhn 50 %", "Föhn 50 %.jpg"},
        {"a.b.jpg", "Tiff (*.tiff)", nullptr, "a.b.tiff"},
        // After a choice in the popup only that format is allowed.
        {"a.jpg", "PNG (*.png)", "x.tiff", "x.tiff.png"},
        {"a.jpg", "JPEG (*.jpg)", "x.JPEG", "x.jpg"},
    };
    for (const auto &[photo, format, typed, written] : rows) {
        open(QString::fromUtf8(photo));
        if (format)
            chooseFormat(format);
        if (typed)
            type(QString::fromUtf8(typed));
        save();
        EXPECT_EQ(m_chosen, QStringList(inOut(written))) << m_panel->message().toStdString();
    }
}

TEST_F(SavePanelTest, OffersFormatsAndToWhoSeesAllSettingsTheQuality)
{
    UserDefaults defaults(m_folder.filePath(QStringLiteral("defaults.conf")));
    const ProcessWide<UserDefaults>::Replacement replacement(defaults);
    ViewSettings::setShowsAllSettings(true);
    open(QStringLiteral("a.jpg"));
    auto *options = m_panel->findChild<QWidget *>(QStringLiteral("viewExportOptions"));
    EXPECT_EQ(outlineOf(*options).toStdString(),
              "0: 0 btnPopupFileFormat 16 lblQuality 8 lblLow@11' 8 sliderExportQuality 8 lblhigh@11' ~\n"
              "~: ~ QUALITY_WITHOUT_EFFECT@11' ~\n0");
    EXPECT_EQ(toldOf(*options).toStdString(),
              "btnPopupFileFormat: ComboBox JPEG (*.jpg); sliderExportQuality: Slider QUALITY s");
    EXPECT_EQ(m_panel->sliderExportQuality()->value(), 0.92);
    EXPECT_EQ(m_panel->focusWidget(), m_panel->nameField());
    EXPECT_EQ(m_panel->nameField()->selectedText(), QStringLiteral("a"));
    // What is typed, the format that this chooses.
    for (const auto &[typed, format] :
         {std::pair{"x.png", "PNG"}, {"x.none", "PNG"}, {"x.jpg", "JPEG"}, {"x.png", "PNG"}}) {
        type(QLatin1String(typed));
        const QString chosen = m_panel->btnPopupFileFormat()->currentText();
        EXPECT_TRUE(chosen.startsWith(QLatin1String(format))) << typed;
        EXPECT_EQ(m_panel->sliderExportQuality()->isVisible(), chosen.startsWith(u'J')) << typed;
    }
    chooseFormat("JPEG (*.jpg)");
    EXPECT_EQ(m_panel->nameField()->text(), QStringLiteral("x.jpg"));
    EXPECT_TRUE(m_panel->sliderExportQuality()->isVisible());
}

TEST_F(SavePanelTest, AsksBeforeItReplacesWhatWillReallyBeWrittenAndLooksAgainThen)
{
    open(QStringLiteral("a.jpg"));
    write(inOut("x.jpg"));
    saveAs(QStringLiteral("x.JPEG"));
    EXPECT_TRUE(m_panel->isVisible());
    EXPECT_TRUE(m_panel->message().contains(QStringLiteral("REPLACE_TITLE x.jpg"))) << m_panel->message().toStdString();
    QTest::keyClick(m_panel->nameField(), Qt::Key_Return); // no answer
    type(QStringLiteral("y"));
    EXPECT_TRUE(m_panel->message().isEmpty());
    EXPECT_FALSE(m_panel->replaceButton()->isVisible());
    saveAs(QStringLiteral("x"));
    QFile::setPermissions(inOut("x.jpg"), QFile::ReadOwner); // in the meantime
    QTest::mouseClick(m_panel->replaceButton(), Qt::LeftButton);
    EXPECT_EQ(m_panel->message(), QStringLiteral("REFUSED_READ_ONLY x.jpg"));
    QFile::setPermissions(inOut("x.jpg"), QFile::ReadOwner | QFile::WriteOwner);
    saveAs(QStringLiteral("x"));
    EXPECT_EQ(m_chosen, QStringList());
    QTest::mouseClick(m_panel->replaceButton(), Qt::LeftButton);
    EXPECT_EQ(m_chosen, QStringList(inOut("x.jpg")));
    EXPECT_FALSE(m_panel->isVisible());
}

TEST_F(SavePanelTest, RefusesWithASentenceAndStaysOpen)
{
    open(QStringLiteral("a.jpg"), QSize(1'000'000'000, 1'000'000'000));
    QFile::link(m_photo, inOut("link.jpg"));
    for (const char *folder : {"folder.jpg", "deeper"})
        QDir().mkpath(inOut(folder));
    const std::pair<QString, const char *> cases[] = {
        {m_photo, "REFUSED_SAME_AS_SOURCE a.jpg"},
        {QStringLiteral("../a"), "REFUSED_SAME_AS_SOURCE a.jpg"},
        {QStringLiteral("link"), "REFUSED_SAME_AS_SOURCE link.jpg"},
        {QStringLiteral("nowhere/x.jpg"), "REFUSED_NO_SUCH_FOLDER x.jpg"},
        {QStringLiteral("folder"), "REFUSED_IS_FOLDER folder.jpg"},
        {QString(260, QLatin1Char('n')), "REFUSED_WRITE_FAILED "},
        {QStringLiteral("x.bmp"), "REFUSED_DISK_FULL x.bmp"},
    };
    for (const auto &[typed, sentence] : cases) {
        saveAs(typed);
        EXPECT_TRUE(m_panel->message().startsWith(QLatin1String(sentence))) << m_panel->message().toStdString();
        EXPECT_TRUE(m_panel->isVisible() && !m_panel->replaceButton()->isVisible()) << sentence;
    }
    EXPECT_TRUE(m_chosen.isEmpty());
    open(QStringLiteral("a.jpg"));
    saveAs(QStringLiteral("deeper"));
    EXPECT_TRUE(m_chosen.isEmpty());
    EXPECT_EQ(m_panel->directory().absolutePath(), inOut("deeper")) << "a typed folder is entered";
}
