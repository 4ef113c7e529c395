#include "SaveChangesSheet.h"

#include "ApplicationDelegate.h"
#include "Theme.h"

#include <QHBoxLayout>
#include <QLabel>
#include <QPushButton>

namespace hazelmark {

namespace {
constexpr int kTextWidth = 400;
}

SaveChangesSheet::SaveChangesSheet(ApplicationDelegate &application)
{
    setObjectName(QStringLiteral("windowSaveChanges"));
    const auto text = [&](const char *key) { return application.getLocalizedStringForKey(QLatin1String(key)); };
    auto *header = new QLabel(text("ALERT_SAVE_CHANGES_TITLE"));
    header->setObjectName(QStringLiteral("lblSaveChangeHeader"));
    header->setFont(theme::boldFont());
    auto *message = new QLabel(text("ALERT_SAVE_CHANGES_MSG"));
    message->setObjectName(QStringLiteral("lblSaveChangeMsg"));
    for (QLabel *label : {header, message}) {
        label->setWordWrap(true);
        label->setMinimumWidth(kTextWidth);
    }

    auto *buttons = new QHBoxLayout;
    buttons->setSpacing(theme::kSpacing);
    const auto add = [&](const char *name, const char *key, void (SaveChangesSheet::*tapped)()) {
        auto *button = new QPushButton(text(key));
        button->setObjectName(QLatin1String(name));
        button->setAutoDefault(false);
        connect(button, &QPushButton::clicked, this, tapped);
        buttons->addWidget(button);
        return button;
    };
    add("btnDontSave", "DONT_SAVE", &SaveChangesSheet::dontSaveTapped);
    buttons->addStretch();
    add("btnCancel", "CANCEL", &SaveChangesSheet::cancelTapped);
    add("btnSave", "SAVE", &SaveChangesSheet::saveTapped)->setDefault(true);

    auto *layout = new QVBoxLayout(this);
    layout->setContentsMargins(theme::kMargin, theme::kMargin, theme::kMargin, theme::kMargin);
    layout->setSpacing(theme::kSpacing);
    layout->addWidget(header);
    layout->addWidget(message);
    layout->addSpacing(theme::kSpacing);
    layout->addLayout(buttons);
}

void SaveChangesSheet::reject()
{
    emit cancelTapped();
}

} // namespace hazelmark
