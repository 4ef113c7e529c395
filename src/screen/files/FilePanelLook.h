#pragma once

#include <QString>

class QFileDialog;

namespace hazelmark {

class ApplicationDelegate;

/// Dresses the toolkit's file dialog, which must not be a native one, as a panel of this program: its icons and
/// distances, columns as wide as what is in them, and the places where people keep photos at the side.
void dressFilePanel(QFileDialog &panel, ApplicationDelegate &application);

/// Where the person keeps pictures; their home folder when there is no such place.
QString picturesFolder();

} // namespace hazelmark
