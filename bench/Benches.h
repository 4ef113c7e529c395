#pragma once

namespace hazelmark::bench {

// The rows of the table, by topic. Each registers its own; the pictures are made when a row first needs them.

void addBlurRows();
void addErrorRows();
void addPaintRows();
void addCommandLineRows();
void addWindowRows();

} // namespace hazelmark::bench
