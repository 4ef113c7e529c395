// The application's shell around an empty main screen, for looking at: build the target shell_gallery and start it.
#include "AppDelegate.h"
#include "ImageCatalog.h"
#include "Theme.h"

#include <QApplication>
#include <QLabel>
#include <QVBoxLayout>

using namespace hazelmark;

namespace {

class EmptyScreen : public ViewController
{
public:
    explicit EmptyScreen(ApplicationDelegate &delegate)
        : m_view(new QWidget)
    {
        QPalette palette = m_view->palette();
        palette.setColor(QPalette::Window, theme::kSurround);
        m_view->setPalette(palette);
        m_view->setAutoFillBackground(true);
        auto *hint = new QLabel;
        hint->setPixmap(ImageCatalog::imageNamed(QStringLiteral("drop-hint"), {112, 112}, m_view->devicePixelRatioF()));
        hint->setAlignment(Qt::AlignHCenter);
        auto *text = new QLabel(delegate.getLocalizedStringForKey(QStringLiteral("DRAG_DROP_IMAGE")));
        text->setAlignment(Qt::AlignHCenter);
        auto *layout = new QVBoxLayout(m_view);
        layout->addStretch();
        layout->addWidget(hint);
        layout->addWidget(text);
        layout->addStretch();
    }
    QWidget *view() override { return m_view; }

private:
    QWidget *m_view;
};

} // namespace

int main(int argc, char **argv)
{
    QApplication application(argc, argv);
    theme::apply(application);
    AppDelegate delegate([](ApplicationDelegate &shell) { return std::make_unique<EmptyScreen>(shell); });
    delegate.applicationDidFinishLaunching();
    return QApplication::exec();
}
