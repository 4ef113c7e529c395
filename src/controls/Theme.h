#pragma once

#include <QColor>
#include <QFont>

class QApplication;
class QWidget;

namespace hazelmark {

/// The look in one place: colours and distances. Photos are judged beside grey, so everything around them is a dark
/// neutral grey; the only colours are green for what is painted and set, and blue for progress and flat buttons.
namespace theme {

inline constexpr QColor kSurround{0x2b, 0x2b, 0x2b};  ///< around the photo, and the window's ground
inline constexpr QColor kStrip{0x24, 0x24, 0x24};     ///< title strip and summary bar
inline constexpr QColor kPanel{0x33, 0x33, 0x33};     ///< settings panel, sheets
inline constexpr QColor kField{0x1f, 0x1f, 0x1f};     ///< text fields, wells
inline constexpr QColor kRaised{0x45, 0x45, 0x45};    ///< plain push buttons
inline constexpr QColor kHover{0x50, 0x50, 0x50};     ///< the same under the pointer
inline constexpr QColor kHairline{0x4a, 0x4a, 0x4a};  ///< lines of one pixel between areas
inline constexpr QColor kBorder{0x82, 0x82, 0x82};    ///< around fields and buttons: 3:1 on kPanel, and more on darker
inline constexpr QColor kText{0xea, 0xea, 0xea};      ///< 10:1 on kPanel
inline constexpr QColor kQuietText{0xb0, 0xb0, 0xb0}; ///< 5.8:1 on kPanel
inline constexpr QColor kDisabledText{0x7c, 0x7c, 0x7c};
inline constexpr QColor kReadableDisabledText{0x9e, 0x9e, 0x9e}; ///< in menus, where it is to be read: 4.6:1 on kPanel
inline constexpr QColor kFocus{0x9a, 0xa4, 0xff};                ///< the ring around what the keyboard acts on

inline constexpr QColor kGreen{52, 215, 64};
inline constexpr QColor kBlueBorder{0x86, 0x8e, 0xe0};    ///< around the default button: 5:1 on kSurround
inline constexpr QColor kBlue{55, 68, 170, 204};          ///< alpha 0.8
inline constexpr QColor kBlueHighlight{75, 78, 190, 204}; ///< alpha 0.8

// Distances in points, on a grid of 4.
inline constexpr int kGrid = 4;
inline constexpr int kSpacing = 2 * kGrid; ///< between controls that belong together
inline constexpr int kMargin = 4 * kGrid;  ///< from an area's edge to its content
inline constexpr int kTitleBarHeight = 60;
inline constexpr int kFocusRingWidth = 2;

inline constexpr int kTextSize = 13; ///< points, as all sizes here: pixels at backing scale 1
inline constexpr int kSmallTextSize = 11;

/// The system's interface font at `size` points.
QFont systemFont(int size = kTextSize);
QFont boldFont(int size = kTextSize);

/// Fills the widget's background with one colour.
void setGround(QWidget &widget, const QColor &color);
/// Shows the text of a label in `color`, and disabled as every other text.
void setTextColor(QWidget &label, const QColor &color);

/// Style, palette, font and tool tips of the whole application.
void apply(QApplication &application);

} // namespace theme

} // namespace hazelmark
