#pragma once

#include "Sheet.h"

#include <QList>
#include <QStringList>

class QPushButton;

namespace hazelmark {

/// Tells or asks something: an icon, a title, a message, and one or more buttons. `finished` carries the index of the
/// button that was chosen.
class AlertSheet : public Sheet
{
    Q_OBJECT

public:
    enum class Style { Warning, Question };

    /// `buttons`: the first is the default, and stands on the right; Esc chooses the last.
    AlertSheet(Style style, const QString &title, const QString &message, const QStringList &buttons);

    const QList<QPushButton *> &buttons() const { return m_buttons; }

    void reject() override;

private:
    QList<QPushButton *> m_buttons;
};

} // namespace hazelmark
