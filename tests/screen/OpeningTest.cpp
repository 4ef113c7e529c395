// How a photo gets onto the screen, and what happens to the one before.
#include "ScreenFixture.h"

#include "FloatSlider.h"
#include "IMGButton.h"
#include "NotificationNames.h"
#include "PaintView.h"
#include "PhotoFile.h"
#include "PhotoImageView.h"
#include "SettingsPanel.h"
#include "SheetQueue.h"
#include "SummaryBar.h"

#include <QFile>
#include <QFileDialog>
#include <QLabel>
#include <QPushButton>
#include <QTest>

namespace hazelmark {

namespace {

class Opening : public ScreenFixture
{
protected:
    void expectNoPhoto()
    {
        const MainScreenView *view = m_screen->mainScreenView();
        EXPECT_FALSE(m_screen->hasPhoto());
        EXPECT_EQ(m_screen->toolType(), MainScreenVC::kToolNone);
        EXPECT_TRUE(m_application.isUiDisabled());
        EXPECT_FALSE(view->btnExport->isEnabled());
        EXPECT_FALSE(view->btnShareService->isEnabled());
        EXPECT_FALSE(view->vwRightContainer->isVisible());
        EXPECT_FALSE(view->vwBottom->isVisible());
        EXPECT_FALSE(view->vwPreviewContainer->isVisible());
        EXPECT_TRUE(view->vwDragging->isVisible());
    }

    static QByteArray contentOf(const QString &path)
    {
        QFile file(path);
        EXPECT_TRUE(file.open(QIODevice::ReadOnly));
        return file.readAll();
    }

    /// Makes loading wait at `m_gate`, photo by photo.
    void holdLoading()
    {
        m_work.open.load = [this, real = m_work.open.load](const QString &path, QSize bound) {
            ++m_loads;
            m_gate.pass();
            return real(path, bound);
        };
    }

