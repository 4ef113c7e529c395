#pragma once

#include <QString>
#include <QStringList>

namespace hazelmark {

/// What the Edit and the View menu can ask of the main screen.
enum class MenuCommand {
    Undo,
    Redo,
    PastePhoto,
    Brush,
    Eraser,
    BrushLarger,
    BrushSmaller,
    BrushHarder,
    BrushSofter,
    BlurEverything,
    ClearPainting,
    SavePaintingAs,
    OpenPainting,
    RestorePainting, ///< the one with the index that comes along
    ForgetPaintings,
    ShowPainting, ///< or hide it
    AllSettings,  ///< or only those with an effect
    ZoomIn,
    ZoomOut,
    ZoomFit,
    ZoomFull,   ///< one pixel of the photo to one of the screen
    FullScreen, ///< or back
};

/// What the two menus show of the main screen's state.
struct MenuState
{
    QString undo; ///< with the name of the step; empty when there is none
    QString redo;
    QStringList storedPaintings; ///< what can be restored, as the items say it
    bool mayEdit = false;        ///< a photo is open and rests
    bool hasPhoto = false;       ///< also while it is exported
    bool mayOpen = true;         ///< no export runs
    bool showsPainting = true;
    bool showsAllSettings = false;

    bool operator==(const MenuState &) const = default;
};

} // namespace hazelmark
