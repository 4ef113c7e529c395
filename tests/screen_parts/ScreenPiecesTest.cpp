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
    EXPECT_EQ(bar.txtPhotoSize(), QStringLiteral("532 KB"));
    bar.showExported(QStringLiteral("/somewhere/b.tiff"));
    bar.setupBottomSummaryInfo(folder.filePath(QStringLiteral("gone.png")));
    EXPECT_EQ(bar.txtPhotoSize(), QStringLiteral("0 KB"));
    EXPECT_TRUE(bar.exportText().isEmpty()) << "another photo's export";
    bar.setupBottomSummaryInfo(QStringLiteral("/x/") + QString(250, QLatin1Char('m')) + QStringLiteral(".jpg"));
    bar.showExported(QStringLiteral("/x/") + QString(250, QLatin1Char('w')));
    EXPECT_LT(bar.minimumSizeHint().width(), 400) << "a long name never widens the window";
}

namespace {

struct OpenDraggingView : FileDraggingView
{
    using FileDraggingView::dropEvent;
    using FileDraggingView::FileDraggingView;
};

} // namespace

TEST(FileDraggingViewTest, TakesPhotosInOrderAlwaysAsACopyAndOneOtherFileRefusesTheWholeDrag)
{
    OpenDraggingView view([](const QString &path) { return path.endsWith(QLatin1String(".jpg")); });
    view.resize(400, 300);
    QStringList dropped;
    QObject::connect(&view, &FileDraggingView::photoDraggedWithPath, [&](const QString &path) { dropped << path; });
    const std::tuple<QByteArray, bool> rows[] = {{"file:///p/a%23b%3F.jpg", true},
                                                 {"file:///p/folder", false},
                                                 {"file:///p/text.pdf", false},
                                                 {"https://example.org/a.jpg", false},
                                                 {"smb://nas/a.jpg", false}};
    for (const auto &[url, isTaken] : rows) {
        QMimeData data;
        data.setData(QStringLiteral("text/uri-list"), "file:///p/50%20%25%20%C3%BC.jpg\r\n" + url + "\r\n");
        const Qt::DropActions offered = Qt::CopyAction | Qt::MoveAction;
        QDragEnterEvent enter({5, 5}, offered, &data, Qt::LeftButton, {});
        QDragMoveEvent move({5, 5}, offered, &data, Qt::LeftButton, {});
        QDropEvent drop({5, 5}, offered, &data, Qt::LeftButton, {}); // comes all the same: then the photos count
        for (QDropEvent *event : {static_cast<QDropEvent *>(&enter), static_cast<QDropEvent *>(&move), &drop})
            event->setDropAction(Qt::MoveAction); // as a file manager that would rather
        dropped.clear();
        QCoreApplication::sendEvent(&view, &enter);
        QCoreApplication::sendEvent(&view, &move);
        view.dropEvent(&drop);
        EXPECT_EQ(enter.isAccepted(), isTaken) << url.toStdString();
        EXPECT_TRUE(move.dropAction() == Qt::CopyAction && drop.dropAction() == Qt::CopyAction);
        QStringList taken(QStringLiteral("/p/50 % ü.jpg"));
        if (isTaken)
            taken << QStringLiteral("/p/a#b?.jpg");
        EXPECT_EQ(dropped, taken) << url.toStdString();
    }
    view.setHighlighted(true);
    EXPECT_EQ(profileOf(drawn(view), {0, 200}), "ax3 0x394 ax3");
    QDragLeaveEvent leave;
    QCoreApplication::sendEvent(&view, &leave);
    EXPECT_FALSE(view.isHighlighted());
}
