#pragma once

#include "SettingsTable.h"

#include <QLabel>
#include <QLineEdit>
#include <QWidget>

namespace hazelmark {

class ApplicationDelegate;
class FloatSlider;

/// One slider of the settings panel below its label and its numeric field.
///
/// Arrow keys and wheel on the field step the slider as on the slider itself, with its action. Nothing else here
/// joins the two: a field that is typed in only says so.
class SettingRowView : public QWidget
{
    Q_OBJECT

public:
    explicit SettingRowView(const SettingRow &row, QWidget *parent = nullptr);

    const SettingRow &row() const { return m_row; }
    FloatSlider *slider() const { return m_slider; }
    QLineEdit *field() const { return m_field; }

    void setLocalizedStrings(ApplicationDelegate &application);

protected:
    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    const SettingRow &m_row;
    QLabel *m_label;
    QLineEdit *m_field;
    FloatSlider *m_slider;
};

} // namespace hazelmark
