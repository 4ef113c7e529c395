#include "AlertSheet.h"

#include "ImageCatalog.h"
#include "Theme.h"

#include <QGridLayout>
#include <QLabel>
#include <QPushButton>

namespace hazelmark {

namespace {

constexpr int kTextWidth = 360;
constexpr int kTitleSize = 15;
constexpr int kIconSize = 32;

QLabel *textLabel(const QString &text)
{
    auto *label = new QLabel(text);
    label->setTextFormat(Qt::PlainText); // names of files come in here
    label->setWordWrap(true);
    label->setFixedWidth(kTextWidth);
    return label;
}

} // namespace

AlertSheet::AlertSheet(Style style, const QString &title, const QString &message, const QStringList &buttons)
{
    setWindowTitle(title);
    setAccessibleName(title);
    setAccessibleDescription(message);
    auto *icon = new QLabel;
    const QString iconName = style == Style::Warning ? QStringLiteral("warning") : QStringLiteral("info");
    icon->setPixmap(ImageCatalog::imageNamed(iconName, QSizeF(kIconSize, kIconSize), devicePixelRatioF()));
    QLabel *titleLabel = textLabel(title);
    QFont bold = theme::systemFont(kTitleSize);
    bold.setBold(true);
    titleLabel->setFont(bold);

    auto *row = new QHBoxLayout;
    row->setSpacing(theme::kSpacing);
    row->addStretch();
    for (qsizetype i = buttons.size() - 1; i >= 0; --i) {
        auto *button = new QPushButton(buttons[i]);
        button->setDefault(i == 0);
        connect(button, &QPushButton::clicked, this, [this, i] { done(static_cast<int>(i)); });
        row->addWidget(button);
        m_buttons.prepend(button);
    }
    if (!m_buttons.isEmpty())
        m_buttons.first()->setFocus();

    auto *layout = new QGridLayout(this);
    layout->setContentsMargins(theme::kMargin + theme::kSpacing, theme::kMargin + theme::kSpacing,
                               theme::kMargin + theme::kSpacing, theme::kMargin);
    layout->setHorizontalSpacing(theme::kMargin);
    layout->setVerticalSpacing(theme::kSpacing);
    layout->addWidget(icon, 0, 0, 2, 1, Qt::AlignTop);
    layout->addWidget(titleLabel, 0, 1);
    layout->addWidget(textLabel(message), 1, 1);
    layout->setRowMinimumHeight(2, theme::kSpacing);
    layout->addLayout(row, 3, 0, 1, 2);
    layout->setSizeConstraint(QLayout::SetFixedSize);
}

void AlertSheet::reject()
{
    done(static_cast<int>(m_buttons.size()) - 1);
}

} // namespace hazelmark
