#pragma once

class QString;
class QWidget;

namespace hazelmark {

class IMGButton;

/// A button of the main screen: one picture, named `off` and `on`, which is dimmed while the button is disabled or held
/// down, on a ground of its own under the pointer.
IMGButton *imageButton(const char *objectName, const QString &off, const QString &on, QWidget *parent);

} // namespace hazelmark
