#pragma once

#include "Sheet.h"

namespace hazelmark {

class Localisation;

/// The list of keys.
class KeyboardDialog : public Sheet
{
public:
    explicit KeyboardDialog(Localisation &texts);
};

} // namespace hazelmark
