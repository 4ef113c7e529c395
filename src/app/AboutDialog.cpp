#include "AboutDialog.h"

#include "Bundle.h"
#include "FormatString.h"
#include "ImageCatalog.h"
#include "Localisation.h"
#include "Theme.h"

#include <QDialogButtonBox>
#include <QLabel>
#include <QPushButton>
#include <QVBoxLayout>

namespace hazelmark {

namespace {

constexpr int kIconSize = 64;
constexpr int kTextWidth = 320;
constexpr int kNameSize = 20;

QLabel *label(const QString &text, const QColor &color, int size = theme::kTextSize)
{
    auto *label = new QLabel(text);
    theme::setTextColor(*label, color);
    label->setFont(theme::systemFont(size));
    label->setAlignment(Qt::AlignHCenter);
    label->setWordWrap(true);
    label->setFixedWidth(kTextWidth);
    label->setTextFormat(Qt::PlainText);
    return label;
}

} // namespace

AboutDialog::AboutDialog(Localisation &texts)
{
    const auto lookup = [&](const char *key) { return texts.getLocalizedStringForKey(QString::fromLatin1(key)); };
    const QVariantMap info = Bundle::infoDictionary();
    const QString name = info.value(QStringLiteral("CFBundleName")).toString();
    const QString version = info.value(QStringLiteral("CFBundleVersion")).toString();
    setWindowTitle(formatString(QStringLiteral("%@ %@"), {lookup("ABOUT"), name}));

    auto *icon = new QLabel;
    icon->setPixmap(
        ImageCatalog::imageNamed(QStringLiteral("hazelmark"), QSizeF(kIconSize, kIconSize), devicePixelRatioF()));
    icon->setAlignment(Qt::AlignHCenter);
    QLabel *title = label(name, theme::kText, kNameSize);
    auto *buttons = new QDialogButtonBox;
    QPushButton *ok = buttons->addButton(lookup("OK"), QDialogButtonBox::AcceptRole);
    ok->setDefault(true);
    buttons->setCenterButtons(true);
    connect(buttons, &QDialogButtonBox::accepted, this, &QDialog::accept);

    auto *layout = new QVBoxLayout(this);
    layout->setContentsMargins(2 * theme::kMargin, 2 * theme::kMargin, 2 * theme::kMargin, theme::kMargin);
    layout->setSpacing(theme::kSpacing);
    layout->addWidget(icon);
    layout->addWidget(title);
    layout->addWidget(label(formatString(lookup("ABOUT_VERSION"), {version}), theme::kQuietText));
    layout->addSpacing(theme::kSpacing);
    layout->addWidget(label(lookup("ABOUT_TEXT"), theme::kText));
    layout->addWidget(label(lookup("ABOUT_LICENCE"), theme::kQuietText, theme::kSmallTextSize));
    layout->addSpacing(theme::kMargin);
    layout->addWidget(buttons);
    layout->setSizeConstraint(QLayout::SetFixedSize);
}

} // namespace hazelmark
