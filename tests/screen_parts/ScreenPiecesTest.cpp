// The smaller pieces of the main screen: summary bar, alerts, and the view that photos are dropped on.
#include "AlertSheet.h"
#include "FakeApplication.h"
#include "FileDraggingView.h"
#include "SheetQueue.h"
#include "SummaryBar.h"

#include <QApplication>
#include <QDragEnterEvent>
#include <QFile>
#include <QLabel>
#include <QMimeData>
#include <QPushButton>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QTest>
#include <QUrl>

#include <gtest/gtest.h>

using namespace hazelmark;

TEST(SummaryBarTest, CountsInThousandsAndCallsBytesKilobytes)
{
    const std::pair<double, const char *> cases[] = {
        {0, "0 KB"},         {532, "532 KB"},      {999, "999 KB"},      {1000, "1 KB"},        {1499, "1 KB"},
        {999999, "1000 KB"}, {1000000, "1.00 MB"}, {4567890, "4.57 MB"}, {2.5e9, "2500.00 MB"},
    };
    for (const auto &[bytes, text] : cases)
        EXPECT_EQ(SummaryBar::photoSizeText(bytes).toStdString(), text);
}

TEST(SummaryBarTest, TellsOfThePhotoAndOfItsExport)
{
    FakeApplication application;
    SummaryBar bar(application);
    QTemporaryDir folder;
    const QString path = folder.filePath(QStringLiteral("a photo.jpg"));
    QFile file(path);
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    file.write(QByteArray(532, 'x'));
    file.close();
    bar.setupBottomSummaryInfo(path);
    EXPECT_TRUE(bar.isVisible());
    EXPECT_EQ(bar.txtFilePath(), QStringLiteral("a photo.jpg"));
    EXPECT_EQ(bar.txtPhotoSize(), QStringLiteral("532 KB"));
    bar.showExported(QStringLiteral("/somewhere/b.tiff"));
    EXPECT_EQ(bar.exportText(), QStringLiteral("EXPORTED<b.tiff>"));
    bar.setupBottomSummaryInfo(folder.filePath(QStringLiteral("gone.png")));
    EXPECT_EQ(bar.txtPhotoSize(), QStringLiteral("0 KB"));
    EXPECT_TRUE(bar.exportText().isEmpty()) << "another photo's export";
    bar.setupBottomSummaryInfo(QStringLiteral("/x/") + QString(250, QLatin1Char('m')) + QStringLiteral(".jpg"));
    bar.showExported(QStringLiteral("/x/") + QString(250, QLatin1Char('w')));
    EXPECT_LT(bar.minimumSizeHint().width(), 300) << "a long name never widens the window";
}

TEST(AlertSheetTest, OneButtonHasOneAnswer)
{
    FakeApplication application;
    QWidget window;
    window.show();
    AlertSheet::showAlertWithTitle(window, application, QStringLiteral("Title"), QStringLiteral("\n Message"));
    auto *sheet = qobject_cast<AlertSheet *>(SheetQueue::forWindow(window).current());
    ASSERT_NE(sheet, nullptr);
    EXPECT_EQ(sheet->messageText(), QStringLiteral("Title"));
    EXPECT_EQ(sheet->informativeText(), QStringLiteral("\n Message"));
    EXPECT_EQ(sheet->defaultButton()->text(), QStringLiteral("OK<%@>"));
    EXPECT_EQ(sheet->alternateButton(), nullptr);
    QSignalSpy finished(sheet, &QDialog::finished);
    QTest::keyClick(sheet, Qt::Key_Escape);
    ASSERT_EQ(finished.size(), 1);
    EXPECT_EQ(finished[0][0].toInt(), AlertSheet::DefaultReturn);
    EXPECT_TRUE(QTest::qWaitFor([&] { return SheetQueue::forWindow(window).current() == nullptr; }));
}

TEST(AlertSheetTest, TwoButtonsTellTheirAnswersFromNone)
{
    const auto answer = [](const std::function<void(AlertSheet &)> &act) {
        AlertSheet sheet(QStringLiteral("a"), QStringLiteral("<b>b</b>"), QStringLiteral("YES"), QStringLiteral("NO"));
        QSignalSpy finished(&sheet, &QDialog::finished);
        sheet.open();
        act(sheet);
        return finished.size() == 1 ? finished[0][0].toInt() : -99;
    };
    EXPECT_EQ(answer([](AlertSheet &sheet) { QTest::mouseClick(sheet.defaultButton(), Qt::LeftButton); }),
              AlertSheet::DefaultReturn);
    EXPECT_EQ(answer([](AlertSheet &sheet) { QTest::keyClick(&sheet, Qt::Key_Return); }), AlertSheet::DefaultReturn);
    EXPECT_EQ(answer([](AlertSheet &sheet) { QTest::mouseClick(sheet.alternateButton(), Qt::LeftButton); }),
              AlertSheet::AlternateReturn);
    EXPECT_EQ(answer([](AlertSheet &sheet) { sheet.close(); }), AlertSheet::Dismissed);
}

