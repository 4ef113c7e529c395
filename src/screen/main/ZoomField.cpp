#include "ZoomField.h"

#include "ApplicationDelegate.h"

#include <QLineEdit>
#include <QLocale>
#include <QWheelEvent>

#include <cmath>

namespace hazelmark {

namespace {

constexpr int kFitIndex = 0;
constexpr int kPerCents[] = {50, 100, 200, 400};
constexpr int kWidthPoints = 92;

QString perCentText(double scale)
{
    const double perCent = 100 * scale;
    // A strip of a photo is seen at less than one per cent.
    const int decimals = perCent < 9.95 ? 1 : 0;
    QLocale locale;
    locale.setNumberOptions(QLocale::OmitGroupSeparator);
    return locale.toString(perCent, 'f', decimals) + QStringLiteral(" %");
}

} // namespace

ZoomField::ZoomField(QWidget *parent)
    : QComboBox(parent)
{
    setObjectName(QStringLiteral("zoomField"));
    setEditable(true);
    setInsertPolicy(NoInsert);
    setCompleter(nullptr);
    setFixedWidth(kWidthPoints);
    addItem(QString());
    for (const int perCent : kPerCents)
        addItem(perCentText(perCent / 100.0), perCent / 100.0);
    lineEdit()->setMaxLength(12);
    connect(this, &QComboBox::activated, this, [this](int index) {
        setEditText(m_shown);
        if (index == kFitIndex)
            emit fitWanted();
        else
            emit scaleWanted(itemData(index).toDouble());
    });
    connect(lineEdit(), &QLineEdit::returnPressed, this, &ZoomField::takeTyped);
    connect(lineEdit(), &QLineEdit::editingFinished, this, [this] { setEditText(m_shown); });
}

void ZoomField::setLocalizedStrings(ApplicationDelegate &application)
{
    const auto text = [&](const char *key) { return application.getLocalizedStringForKey(QLatin1String(key)); };
    setItemText(kFitIndex, text("ZOOM_FIT"));
    setAccessibleName(text("ZOOM"));
    lineEdit()->setAccessibleName(text("ZOOM"));
    setToolTip(text("ZOOM"));
    setEditText(m_shown);
}

void ZoomField::setScale(double scale)
{
    m_shown = perCentText(scale);
    if (lineEdit()->hasFocus() && lineEdit()->isModified())
        return;
    setEditText(m_shown);
    lineEdit()->setCursorPosition(0);
}

void ZoomField::takeTyped()
{
    QString text = currentText();
    text.remove(QLatin1Char('%'));
    bool isNumber = false;
    const double perCent = QLocale().toDouble(text.trimmed(), &isNumber);
    setEditText(m_shown);
    if (isNumber && std::isfinite(perCent) && perCent > 0)
        emit scaleWanted(perCent / 100);
}

/// A wheel that is turned over the bar means the photo, not the next item of a list.
void ZoomField::wheelEvent(QWheelEvent *event)
{
    event->ignore();
}

} // namespace hazelmark
