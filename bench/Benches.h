#pragma once

namespace hazelmark::bench {

// The rows of the table, by topic. Each registers its own; the pictures are made when a row first needs them.

void addBlurRows();
void addEditRows();
void addErrorRows();
void addGlassRows();
void addPaintRows();
void addCommandLineRows();
void addWindowRows();
/// Takes down the window and the X server of these rows. To be called before the program ends: Qt's own statics go
/// first otherwise.
void endWindowRows();

} // namespace hazelmark::bench
