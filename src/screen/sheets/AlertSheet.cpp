#include "AlertSheet.h"

#include "ApplicationDelegate.h"
#include "ImageCatalog.h"
#include "SheetQueue.h"
#include "Theme.h"

#include <QGridLayout>
#include <QKeyEvent>
#include <QLabel>
#include <QPushButton>

namespace hazelmark {

namespace {

constexpr int kTextWidth = 360;
constexpr int kIconSize = 40;

QLabel *textLabel(const QString &text, bool bold)
{
    auto *label = new QLabel(text);
    label->setFont(bold ? theme::boldFont() : theme::systemFont());
    label->setTextFormat(Qt::PlainText); // file names may hold anything
    label->setTextInteractionFlags(Qt::TextSelectableByMouse);
    label->setWordWrap(true);
    label->setMinimumWidth(kTextWidth);
    return label;
}

} // namespace

AlertSheet::AlertSheet(const QString &title, const QString &message, const QString &defaultButton,
                       const QString &alternateButton)
    : m_title(title)
    , m_message(message)
    , m_icon(new QLabel)
    , m_defaultButton(new QPushButton(defaultButton))
{
    setWindowTitle(title);
    setAccessibleName(title);
    setAccessibleDescription(message);
    setIcon(QStringLiteral("warning"));
    auto *buttons = new QHBoxLayout;
    buttons->setSpacing(theme::kSpacing);
    buttons->addStretch();
    if (!alternateButton.isEmpty()) {
        m_alternateButton = new QPushButton(alternateButton);
        buttons->addWidget(m_alternateButton);
        connect(m_alternateButton, &QPushButton::clicked, this, [this] { done(AlternateReturn); });
    }
    buttons->addWidget(m_defaultButton);
    m_defaultButton->setDefault(true);
    connect(m_defaultButton, &QPushButton::clicked, this, [this] { done(DefaultReturn); });

    auto *layout = new QGridLayout(this);
    const int margin = theme::kMargin + theme::kGrid;
    layout->setContentsMargins(margin, margin, margin, margin);
    layout->setHorizontalSpacing(theme::kMargin);
    layout->setVerticalSpacing(theme::kSpacing);
    layout->addWidget(m_icon, 0, 0, 2, 1, Qt::AlignTop);
    layout->addWidget(textLabel(title, true), 0, 1);
    layout->addWidget(textLabel(message.trimmed(), false), 1, 1); // the space between the two is the layout's
    layout->setRowMinimumHeight(2, theme::kSpacing);
    layout->addLayout(buttons, 3, 0, 1, 2);
    layout->setSizeConstraint(QLayout::SetFixedSize);
    m_defaultButton->setFocus(); // once it belongs to the sheet
}

void AlertSheet::setIcon(const QString &name)
{
    m_icon->setPixmap(ImageCatalog::imageNamed(name, QSizeF(kIconSize, kIconSize), devicePixelRatioF()));
}

void AlertSheet::showEvent(QShowEvent *event)
{
    Sheet::showEvent(event);
    m_shown.start();
    if (m_deafFor.count() == 0)
        return;
    installEventFilter(this);
    for (QPushButton *button : findChildren<QPushButton *>())
        button->installEventFilter(this);
}

bool AlertSheet::eventFilter(QObject *watched, QEvent *event)
{
    const bool isKey = event->type() == QEvent::KeyPress || event->type() == QEvent::KeyRelease ||
                       event->type() == QEvent::ShortcutOverride;
    // Esc is no answer.
    const bool isAnswer = isKey && static_cast<QKeyEvent *>(event)->key() != Qt::Key_Escape;
    if (isAnswer && !m_shown.hasExpired(m_deafFor.count())) {
        event->accept();
        return true;
    }
    return Sheet::eventFilter(watched, event);
}

void AlertSheet::reject()
{
    done(m_alternateButton ? Dismissed : DefaultReturn);
}

void AlertSheet::showAlertWithTitle(QWidget &window, ApplicationDelegate &application, const QString &title,
                                    const QString &andMessage)
{
    SheetQueue::forWindow(window).present(
        new AlertSheet(title, andMessage, application.getLocalizedStringForKey(QStringLiteral("OK"))));
}

} // namespace hazelmark
