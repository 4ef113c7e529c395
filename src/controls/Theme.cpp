#include "Theme.h"

#include "Bundle.h"

#include <QApplication>
#include <QFontDatabase>
#include <QPalette>
#include <QStyleFactory>
#include <QWidget>

#include <utility>

namespace hazelmark::theme {

namespace {

QPalette darkPalette()
{
    QPalette palette;
    palette.setColor(QPalette::Window, kPanel);
    palette.setColor(QPalette::WindowText, kText);
    palette.setColor(QPalette::Base, kField);
    palette.setColor(QPalette::AlternateBase, kStrip);
    palette.setColor(QPalette::Text, kText);
    palette.setColor(QPalette::PlaceholderText, kQuietText);
    palette.setColor(QPalette::Button, kRaised);
    palette.setColor(QPalette::ButtonText, kText);
    palette.setColor(QPalette::BrightText, Qt::white);
    palette.setColor(QPalette::ToolTipBase, kField);
    palette.setColor(QPalette::ToolTipText, kText);
    palette.setColor(QPalette::Highlight, QColor(75, 78, 190));
    palette.setColor(QPalette::HighlightedText, Qt::white);
    palette.setColor(QPalette::Link, kFocus);
    palette.setColor(QPalette::LinkVisited, kFocus);
    palette.setColor(QPalette::Light, kHover);
    palette.setColor(QPalette::Midlight, kRaised);
    palette.setColor(QPalette::Mid, kStrip);
    palette.setColor(QPalette::Dark, kField);
    palette.setColor(QPalette::Shadow, Qt::black);
    for (const auto role : {QPalette::WindowText, QPalette::Text, QPalette::ButtonText, QPalette::HighlightedText})
        palette.setColor(QPalette::Disabled, role, kDisabledText);
    palette.setColor(QPalette::Disabled, QPalette::Highlight, kRaised);
    return palette;
}

/// `text` with "@name@" replaced by the colours, and the icons' folder.
QString filled(QString text)
{
    const std::pair<QLatin1String, QColor> colors[] = {
        {QLatin1String("@border@"), kBorder},
        {QLatin1String("@blueborder@"), kBlueBorder},
        {QLatin1String("@field@"), kField},
        {QLatin1String("@hairline@"), kHairline},
        {QLatin1String("@hover@"), kHover},
        {QLatin1String("@panel@"), kPanel},
        {QLatin1String("@raised@"), kRaised},
        {QLatin1String("@text@"), kText},
        {QLatin1String("@disabled@"), kDisabledText},
        {QLatin1String("@focus@"), kFocus},
        {QLatin1String("@readable@"), kReadableDisabledText},
        {QLatin1String("@blue@"), QColor(kBlue.rgb())},
        {QLatin1String("@highlight@"), QColor(kBlueHighlight.rgb())},
    };
    for (const auto &[name, color] : colors)
        text.replace(name, color.name());
    return text.replace(QLatin1String("@icons@"), Bundle::mainBundle().resourcePath() + QStringLiteral("/icons"));
}

QString styleSheet()
{
    return filled(QStringLiteral(R"(
QToolTip { color: @text@; background: @field@; border: 1px solid @hairline@; padding: 4px; }

QMenuBar { background: transparent; }
QMenuBar::item { padding: 6px 8px; border-radius: 4px; background: transparent; }
QMenuBar::item:selected, QMenuBar::item:pressed { background: @hover@; }
QMenu { background: @panel@; border: 1px solid @hairline@; padding: 4px; }
QMenu::item { padding: 6px 28px 6px 12px; border-radius: 4px; }
QMenu::item:selected { background: @highlight@; color: white; }
QMenu::item:disabled { color: @readable@; background: transparent; }
QMenu::separator { height: 1px; background: @hairline@; margin: 4px 8px; }

QPushButton { background: @raised@; border: 1px solid @border@; border-radius: 4px; padding: 0 16px;
              min-height: 26px; min-width: 48px; }
QPushButton:hover { background: @hover@; }
QPushButton:default { background: @blue@; border-color: @blueborder@; color: white; }
QPushButton:default:hover { background: @highlight@; }
QPushButton:pressed { background: @field@; }
QPushButton:disabled { color: @disabled@; background: @panel@; border-color: @hairline@; }
QPushButton:focus { border: 2px solid @focus@; padding: 0 15px; min-height: 24px; }

QComboBox { background: @raised@; border: 1px solid @border@; border-radius: 4px; padding: 0 8px;
            min-height: 26px; }
QComboBox:hover { background: @hover@; }
QComboBox:focus { border-color: @focus@; }
QComboBox::drop-down { border: none; width: 24px; }
QComboBox::down-arrow { image: url(@icons@/chevron-down.svg); width: 20px; height: 20px; }

QLineEdit { background: @field@; border: 1px solid @border@; border-radius: 4px; padding: 0 6px; min-height: 22px; }
QLineEdit:focus { border-color: @focus@; }
QLineEdit:disabled { color: @disabled@; border-color: @hairline@; }
QLineEdit:read-only { background: transparent; border-color: transparent; }

QCheckBox { spacing: 8px; }
QCheckBox::indicator { width: 14px; height: 14px; border: 1px solid @border@; border-radius: 3px;
                       background: @field@; }
QCheckBox::indicator:checked { background: @highlight@; image: url(@icons@/check.svg); }
QCheckBox::indicator:focus { border-color: @focus@; }

QHeaderView::section { background: @panel@; border: none; border-right: 1px solid @hairline@; padding: 4px 8px; }
QAbstractItemView { border: 1px solid @hairline@; outline: none; }
QAbstractItemView::item { padding: 0 4px; }
QSplitter::handle { background: transparent; }

QScrollBar:vertical { background: transparent; width: 10px; margin: 0; }
QScrollBar::handle:vertical { background: @hover@; border-radius: 3px; margin: 2px; min-height: 24px; }
QScrollBar::handle:vertical:hover { background: @disabled@; }
QScrollBar::add-line:vertical, QScrollBar::sub-line:vertical { height: 0; }
QScrollBar::add-page:vertical, QScrollBar::sub-page:vertical { background: transparent; }
)"));
}

} // namespace

QFont systemFont(int size)
{
    QFont font = QFontDatabase::systemFont(QFontDatabase::GeneralFont);
    font.setPixelSize(size);
    return font;
}

QFont boldFont(int size)
{
    QFont font = systemFont(size);
    font.setBold(true);
    return font;
}

void setGround(QWidget &widget, const QColor &color)
{
    QPalette palette = widget.palette();
    palette.setColor(QPalette::Window, color);
    widget.setPalette(palette);
    widget.setAutoFillBackground(true);
}

void setTextColor(QWidget &label, const QColor &color)
{
    QPalette palette = label.palette();
    palette.setColor(QPalette::WindowText, color);
    palette.setColor(QPalette::Disabled, QPalette::WindowText, kDisabledText);
    label.setPalette(palette);
}

void apply(QApplication &application)
{
    // The style that is the same on every desktop; platform styles bring icons and colours of their own.
    QApplication::setStyle(QStyleFactory::create(QStringLiteral("Fusion")));
    QApplication::setPalette(darkPalette());
    QApplication::setFont(systemFont());
    application.setStyleSheet(styleSheet());
}

} // namespace hazelmark::theme