    Gate m_gate;
    std::atomic<int> m_loads = 0;
};

TEST_F(Opening, WithoutAPhotoNothingCanBeEdited)
{
    start();
    expectNoPhoto();
}

TEST_F(Opening, APhotoIsShownWithPanelAndBarAndABrushReadyToPaint)
{
    start();
    open(photo(u"a.png"_qs, {300, 200}));
    const MainScreenView *view = m_screen->mainScreenView();
    EXPECT_EQ(m_screen->toolType(), MainScreenVC::kToolPaint);
    EXPECT_FALSE(m_application.isUiDisabled());
    EXPECT_TRUE(view->btnExport->isEnabled());
    EXPECT_TRUE(view->btnShareService->isEnabled());
    EXPECT_TRUE(view->vwRightContainer->isVisible());
    EXPECT_EQ(view->vwRightContainer->width(), 250);
    EXPECT_EQ(view->vwBottom->txtFilePath(), u"a.png"_qs);
    EXPECT_FALSE(view->vwDragging->isVisible());
    EXPECT_EQ(m_application.m_file->filePath(), m_screen->imageUrl());
    EXPECT_EQ(shownAt({0.5, 0.5}), QColor(Qt::red)) << "the first sight of it comes with it";
    EXPECT_FLOAT_EQ(view->paintView->pointSize(), 64.8F) << "diameter 40, hardness 0";
    EXPECT_FALSE(view->paintView->eraser());
}

TEST_F(Opening, TheWindowStaysAliveAndSaysWhatItLoads)
{
    holdLoading();
    start();
    m_screen->photoDraggedWithPath(photo(u"slow.png"_qs, {300, 200}));
    ASSERT_TRUE(QTest::qWaitFor([&] { return m_loads == 1; }));
    const auto *note = m_screen->view()->findChild<QLabel *>(u"loadingNote"_qs);
    EXPECT_TRUE(note->isVisible());
    EXPECT_EQ(note->text(), u"LOADING slow.png"_qs);
    EXPECT_FALSE(m_screen->hasPhoto());
    m_gate.open();
    ASSERT_TRUE(QTest::qWaitFor([&] { return m_screen->hasPhoto(); }));
    EXPECT_FALSE(note->isVisible());
}

TEST_F(Opening, APhotoThatIsReplacedWhileItLoadsNeverShows)
{
    std::vector<QString> shown;
    holdLoading();
    start();
    const QString first = photo(u"first.png"_qs, {300, 200}, Qt::green);
    const QString second = photo(u"second.png"_qs, {300, 200}, Qt::blue);
    m_screen->photoDraggedWithPath(first);
    ASSERT_TRUE(QTest::qWaitFor([&] { return m_loads == 1; }));
    m_screen->photoDraggedWithPath(second);
    ASSERT_TRUE(QTest::qWaitFor([&] { return m_loads == 2; }));
    m_gate.open();
    ASSERT_TRUE(QTest::qWaitFor([&] {
        if (shown.empty() || shown.back() != m_screen->imageUrl())
            shown.push_back(m_screen->imageUrl());
        return m_screen->hasPhoto() && !m_screen->isLoading();
    }));
    QTest::qWait(50);
    EXPECT_EQ(m_screen->imageUrl(), second);
    EXPECT_EQ(std::count(shown.begin(), shown.end(), first), 0);
    EXPECT_EQ(shownAt({0.5, 0.5}), QColor(Qt::blue));
}

/// What is dropped at once (whole, cut off, no picture at all), and which of them is open at the end: 0 for the photo
/// before.
class Drops : public Opening, public testing::WithParamInterface<std::pair<const char *, int>>
{
};

TEST_P(Drops, TheLastWholePhotoIsOpenAtTheEndWhereverAnotherBreaks)
{
    start();
    open(photo(u"before.png"_qs, {30, 20}));
    const auto [kinds, expected] = GetParam();
    const QByteArray whole = contentOf(photo(u"whole.png"_qs, {300, 200}));
    QStringList paths{m_screen->imageUrl()};
    for (const char kind : std::string_view(kinds)) {
        paths << file(QString::number(paths.size()) + u".png"_qs, kind == 'w'   ? whole
                                                                  : kind == 'c' ? whole.first(whole.size() / 3)
                                                                                : QByteArray("words"));
    }
    for (const QString &path : paths.mid(1))
        m_screen->photoDraggedWithPath(path);
    ASSERT_TRUE(QTest::qWaitFor([&] { return !m_screen->isLoading(); }));
    EXPECT_EQ(m_screen->imageUrl(), paths[expected]);
    EXPECT_EQ(m_application.m_file->filePath(), paths[expected]);
}

INSTANTIATE_TEST_SUITE_P(Orders, Drops,
                         testing::Values(std::pair("wwn", 2), std::pair("wc", 1), std::pair("cw", 2),
                                         std::pair("wcnc", 1), std::pair("ccc", 0), std::pair("wwwwc", 4)),
                         [](const auto &info) { return std::string(info.param.first); });

TEST_F(Opening, ABrokenFileIsRefusedWithASentenceAndCostsNobodyTheirPainting)
{
    start();
    const QString before = photo(u"before.png"_qs, {300, 200});
    open(before);
    stroke({0.3, 0.5}, {0.6, 0.5});
    m_screen->panel().slider(Setting::BlurAmount)->setValue(10);
    m_screen->segmentPaintEraseTapped(m_screen->panel().btnEraser());
    const QByteArray png = contentOf(before);
    for (const auto &[name, content, key] :
         {std::tuple(u"text.jpg"_qs, QByteArray("just words"), u"REFUSED_NOT_A_PICTURE"_qs),
          std::tuple(u"nothing.jpg"_qs, QByteArray(), u"REFUSED_EMPTY"_qs),
          std::tuple(u"cut.png"_qs, png.first(png.size() / 3), u"REFUSED_TRUNCATED"_qs)}) {
        m_screen->photoDraggedWithPath(file(name, content));
        ASSERT_TRUE(QTest::qWaitFor([&] { return !sheetText().isEmpty(); }));
        EXPECT_EQ(sheetText(), u"ERROR_CANT_OPEN %@|"_qs + key + u' ' + name);
        SheetQueue::forWindow(*m_window).current()->accept();
        ASSERT_TRUE(QTest::qWaitFor([&] { return sheetText().isEmpty(); }));
    }
    EXPECT_EQ(m_screen->imageUrl(), before);
    EXPECT_EQ(m_application.m_file->filePath(), before);
    EXPECT_GT(paintAt({0.4, 0.5}), 200);
    EXPECT_EQ(m_screen->panel().slider(Setting::BlurAmount)->value(), 10);
    EXPECT_EQ(m_screen->toolType(), MainScreenVC::kToolErase);
    EXPECT_FALSE(m_screen->isLoading());

    // Whoever asks for the photo himself gets a yes in every case, and this one too is then left as it is.
    EXPECT_TRUE(m_screen->isValidImage(m_folder.filePath(u"cut.png"_qs)));
    EXPECT_EQ(m_screen->imageUrl(), before);
    EXPECT_GT(paintAt({0.4, 0.5}), 200);
    EXPECT_TRUE(m_screen->isValidImage(photo(u"whole.png"_qs, {300, 200})));
    EXPECT_TRUE(m_screen->imageUrl().endsWith(u"whole.png"_qs));
}

TEST_F(Opening, OfAPhotoThatIsDamagedInTheMiddleTheBarSaysSo)
{
    m_work.open.load = [real = m_work.open.load](const QString &path, QSize bound) {
        auto loaded = real(path, bound);
        loaded->isPartlyDamaged = path.endsWith(u"damaged.png"_qs);
        return loaded;
    };
    start();
    const SummaryBar *bar = m_screen->mainScreenView()->vwBottom;
    open(photo(u"damaged.png"_qs, {300, 200}));
    EXPECT_EQ(bar->notice(), u"PHOTO_PARTLY_DAMAGED %@"_qs);
    open(photo(u"whole.png"_qs, {300, 200}));
    EXPECT_EQ(bar->notice(), QString());
}

TEST_F(Opening, WhenTheVeryFirstOpeningFailsThereIsStillNoPhoto)
{
    start();
    m_screen->photoDraggedWithPath(file(u"no-size.png"_qs, "?"));
    ASSERT_TRUE(QTest::qWaitFor([&] { return !sheetText().isEmpty(); }));
    expectNoPhoto();
}

TEST_F(Opening, AfterAnExportADropIsIgnoredUntilTheNextPreview)
{
    start();
    const QString before = photo(u"before.png"_qs, {300, 200});
    const QString after = photo(u"after.png"_qs, {300, 200});
    open(before);
    m_screen->setLastExportedImage(m_screen->inputImage());
    m_screen->photoDraggedWithPath(after);
    QTest::qWait(100);
    EXPECT_EQ(m_screen->imageUrl(), before);
    m_screen->applyCustomEnhanceFilterOnPreviewImage();
    open(after);
    EXPECT_EQ(m_screen->lastExportedImage(), nullptr);
}

TEST_F(Opening, ResultsOfThePhotoBeforeAreNotTheNewOnes)
{
    start();
    open(photo(u"before.png"_qs, {300, 200}));
    m_screen->setLastExportedImage(m_screen->inputImage());
    m_screen->btnAddPhotoTapped();
    auto *panel = m_window->findChild<QFileDialog *>();
    ASSERT_NE(panel, nullptr);
    panel->selectFile(photo(u"after.png"_qs, {200, 300}));
    static_cast<QDialog *>(panel)->done(QDialog::Accepted);
    ASSERT_TRUE(QTest::qWaitFor([&] { return m_screen->imageUrl().endsWith(u"after.png"_qs); }));
    EXPECT_EQ(m_screen->lastExportedImage(), nullptr);
}

TEST_F(Opening, DuringAnExportNothingOpensAndWhatWasLoadingWaits)
{
    holdLoading();
    start();
    m_gate.open(1);
    const QString before = photo(u"before.png"_qs, {300, 200});
    const QString loading = photo(u"loading.png"_qs, {300, 200});
    open(before);
    m_screen->photoDraggedWithPath(loading);
    ASSERT_TRUE(QTest::qWaitFor([&] { return m_loads == 2; }));

    m_screen->setExportLocked(true);
    EXPECT_TRUE(m_application.m_isExporting);
    EXPECT_TRUE(m_application.isUiDisabled());
    EXPECT_FALSE(m_screen->mainScreenView()->btnExport->isEnabled());
    EXPECT_FALSE(m_screen->panel().isEnabled());
    EXPECT_FALSE(m_screen->mainScreenView()->paintView->isEnabled());
    m_gate.open();
    m_screen->photoDraggedWithPath(photo(u"ignored.png"_qs, {300, 200}));
    m_screen->btnAddPhotoTapped();
    m_screen->applyCustomEnhanceFilterOnPreviewImage(); // a preview ends meanwhile: it frees nothing
    QTest::qWait(150);
    EXPECT_EQ(m_screen->imageUrl(), before);
    EXPECT_EQ(m_window->findChild<QFileDialog *>(), nullptr);
    EXPECT_TRUE(m_screen->isExportLocked());

    m_screen->setExportLocked(false);
    ASSERT_TRUE(QTest::qWaitFor([&] { return m_screen->imageUrl() == loading; }));
    EXPECT_FALSE(m_application.isUiDisabled());
    EXPECT_TRUE(m_screen->panel().isEnabled());
}

/// Login name, path, whether the path counts as one in that person's trash.
class Trash : public ScreenFixture,
              public testing::WithParamInterface<std::tuple<const char16_t *, const char16_t *, bool>>
{
};

TEST_P(Trash, IsTestedWithTheLoginNameAsItIsAndThePathInLowerCase)
{
    const auto [login, path, refused] = GetParam();
    m_session.m_login = QString::fromUtf16(login);
    m_work.open.inspect = [](const QString &path) -> Outcome<QByteArray> {
        return Failure{Failure::Reason::NoSuchFile, path, {}};
    };
    start();
    m_screen->openPanelFinished(QString::fromUtf16(path));
    ASSERT_TRUE(QTest::qWaitFor([&] { return !sheetText().isEmpty(); }));
    EXPECT_EQ(sheetText().startsWith(u"ERROR_CANT_PROCESS"_qs), refused) << qPrintable(sheetText());
}

INSTANTIATE_TEST_SUITE_P(Paths, Trash,
                         testing::Values(std::tuple(u"anna", u"/users/anna/.trash/a.jpg", true),
                                         std::tuple(u"anna", u"/Users/Anna/.Trash/a.jpg", true),
                                         std::tuple(u"Anna", u"/Users/Anna/.Trash/a.jpg", false),
                                         std::tuple(u"anna", u"/users/annabel/.trash/a.jpg", false),
                                         std::tuple(u"anna", u"/home/anna/.local/share/Trash/files/a.jpg", false)));

} // namespace

} // namespace hazelmark
