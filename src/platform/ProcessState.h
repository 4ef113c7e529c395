#pragma once

#include "ProcessWide.h"

namespace hazelmark {

/// The two flags that the canvas and the main screen share. The application delegate shows them under its own name.
/// Main thread only.
struct ProcessState
{
    /// The main screen blocks input: the canvas ignores a pointer that enters.
    bool isUiDisabled = false;
    /// The application is the one that the person works in.
    bool isAppActive = false;

    static ProcessState &shared() { return ProcessWide<ProcessState>::instance(); }
};

} // namespace hazelmark
