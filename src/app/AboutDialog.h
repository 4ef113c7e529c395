#pragma once

#include <QDialog>

namespace hazelmark {

class Localisation;

/// Name, version, purpose and licence of the program.
class AboutDialog : public QDialog
{
    Q_OBJECT

public:
    explicit AboutDialog(Localisation &texts);
};

} // namespace hazelmark
