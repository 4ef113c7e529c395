#pragma once

#include "Sheet.h"

namespace hazelmark {

class ApplicationDelegate;

/// Asks what is to become of work that is not exported before the window closes. Three answers, each a signal; whoever
/// made the sheet takes it down. Esc cancels.
class SaveChangesSheet : public Sheet
{
    Q_OBJECT

public:
    explicit SaveChangesSheet(ApplicationDelegate &application);

signals:
    void saveTapped();
    void dontSaveTapped();
    void cancelTapped();

protected:
    void reject() override;
};

} // namespace hazelmark
