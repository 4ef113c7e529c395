#include "FilePanelLook.h"

#include "ApplicationDelegate.h"
#include "ImageCatalog.h"
#include "Theme.h"
#include "UserSession.h"

#include <QDir>
#include <QFileDialog>
#include <QFileIconProvider>
#include <QHeaderView>
#include <QLayout>
#include <QMimeDatabase>
#include <QPushButton>
#include <QSplitter>
#include <QStandardPaths>
#include <QToolButton>
#include <QTreeView>
#include <QUrl>

#include <utility>

namespace hazelmark {

namespace {

constexpr QSize kPanelSize{820, 560};
constexpr int kSidebarWidth = 152;
constexpr int kButtonIconSize = 20;
constexpr int kListIconSize = 24; // with the margin that the drawings have

/// Tells files apart by their names alone: no file is opened for its icon.
class PanelIcons : public QFileIconProvider
{
public:
    QIcon icon(IconType type) const override
    {
        switch (type) {
        case Computer:
        case Desktop:
        case Drive:
        case Network:
            return m_computer;
        case Folder:
            return m_folder;
        default:
            return m_file;
        }
    }

    explicit PanelIcons(ApplicationDelegate &application)
        : m_nameOfFolders(application.getLocalizedStringForKey(QStringLiteral("FILE_KIND_FOLDER")))
        , m_nameOfDrives(application.getLocalizedStringForKey(QStringLiteral("FILE_KIND_DRIVE")))
    {
    }

    QString type(const QFileInfo &info) const override
    {
        if (info.isDir())
            return info.isRoot() ? m_nameOfDrives : m_nameOfFolders;
        return m_types.mimeTypeForFile(info, QMimeDatabase::MatchExtension).comment();
    }

    QIcon icon(const QFileInfo &info) const override
    {
        if (info.isDir())
            return info.isRoot() ? m_computer : m_folder;
        const QString type = m_types.mimeTypeForFile(info, QMimeDatabase::MatchExtension).name();
        return type.startsWith(QLatin1String("image/")) ? m_picture : m_file;
    }

private:
    QMimeDatabase m_types;
    QString m_nameOfFolders;
    QString m_nameOfDrives;
    QIcon m_computer = ImageCatalog::iconNamed(QStringLiteral("computer"));
    QIcon m_folder = ImageCatalog::iconNamed(QStringLiteral("folder"));
    QIcon m_picture = ImageCatalog::iconNamed(QStringLiteral("picture"));
    QIcon m_file = ImageCatalog::iconNamed(QStringLiteral("file"));
};

QList<QUrl> places()
{
    QList<QUrl> urls;
    for (const auto location : {QStandardPaths::PicturesLocation, QStandardPaths::DesktopLocation,
                                QStandardPaths::DownloadLocation, QStandardPaths::HomeLocation}) {
        const QUrl url = QUrl::fromLocalFile(QStandardPaths::writableLocation(location));
        if (QFileInfo::exists(url.toLocalFile()) && !urls.contains(url))
            urls << url;
    }
    // Cameras and cards are mounted for the person there. To ask for all mounted volumes would wait for each of them,
    // and a server that is gone never answers.
    for (const QLatin1String media : {QLatin1String("/media/"), QLatin1String("/run/media/")}) {
        const QDir folder(media + UserSession::current().loginName());
        for (const QString &volume : folder.entryList(QDir::Dirs | QDir::NoDotAndDotDot))
            urls << QUrl::fromLocalFile(folder.filePath(volume));
    }
    urls << QUrl(QStringLiteral("file:"));
    return urls;
}

} // namespace

QString picturesFolder()
{
    const QString pictures = QStandardPaths::writableLocation(QStandardPaths::PicturesLocation);
    return QFileInfo(pictures).isDir() ? pictures : QDir::homePath();
}

void dressFilePanel(QFileDialog &panel, ApplicationDelegate &application)
{
    static PanelIcons icons(application);
    panel.setIconProvider(&icons);
    panel.setSidebarUrls(places());
    panel.setViewMode(QFileDialog::Detail);
    panel.setSizeGripEnabled(false);
    for (const auto &[name, image] :
         {std::pair{"backButton", "chevron-left"}, std::pair{"forwardButton", "chevron-right"},
          std::pair{"toParentButton", "up"}, std::pair{"newFolderButton", "new-folder"},
          std::pair{"listModeButton", "view-list"}, std::pair{"detailModeButton", "view-details"}}) {
        if (auto *button = panel.findChild<QToolButton *>(QLatin1String(name))) {
            button->setIcon(ImageCatalog::iconNamed(QLatin1String(image)));
            button->setIconSize(QSize(kButtonIconSize, kButtonIconSize));
            button->setAutoRaise(true);
        }
    }
    for (QAbstractItemView *view : panel.findChildren<QAbstractItemView *>())
        view->setIconSize(QSize(kListIconSize, kListIconSize));
    if (auto *table = panel.findChild<QTreeView *>(QStringLiteral("treeView"))) {
        table->header()->setSectionResizeMode(QHeaderView::ResizeToContents);
        table->header()->setSectionResizeMode(0, QHeaderView::Stretch);
        table->header()->setStretchLastSection(false);
    }
    for (QPushButton *button : panel.findChildren<QPushButton *>())
        button->setIcon({}); // the words are enough
    if (auto *splitter = panel.findChild<QSplitter *>(QStringLiteral("splitter")))
        splitter->setSizes({kSidebarWidth, kPanelSize.width() - kSidebarWidth});
    panel.layout()->setContentsMargins(theme::kMargin, theme::kMargin, theme::kMargin, theme::kMargin);
    panel.layout()->setSpacing(theme::kSpacing);
    panel.resize(kPanelSize);
}

} // namespace hazelmark
