// The smaller pieces of the main screen: summary bar and the view that photos are dropped on.
#include "../controls/WidgetEvents.h"
#include "../support/ScreenApplication.h"
#include "FileDraggingView.h"
#include "SummaryBar.h"

#include <QApplication>
#include <QDragEnterEvent>
#include <QFile>
#include <QMimeData>
#include <QTemporaryDir>
#include <QTest>
#include <QUrl>

#include <gtest/gtest.h>

using namespace hazelmark;

TEST(SummaryBarTest, TellsOfThePhotoAndOfItsExportInThousandsAndCallsBytesKilobytes)
{
    for (const auto &[bytes, text] : {std::pair{0.0, "0 KB"},
                                      {1000, "1 KB"},
                                      {1499, "1 KB"},
                                      {999999, "1000 KB"},
                                      {1000000, "1.00 MB"},
                                      {2.5e9, "2500.00 MB"}})
        EXPECT_EQ(SummaryBar::photoSizeText(bytes).toStdString(), text);
    ScreenApplication application;
    SummaryBar bar(application);
    QTemporaryDir folder;
    QFile file(folder.filePath(QStringLiteral("a photo.jpg")));
    ASSERT_TRUE(file.open(QIODevice::WriteOnly) && file.resize(532));
    bar.setupBottomSummaryInfo(file.fileName());
    EXPECT_EQ(bar.txtFilePath(), QStringLiteral("a photo.jpg"));
    EXPECT_EQ(bar.txtPhotoSize(), QStringLiteral("532 KB"));
    bar.showExported(QStringLiteral("/somewhere/b.tiff"));
    EXPECT_EQ(bar.exportText(), QStringLiteral("EXPORTED b.tiff"));
    bar.setupBottomSummaryInfo(folder.filePath(QStringLiteral("gone.png")));
    EXPECT_EQ(bar.txtPhotoSize(), QStringLiteral("0 KB"));
    EXPECT_TRUE(bar.exportText().isEmpty()) << "another photo's export";
    bar.setupBottomSummaryInfo(QStringLiteral("/x/") + QString(250, QLatin1Char('m')) + QStringLiteral(".jpg"));
    bar.showExported(QStringLiteral("/x/") + QString(250, QLatin1Char('w')));
    EXPECT_LT(bar.minimumSizeHint().width(), 400) << "a long name never widens the window";
}

namespace {

class FileDraggingViewTest : public testing::Test
{
protected:
    struct OpenDraggingView : FileDraggingView
    {
        using FileDraggingView::dropEvent;
        using FileDraggingView::FileDraggingView;
    };

    FileDraggingViewTest()
    {
        m_view.resize(400, 300);
        QObject::connect(&m_view, &FileDraggingView::photoDraggedWithPath,
                         [this](const QString &path) { m_dropped << path; });
    }
    /// Drags as a file manager that would rather move; what the view makes of it, if it takes it.
    template <typename Event>
    std::optional<Qt::DropAction> drag(const QMimeData &data)
    {
        Event event({5, 5}, Qt::CopyAction | Qt::MoveAction, &data, Qt::LeftButton, Qt::NoModifier);
        event.setDropAction(Qt::MoveAction);
        if constexpr (std::is_same_v<Event, QDropEvent>)
            m_view.dropEvent(&event);
        else
            QCoreApplication::sendEvent(&m_view, &event);
        return event.isAccepted() ? std::optional(event.dropAction()) : std::nullopt;
    }

    QStringList m_dropped;
    OpenDraggingView m_view{[](const QString &path) { return path.endsWith(QLatin1String(".jpg")); }};
};

} // namespace

TEST_F(FileDraggingViewTest, TakesPhotosInOrderAndAlwaysAsACopy)
{
    QMimeData data;
    data.setData(QStringLiteral("text/uri-list"),
                 "file:///p/50%20%25%20%C3%BC.jpg\r\nfile:///p/a%23b%3F.jpg\r\nfile:///p/2.jpg\r\n");
    EXPECT_EQ(drag<QDragEnterEvent>(data), Qt::CopyAction);
    EXPECT_EQ(drag<QDragMoveEvent>(data), Qt::CopyAction);
    EXPECT_EQ(drag<QDropEvent>(data), Qt::CopyAction);
    EXPECT_EQ(m_dropped, QStringList({QStringLiteral("/p/50 % ü.jpg"), QStringLiteral("/p/a#b?.jpg"),
                                      QStringLiteral("/p/2.jpg")}));
    m_view.setHighlighted(true);
    EXPECT_EQ(profileOf(drawn(m_view), {0, 200}), "ax3 0x394 ax3");
    QDragLeaveEvent leave;
    QCoreApplication::sendEvent(&m_view, &leave);
    EXPECT_FALSE(m_view.isHighlighted());
}

TEST_F(FileDraggingViewTest, OneOtherFileRefusesTheWholeDrag)
{
    const QUrl first(QStringLiteral("file:///p/1.jpg")), last(QStringLiteral("file:///p/2.jpg"));
    for (const char *other :
         {"file:///p/folder", "file:///p/text.pdf", "https://example.org/a.jpg", "smb://nas/a.jpg"}) {
        QMimeData data;
        data.setUrls({first, QUrl(QLatin1String(other)), last});
        m_dropped.clear();
        EXPECT_EQ(drag<QDragEnterEvent>(data), std::nullopt) << other;
        // It may arrive all the same: then the photos count.
        drag<QDropEvent>(data);
        EXPECT_EQ(m_dropped, QStringList({first.path(), last.path()})) << other;
    }
}
