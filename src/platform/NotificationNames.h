#pragma once

#include <QLatin1String>

namespace hazelmark {

// The names that are posted on the default notification centre. The misspellings are part of the names. None carries
// user info but kNotificationSetupHeader and kNotificationCommandFromMenuTapped.

inline constexpr QLatin1String kNotificationOpenPhotoFromMenuTapped("notificationOpenPhotoFromMenuTapped");
inline constexpr QLatin1String kNotificationClosePhotoFromMenuTapped("notificationClosePhotoFromMenuTapped");
inline constexpr QLatin1String kNotificationSavePhotoFromMenuTapped("notificationSavePhotoFromMenuTapped");
inline constexpr QLatin1String kNotificationShowTipsFromMenuTapped("notificationShowTipsFromMenuTapped");
/// A command of the Edit or the View menu. User info: kCommandKey, a number of MenuCommand, and kCommandIndexKey, which
/// of several (stored paintings).
inline constexpr QLatin1String kNotificationCommandFromMenuTapped("notificationCommandFromMenuTapped");
inline constexpr QLatin1String kCommandKey("COMMAND");
inline constexpr QLatin1String kCommandIndexKey("INDEX");
inline constexpr QLatin1String kNotificationUpdateLanguage("notificationUpdateLanguage");

/// The main screen stands in its window and may dress the title strip. User info: kWindowObjectKey.
inline constexpr QLatin1String kNotificationSetupHeader("notificationSetupHeader");
inline constexpr QLatin1String kWindowObjectKey("WINDOW_OBJECT"); ///< the main window as a QObject *

inline constexpr QLatin1String kNotificationWindowResized("notificationWindowResized");
inline constexpr QLatin1String kNotificationWindowEndResizing("notificationWindowEndResizing");

/// The end of a stroke on the canvas.
inline constexpr QLatin1String kNotificationBurshDrawedRegionUpdated("notificationBurshDrawedRegionUpdated");
inline constexpr QLatin1String kNotificationMouseIn("notificationMouseIn");
inline constexpr QLatin1String kNotificationMouseout("notificationMouseout");

/// Observed by the main screen, posted by nobody: a hook for effects that ask for a preview of their own.
inline constexpr QLatin1String kNotificationApplyPreviewEffect("notificationApplyPreviewEffect");
/// Posted by the export and share flow, observed by nobody.
inline constexpr QLatin1String kNotificationSaveChnagesUnsaved("notificationSaveChnagesUnsaved");

} // namespace hazelmark
