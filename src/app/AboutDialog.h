#pragma once

#include "Sheet.h"

namespace hazelmark {

class Localisation;

/// Name, version, purpose and licence of the program.
class AboutDialog : public Sheet
{
    Q_OBJECT

public:
    explicit AboutDialog(Localisation &texts);
};

} // namespace hazelmark