namespace {

class OpenDraggingView : public FileDraggingView
{
public:
    using FileDraggingView::dropEvent;
    using FileDraggingView::FileDraggingView;
};

class FileDraggingViewTest : public testing::Test
{
protected:
    FileDraggingViewTest()
    {
        m_view.resize(400, 300);
        QObject::connect(&m_view, &FileDraggingView::photoDraggedWithPath,
                         [this](const QString &path) { m_dropped << path; });
    }

    static QList<QUrl> urls(const QStringList &paths)
    {
        QList<QUrl> urls;
        for (const QString &path : paths)
            urls << (path.contains(QLatin1String("://")) ? QUrl(path) : QUrl::fromLocalFile(path));
        return urls;
    }
    /// Drags as a file manager that would rather move.
    std::optional<Qt::DropAction> enter(const QMimeData &data)
    {
        QDragEnterEvent event({5, 5}, Qt::CopyAction | Qt::MoveAction, &data, Qt::LeftButton, Qt::NoModifier);
        event.setDropAction(Qt::MoveAction);
        QCoreApplication::sendEvent(&m_view, &event);
        return event.isAccepted() ? std::optional(event.dropAction()) : std::nullopt;
    }
    Qt::DropAction drop(const QMimeData &data)
    {
        QDropEvent event({5, 5}, Qt::CopyAction | Qt::MoveAction, &data, Qt::LeftButton, Qt::NoModifier);
        event.setDropAction(Qt::MoveAction);
        m_view.dropEvent(&event);
        return event.dropAction();
    }

    QStringList m_tested;
    QStringList m_dropped;
    OpenDraggingView m_view{[this](const QString &path) {
        m_tested << path;
        return path.endsWith(QLatin1String(".jpg"));
    }};
};

} // namespace

TEST_F(FileDraggingViewTest, TakesPhotosInOrderAndAlwaysAsACopy)
{
    const QStringList paths{QStringLiteral("/p/50 % ü.jpg"), QStringLiteral("/p/a#b?.jpg"), QStringLiteral("/p/2.jpg")};
    QMimeData data;
    data.setData(QStringLiteral("text/uri-list"),
                 "file:///p/50%20%25%20%C3%BC.jpg\r\nfile:///p/a%23b%3F.jpg\r\nfile:///p/2.jpg\r\n");
    EXPECT_EQ(enter(data), Qt::CopyAction);
    QDragMoveEvent move({6, 6}, Qt::CopyAction | Qt::MoveAction, &data, Qt::LeftButton, Qt::NoModifier);
    move.setDropAction(Qt::MoveAction);
    QCoreApplication::sendEvent(&m_view, &move);
    EXPECT_EQ(move.dropAction(), Qt::CopyAction);
    EXPECT_EQ(drop(data), Qt::CopyAction);
    EXPECT_EQ(m_dropped, paths);
}

TEST_F(FileDraggingViewTest, OneOtherFileRefusesTheWholeDrag)
{
    for (const char *other : {"/p/folder", "/p/text.pdf", "https://example.org/a.jpg", "smb://nas/a.jpg"}) {
        QMimeData data;
        data.setUrls(urls({QStringLiteral("/p/1.jpg"), QLatin1String(other), QStringLiteral("/p/2.jpg")}));
        m_dropped.clear();
        m_tested.clear();
        EXPECT_EQ(enter(data), std::nullopt) << other;
        EXPECT_FALSE(m_tested.contains(QStringLiteral("/p/2.jpg"))) << "it stops at the first";
        // It may arrive all the same: then the photos count.
        drop(data);
        EXPECT_EQ(m_dropped, QStringList({QStringLiteral("/p/1.jpg"), QStringLiteral("/p/2.jpg")})) << other;
    }
}

TEST_F(FileDraggingViewTest, TextIsNotRefusedAndNothingSwitchesTheHighlightOn)
{
    QMimeData text;
    text.setText(QStringLiteral("/p/1.jpg"));
    EXPECT_NE(enter(text), std::nullopt);
    drop(text);
    EXPECT_TRUE(m_dropped.isEmpty() && m_tested.isEmpty());
    QMimeData data;
    data.setUrls(urls({QStringLiteral("/p/1.jpg")}));
    enter(data);
    EXPECT_FALSE(m_view.isHighlighted());
    const QImage plain = m_view.grab().toImage();
    m_view.setHighlighted(true);
    EXPECT_NE(m_view.grab().toImage(), plain);
    drop(data);
    EXPECT_FALSE(m_view.isHighlighted());
}
