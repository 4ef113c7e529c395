#pragma once

#include "CoreFilterObject.h"
#include "MenuCommand.h"
#include "TitlebarWindow.h"

#include <QObject>
#include <QPointer>

#include <functional>
#include <optional>

namespace hazelmark {

class ApplicationDelegate;
class BrushControls;
class CanvasSight;
class MainScreenView;
class Notices;
class Session;
class SettingsPanel;
struct Failure;

/// The commands of the Edit and the View menu, and of the buttons that do the same: brings them to the session, the
/// brush and the view, and tells the menus and the bottom bar what can be done now. Main thread only.
class EditCommands : public QObject
{
    Q_OBJECT

public:
    using Settings = std::function<CoreFilterObject()>;

    /// All outlive it. `settings`: those in force.
    EditCommands(MainScreenView &view, Session &session, ApplicationDelegate &application, CanvasSight &sight,
                 Notices &notices, Settings settings);

    /// From now on there are a brush and its settings.
    void setBrush(SettingsPanel &panel, BrushControls &brush);
    void setWindow(TitlebarWindow *window) { m_window = window; }

    /// Does nothing where a command makes no sense now. Pasting a photo is the main screen's.
    void perform(MenuCommand command, int index = 0);
    /// Tells menus, bar and screen readers what there is.
    void publish();
    /// The brush a tenth larger or smaller.
    void scaleBrush(double factor);

private:
    bool isStrokeUnderWay() const;
    void chooseTool(bool eraser);
    void takeSettings(std::optional<float> blurAmount, std::optional<float> vignetteAmount);
    void savePaintingAs();
    void openPainting();
    void paintingRefused(const Failure &failure);
    void publishPaintings();
    QString text(const char *key) const;

    MainScreenView &m_view;
    Session &m_session;
    ApplicationDelegate &m_application;
    CanvasSight &m_sight;
    Notices &m_notices;
    Settings m_settings;
    SettingsPanel *m_panel = nullptr;
    BrushControls *m_brush = nullptr;
    QPointer<TitlebarWindow> m_window;
    QString m_paintingFolder; ///< where a painting was opened or saved last
};

} // namespace hazelmark
