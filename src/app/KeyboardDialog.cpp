#include "KeyboardDialog.h"

#include "FormatString.h"
#include "Localisation.h"
#include "Theme.h"

#include <QGridLayout>
#include <QHBoxLayout>
#include <QKeySequence>
#include <QLabel>
#include <QPushButton>
#include <QVBoxLayout>

#include <initializer_list>
#include <utility>

namespace hazelmark {

namespace {

/// A key as it is written on a keyboard of the person's language.
QString native(const QKeySequence &keys)
{
    return keys.toString(QKeySequence::NativeText);
}

/// "Alt+" and "Shift+" in front of what is no key of a sequence.
QString modifier(Qt::KeyboardModifier key)
{
    return native(QKeySequence(key | Qt::Key_A)).chopped(1);
}

QLabel *textLabel(const QString &text, const QColor &color)
{
    auto *label = new QLabel(text);
    label->setTextFormat(Qt::PlainText);
    theme::setTextColor(*label, color);
    return label;
}

/// A column of groups: each a heading, and below it what each key does.
class Column : public QGridLayout
{
public:
    Column()
    {
        setHorizontalSpacing(theme::kMargin);
        setVerticalSpacing(theme::kGrid);
        setColumnStretch(1, 1);
    }

    void add(const QString &title, const QList<std::pair<QString, QString>> &rows)
    {
        if (m_line > 0)
            setRowMinimumHeight(m_line++, theme::kSpacing);
        auto *heading = new QLabel(title);
        heading->setFont(theme::boldFont());
        addWidget(heading, m_line, 0, 1, 2);
        setRowMinimumHeight(m_line++, theme::kMargin + theme::kSpacing);
        for (const auto &[keys, effect] : rows) {
            addWidget(textLabel(keys, theme::kQuietText), m_line, 0);
            addWidget(textLabel(effect, theme::kText), m_line++, 1);
        }
        setRowStretch(m_line, 0);
    }
    void end() { setRowStretch(m_line, 1); }

private:
    int m_line = 0;
};

} // namespace

KeyboardDialog::KeyboardDialog(Localisation &texts)
{
    const auto lookup = [&](const char *key) { return texts.getLocalizedStringForKey(QString::fromLatin1(key)); };
    const auto withoutDots = [](QString text) { return text.remove(QChar(0x2026)).trimmed(); };
    setObjectName(QStringLiteral("keyboardDialog"));
    setWindowTitle(lookup("KEYBOARD"));
    const QString arrows = QStringLiteral("← → ↑ ↓");
    auto *left = new Column;
    left->add(lookup("KEYS_GROUP_PAINT"),
              {{QStringLiteral("B"), lookup("TOOL_BRUSH")},
               {QStringLiteral("E"), lookup("TOOL_ERASER")},
               {QStringLiteral("[  ]"), lookup("KEYS_BRUSH_SIZE")},
               {modifier(Qt::AltModifier) + lookup("KEYS_WHEEL"), lookup("KEYS_BRUSH_SIZE")},
               {QStringLiteral("{  }"), lookup("KEYS_HARDNESS")},
               {native(Qt::CTRL | Qt::Key_Z), lookup("UNDO")},
               {native(Qt::CTRL | Qt::SHIFT | Qt::Key_Z) + QStringLiteral(", ") + native(Qt::CTRL | Qt::Key_Y),
                lookup("REDO")},
               {native(Qt::CTRL | Qt::SHIFT | Qt::Key_A), lookup("BLUR_EVERYTHING")},
               {native(Qt::Key_Delete), lookup("CLEAR_PAINTING")}});
    left->add(lookup("KEYS_GROUP_FOCUS"), {{arrows, lookup("KEYS_MOVE")},
                                           {modifier(Qt::ShiftModifier) + arrows, lookup("KEYS_MOVE_FAR")},
                                           {native(Qt::Key_Space), lookup("KEYS_STAMP")}});
    left->end();
    auto *right = new Column;
    right->add(lookup("KEYS_GROUP_FILE"), {{native(Qt::CTRL | Qt::Key_O), withoutDots(lookup("OPEN"))},
                                           {native(Qt::CTRL | Qt::Key_V), lookup("PASTE_PHOTO")},
                                           {native(Qt::CTRL | Qt::Key_S), lookup("SAVE")},
                                           {native(Qt::CTRL | Qt::SHIFT | Qt::Key_S), withoutDots(lookup("SAVE_AS"))},
                                           {native(Qt::CTRL | Qt::Key_W), lookup("DELETE")},
                                           {native(Qt::CTRL | Qt::Key_Q), lookup("QUIT")}});
    right->add(lookup("KEYS_GROUP_VIEW"),
               {{formatString(lookup("KEYS_HOLD"), {QStringLiteral("C")}), lookup("COMPARE")},
                {QStringLiteral("G"), lookup("SHOW_PAINTING")},
                {QStringLiteral("+, -, ") + modifier(Qt::ControlModifier) + lookup("KEYS_WHEEL"), lookup("ZOOM")},
                {native(Qt::CTRL | Qt::Key_0), lookup("ZOOM_FIT_WINDOW")},
                {native(Qt::CTRL | Qt::Key_1), lookup("ZOOM_FULL")},
                {modifier(Qt::ControlModifier) + arrows + QStringLiteral(", ") + native(Qt::Key_Space) +
                     QLatin1Char('+') + lookup("KEYS_DRAG"),
                 lookup("KEYS_PAN")},
                {native(Qt::Key_F11), lookup("FULL_SCREEN_MODE")},
                {native(Qt::Key_Tab), lookup("KEYS_NEXT")},
                {native(Qt::Key_F10) + QStringLiteral(", ") + native(Qt::ALT | Qt::Key_F), lookup("KEYS_MENUS")},
                {native(Qt::Key_F1), lookup("HELP")}});
    right->end();
    auto *columns = new QHBoxLayout;
    columns->setSpacing(2 * theme::kMargin + theme::kSpacing);
    columns->addLayout(left);
    columns->addLayout(right);

    auto *title = new QLabel(lookup("KEYS_TITLE"));
    title->setFont(theme::boldFont(theme::kTextSize + 4));
    auto *ok = new QPushButton(lookup("OK"));
    ok->setDefault(true);
    connect(ok, &QPushButton::clicked, this, &QDialog::accept);
    auto *layout = new QVBoxLayout(this);
    constexpr int kInset = theme::kMargin + theme::kSpacing;
    layout->setContentsMargins(kInset, kInset, kInset, theme::kMargin);
    layout->setSpacing(theme::kMargin);
    layout->addWidget(title);
    layout->addLayout(columns);
    layout->addWidget(ok, 0, Qt::AlignRight);
    layout->setSizeConstraint(QLayout::SetFixedSize);
}

} // namespace hazelmark
