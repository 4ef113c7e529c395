// Every control of the module in one window, for looking at: build the target controls_gallery and start it.
#include "BarProgressIndicator.h"
#include "CalloutWindow.h"
#include "DotPageControl.h"
#include "FloatSlider.h"
#include "HighlightButton.h"
#include "IMGButton.h"
#include "ImageCatalog.h"
#include "ScaleToFillImageView.h"
#include "Theme.h"
#include "TitlebarWindow.h"

#include <QApplication>
#include <QCheckBox>
#include <QComboBox>
#include <QLabel>
#include <QLineEdit>
#include <QMenuBar>
#include <QPushButton>
#include <QTimer>
#include <QVBoxLayout>

using namespace hazelmark;

namespace {

/// One of the main screen's buttons, with a title over it.
IMGButton *textButton(const QString &title, bool on, bool enabled)
{
    auto *button = new IMGButton;
    const QString off = QStringLiteral("export"), disabled = QStringLiteral("-disabled");
    const QString selected = off + QStringLiteral("_selected");
    button->setEndCaps({off, off + disabled, selected, selected + disabled, QStringLiteral("button-hover")});
    button->setText(title);
    button->setChecked(on);
    button->setEnabled(enabled);
    button->setFixedSize(120, 40);
    return button;
}

QLayout *row(std::initializer_list<QWidget *> widgets)
{
    auto *layout = new QHBoxLayout;
    layout->setSpacing(theme::kMargin);
    for (QWidget *widget : widgets)
        layout->addWidget(widget);
    layout->addStretch();
    return layout;
}

QWidget *iconWall()
{
    auto *wall = new QWidget;
    auto *layout = new QHBoxLayout(wall);
    layout->setContentsMargins({});
    layout->setSpacing(theme::kGrid);
    for (const char *name :
         {"add",           "export",       "share",        "brush",         "eraser",       "brush_selected",
          "eraser_select", "button-hover", "chevron-down", "chevron-right", "chevron-left", "mail",
          "clipboard",     "open-with",    "bluetooth",    "warning",       "info",         "unsaved",
          "drop-hint",     "hazelmark"}) {
        const QString image = QString::fromLatin1(name);
        auto *button = new HighlightButton(HighlightButton::kImageTag, image, image);
        layout->addWidget(button);
    }
    return wall;
}

QWidget *sliders()
{
    auto *box = new QWidget;
    auto *layout = new QVBoxLayout(box);
    for (const double value : {0.0, 20.0, 50.0, 100.0}) {
        auto *slider = new FloatSlider;
        slider->setRange(0, 100);
        slider->setValue(value);
        slider->setFixedWidth(220);
        slider->setEnabled(value != 20.0);
        layout->addWidget(slider);
        if (value == 50.0)
            slider->setFocus();
    }
    return box;
}

QWidget *content()
{
    auto *view = new QWidget;
    view->setAutoFillBackground(true);
    QPalette palette = view->palette();
    palette.setColor(QPalette::Window, theme::kSurround);
    view->setPalette(palette);
    auto *layout = new QVBoxLayout(view);
    layout->setContentsMargins(24, theme::kTitleBarHeight + 24, 24, 24);
    layout->setSpacing(theme::kMargin);
    layout->addWidget(iconWall());
    layout->addLayout(row({textButton(QStringLiteral("Off"), false, true), textButton(QStringLiteral("On"), true, true),
                           textButton(QStringLiteral("Off disabled"), false, false),
                           textButton(QStringLiteral("On disabled"), true, false),
                           textButton(QStringLiteral("A title of five words"), false, true)}));
    auto *flat = new HighlightButton(HighlightButton::kFlatTag);
    flat->setText(QStringLiteral("Reset"));
    auto *hovered = new HighlightButton(HighlightButton::kFlatTag);
    hovered->setText(QStringLiteral("Reset (hover)"));
    hovered->setButtonHighlighted();
    auto *disabled = new HighlightButton(HighlightButton::kFlatTag);
    disabled->setText(QStringLiteral("Disabled"));
    disabled->setEnabled(false);
    auto *plain = new QPushButton(QStringLiteral("Push button"));
    auto *combo = new QComboBox;
    combo->addItems({QStringLiteral("JPEG (*.jpg)"), QStringLiteral("PNG (*.png)")});
    layout->addLayout(row({flat, hovered, disabled, plain, combo, new QLineEdit(QStringLiteral("40")),
                           new QCheckBox(QStringLiteral("Show tips"))}));
    auto *fill = new ScaleToFillImageView;
    fill->setImage(ImageCatalog::imageNamed(QStringLiteral("drop-hint"), {224, 224}, 2));
    fill->setFixedSize(220, 120);
    layout->addLayout(row({sliders(), fill}));
    auto *progress = new BarProgressIndicator({}, QColor(75, 78, 190), theme::kField, 0, 100, 40);
    progress->setFixedSize(400, 3);
    auto *dots = new DotPageControl;
    dots->setNumberOfPages(4);
    dots->setCurrentPage(1);
    auto *bigDots = new DotPageControl;
    bigDots->setDotSize(25, 5);
    bigDots->setNumberOfPages(3);
    layout->addLayout(row({progress, dots, bigDots}));
    layout->addStretch();
    TitlebarWindow::setMovesWindow(*view);
    return view;
}

} // namespace

int main(int argc, char **argv)
{
    QApplication application(argc, argv);
    theme::apply(application);
    TitlebarWindow window;
    window.setWindowTitle(QStringLiteral("Controls"));
    window.setContentView(content());
    auto *menuBar = new QMenuBar;
    for (const char *title : {"File", "Language", "Help"})
        menuBar->addMenu(QString::fromLatin1(title))->addAction(QStringLiteral("Item"));
    window.setMenuBar(menuBar);
    window.setFrameSizeLimits({800, 500}, {1400, 900});
    window.setFrame({60, 40, 1220, 700});
    window.show();
    auto *callout = new CalloutWindow(QStringLiteral("Copied to the clipboard"), &window);
    if (application.arguments().contains(QStringLiteral("--callout")))
        QTimer::singleShot(500, &window, [&] { callout->showBelow(*window.fullScreenButton()); });
    return QApplication::exec();
}
