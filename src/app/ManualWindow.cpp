#include "ManualWindow.h"

#include "AccessibleRole.h"
#include "Theme.h"

#include <QScreen>
#include <QShortcut>
#include <QTextBrowser>
#include <QVBoxLayout>

namespace hazelmark {

namespace {

constexpr QSize kSize{760, 640};

/// Reads the page alone: it has no business on the network, nor with other files.
class PageBrowser : public QTextBrowser
{
public:
    explicit PageBrowser(const QUrl &page)
    {
        setOpenExternalLinks(false);
        document()->setDocumentMargin(theme::kMargin + theme::kSpacing);
        // The page's own sheet is made for browsers; these are the theme's colours and distances.
        document()->setDefaultStyleSheet(
            QStringLiteral("body { color: %1; } a { color: %2; } kbd, code { background-color: %3; } "
                           "h2 { margin-top: 24px; } dt { font-weight: bold; }")
                .arg(theme::kText.name(), theme::kFocus.name(), theme::kRaised.name()));
        setSource(page);
    }

    QVariant loadResource(int type, const QUrl &name) override
    {
        return type == QTextDocument::HtmlResource && name.isLocalFile() ? QTextBrowser::loadResource(type, name)
                                                                         : QVariant();
    }
};

} // namespace

ManualWindow::ManualWindow(const QUrl &page, const QString &title, QWidget *mainWindow)
    : QWidget(mainWindow, Qt::Dialog)
{
    setObjectName(QStringLiteral("manual"));
    setWindowTitle(title);
    setAccessibleRole(*this, QAccessible::Dialog);
    connect(new QShortcut(Qt::Key_Escape, this), &QShortcut::activated, this, &QWidget::close);
    auto *browser = new PageBrowser(page);
    browser->setAccessibleName(title);
    auto *layout = new QVBoxLayout(this);
    layout->setContentsMargins({});
    layout->addWidget(browser);
    resize(kSize.boundedTo(mainWindow->screen()->availableSize() - QSize(theme::kMargin, 3 * theme::kMargin)));
}

} // namespace hazelmark
