#pragma once

#include <QWidget>

class QUrl;

namespace hazelmark {

/// Shows the manual where the desktop has no browser for it. Esc closes it; it blocks nothing and goes with the main
/// window.
class ManualWindow : public QWidget
{
public:
    /// `page`: a file of the resources. Links inside it are followed, others are not.
    ManualWindow(const QUrl &page, const QString &title, QWidget *mainWindow);
};

} // namespace hazelmark
