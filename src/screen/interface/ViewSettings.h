#pragma once

#include "UserDefaults.h"

namespace hazelmark {

/// The choices about the window that outlive the process: those of the View menu, and where pictures were saved last.
class ViewSettings
{
public:
    /// Whether the painting is shown in green while the pointer is on the photo; at first it is.
    static bool showsPainting() { return !defaults().boolean(QStringLiteral("hidesPainting")); }
    static void setShowsPainting(bool shown) { defaults().setBoolean(QStringLiteral("hidesPainting"), !shown); }

    /// Whether settings that change nothing are shown, too; at first they are not.
    static bool showsAllSettings() { return defaults().boolean(QStringLiteral("showsAllSettings")); }
    static void setShowsAllSettings(bool shown) { defaults().setBoolean(QStringLiteral("showsAllSettings"), shown); }

    /// The folder of the last export; empty before the first one.
    static QString exportFolder() { return defaults().string(QStringLiteral("exportFolder")); }
    static void setExportFolder(const QString &path) { defaults().setString(QStringLiteral("exportFolder"), path); }

private:
    static UserDefaults &defaults() { return UserDefaults::standardUserDefaults(); }
};

} // namespace hazelmark
