#pragma once

#include <QString>

class QWidget;

namespace hazelmark {

/// A controller whose view fills the main window's content area.
class ViewController
{
public:
    virtual ~ViewController() = default;

    /// Made when it is asked for first, and always the same. The window's content area becomes its parent.
    virtual QWidget *view() = 0;

    QString title() const { return m_title; }
    void setTitle(const QString &title) { m_title = title; }
    /// How many views the view held when it came into the window.
    int representedObject() const { return m_representedObject; }
    void setRepresentedObject(int number) { m_representedObject = number; }

private:
    QString m_title;
    int m_representedObject = 0;
};

} // namespace hazelmark
