#pragma once

#include <QComboBox>

namespace hazelmark {

class ApplicationDelegate;

/// The field in the bottom bar that shows how large the photo is seen, in per cent, and takes another number. Its list
/// offers fit and some round ones.
class ZoomField : public QComboBox
{
    Q_OBJECT

public:
    explicit ZoomField(QWidget *parent = nullptr);

    /// The texts, in the interface language.
    void setLocalizedStrings(ApplicationDelegate &application);
    /// Shows a scale, in pixels of the screen per pixel of the photo.
    void setScale(double scale);

signals:
    void fitWanted();
    void scaleWanted(double scale);

protected:
    void wheelEvent(QWheelEvent *event) override;

private:
    void takeTyped();

    QString m_shown; ///< what stands in the field as long as nobody types
};

} // namespace hazelmark
