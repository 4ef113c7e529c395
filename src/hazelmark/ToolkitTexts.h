#pragma once

class QCoreApplication;

namespace hazelmark {

/// Gives the toolkit's own texts (its file panel, the menus of text fields) the language of the program's: the system's
/// preferred one where there is a table of texts for it, else English.
void installToolkitTexts(QCoreApplication &application);

} // namespace hazelmark
