#include "EditCommands.h"

#include "AlertSheet.h"
#include "ApplicationDelegate.h"
#include "BrushControls.h"
#include "CanvasSight.h"
#include "FilePanelLook.h"
#include "FloatSlider.h"
#include "FormatString.h"
#include "IMGButton.h"
#include "KeyboardCursor.h"
#include "MainScreenView.h"
#include "Notices.h"
#include "PaintView.h"
#include "PaintingPanels.h"
#include "PathParts.h"
#include "RefusalKey.h"
#include "Session.h"
#include "SettingsPanel.h"
#include "SummaryBar.h"
#include "ViewSettings.h"

#include <QAccessible>
#include <QDir>
#include <QLocale>
#include <QPushButton>

#include <algorithm>
#include <cmath>
#include <utility>

namespace hazelmark {

namespace {

constexpr double kSizeStep = 1.1;
constexpr double kHardnessStep = 10;

const char *undoKey(PaintEdit edit)
{
    switch (edit) {
    case PaintEdit::Stroke:
        return "UNDO_STROKE";
    case PaintEdit::Erase:
        return "UNDO_ERASE";
    case PaintEdit::Clear:
        return "UNDO_CLEAR";
    case PaintEdit::Everything:
        return "UNDO_BLUR_EVERYTHING";
    case PaintEdit::Restore:
        return "UNDO_RESTORE";
    }
    Q_UNREACHABLE();
}

const char *redoKey(PaintEdit edit)
{
    switch (edit) {
    case PaintEdit::Stroke:
        return "REDO_STROKE";
    case PaintEdit::Erase:
        return "REDO_ERASE";
    case PaintEdit::Clear:
        return "REDO_CLEAR";
    case PaintEdit::Everything:
        return "REDO_BLUR_EVERYTHING";
    case PaintEdit::Restore:
        return "REDO_RESTORE";
    }
    Q_UNREACHABLE();
}

/// To the minute, or with the seconds behind it.
QString dateText(const StoredPainting &painting, bool withSeconds = false)
{
    const QDateTime when = painting.when.toLocalTime();
    if (!withSeconds)
        return QLocale().toString(when, QLocale::ShortFormat);
    return QLocale().toString(when.date(), QLocale::ShortFormat) + when.time().toString(QStringLiteral(" HH:mm:ss"));
}

} // namespace

EditCommands::EditCommands(MainScreenView &view, Session &session, ApplicationDelegate &application, CanvasSight &sight,
                           Notices &notices, Settings settings)
    : m_view(view)
    , m_session(session)
    , m_application(application)
    , m_sight(sight)
    , m_notices(notices)
    , m_settings(std::move(settings))
{
    m_sight.setPaintingShown(ViewSettings::showsPainting());
    connect(&session, &Session::historyChanged, this, &EditCommands::publish);
    connect(&session, &Session::storedPaintingsChanged, this, &EditCommands::publish);
    connect(&session, &Session::paintingSettingsRead, this, &EditCommands::takeSettings);
    connect(&session, &Session::paintingRefused, this, &EditCommands::paintingRefused);
    connect(&session, &Session::paintingSaved, this, [this](const QString &path) {
        m_notices.say(formatString(text("PAINTING_SAVED"), {lastPathComponent(path)}));
    });
    connect(&session, &Session::storingFailed, this, [this] { m_notices.say(text("PAINTING_NOT_STORED")); });
    connect(view.vwBottom->btnRestore(), &QAbstractButton::clicked, this,
            [this] { perform(MenuCommand::RestorePainting); });
}

QString EditCommands::text(const char *key) const
{
    return m_application.getLocalizedStringForKey(QLatin1String(key));
}

void EditCommands::setBrush(SettingsPanel &panel, BrushControls &brush)
{
    m_panel = &panel;
    m_brush = &brush;
    connect(&panel, &SettingsPanel::blurEverythingTapped, this, [this] { perform(MenuCommand::BlurEverything); });
    connect(&panel, &SettingsPanel::clearPaintingTapped, this, [this] { perform(MenuCommand::ClearPainting); });
}

bool EditCommands::isStrokeUnderWay() const
{
    return m_view.paintView->isStrokeUnderWay();
}

void EditCommands::perform(MenuCommand command, int index)
{
    using C = MenuCommand;
    switch (command) {
    case C::ShowPainting:
        ViewSettings::setShowsPainting(!ViewSettings::showsPainting());
        m_sight.setPaintingShown(ViewSettings::showsPainting());
        return publish();
    case C::AllSettings:
        ViewSettings::setShowsAllSettings(!ViewSettings::showsAllSettings());
        if (m_panel)
            m_panel->setAllSettingsShown(ViewSettings::showsAllSettings());
        return publish();
    case C::FullScreen:
        if (m_window)
            m_window->toggleFullScreen();
        return;
    case C::ForgetPaintings:
        m_session.forgetStoredPaintings();
        return m_notices.say(text("PAINTINGS_FORGOTTEN"));
    default:
        break;
    }
    if (!m_brush || m_session.state() != Session::State::Editing || isStrokeUnderWay())
        return;
    FloatSlider *hardness = m_panel->slider(Setting::BrushHardness);
    switch (command) {
    case C::Undo:
        return m_session.undo();
    case C::Redo:
        return m_session.redo();
    case C::BlurEverything:
        return m_session.blurEverything();
    case C::ClearPainting:
        return m_session.clearPainting();
    case C::Brush:
        return m_brush->segmentPaintEraseTapped(m_panel->btnPaint());
    case C::Eraser:
        return m_brush->segmentPaintEraseTapped(m_panel->btnEraser());
    case C::BrushLarger:
        return scaleBrush(kSizeStep);
    case C::BrushSmaller:
        return scaleBrush(1 / kSizeStep);
    case C::BrushHarder:
        return hardness->setValueByUser(hardness->value() + kHardnessStep);
    case C::BrushSofter:
        return hardness->setValueByUser(hardness->value() - kHardnessStep);
    case C::SavePaintingAs:
        return savePaintingAs();
    case C::OpenPainting:
        return openPainting();
    case C::RestorePainting:
        if (index >= 0 && index < static_cast<int>(m_session.storedPaintings().size()))
            m_session.restore(m_session.storedPaintings()[static_cast<size_t>(index)]);
        return;
    default:
        return;
    }
}

void EditCommands::scaleBrush(double factor)
{
    FloatSlider *diameter = m_panel->slider(Setting::BrushDiameter);
    const double value = std::round(diameter->value());
    // A small brush by a point at least.
    diameter->setValueByUser(factor > 1 ? std::max(value + 1, std::round(value * factor))
                                        : std::min(value - 1, std::round(value * factor)));
}

// Paintings in files

void EditCommands::takeSettings(std::optional<float> blurAmount, std::optional<float> vignetteAmount)
{
    if (!m_panel)
        return;
    if (blurAmount)
        m_panel->slider(Setting::BlurAmount)->setValue(*blurAmount);
    if (vignetteAmount)
        m_panel->slider(Setting::Vignette)->setValue(*vignetteAmount);
    m_panel->setAllTextsForSliders();
}

void EditCommands::savePaintingAs()
{
    if (!m_window)
        return;
    const QString photo = m_session.photo().path();
    // A photo from the clipboard lies in a folder that will be gone.
    const bool isTemporary = photo.startsWith(QDir::tempPath() + QLatin1Char('/'));
    const QString folder = !m_paintingFolder.isEmpty() ? m_paintingFolder
                           : isTemporary               ? picturesFolder()
                                                       : pathWithoutLastComponent(photo);
    PaintingPanels::save(*m_window, m_application, folder + QLatin1Char('/') + nameWithoutExtension(photo),
                         [self = QPointer(this)](const QString &path) {
                             if (!self)
                                 return;
                             self->m_paintingFolder = pathWithoutLastComponent(path);
                             self->m_session.savePaintingAs(path, self->m_settings());
                         });
}

void EditCommands::openPainting()
{
    if (!m_window)
        return;
    const QString photo = m_session.photo().path();
    PaintingPanels::open(*m_window, m_application,
                         m_paintingFolder.isEmpty() ? pathWithoutLastComponent(photo) : m_paintingFolder,
                         [self = QPointer(this)](const QString &path) {
                             if (!self)
                                 return;
                             self->m_paintingFolder = pathWithoutLastComponent(path);
                             self->m_session.openPainting(path);
                         });
}

void EditCommands::paintingRefused(const Failure &failure)
{
    using Reason = Failure::Reason;
    const bool wasSaving = failure.reason >= Reason::NoSuchFolder && failure.reason <= Reason::EncodeFailed;
    const QString why = formatString(m_application.getLocalizedStringForKey(refusalKey(failure.reason)),
                                     {lastPathComponent(failure.path)});
    if (m_window)
        AlertSheet::showAlertWithTitle(*m_window, m_application,
                                       text(wasSaving ? "ERROR_CANT_SAVE_PAINTING" : "ERROR_CANT_OPEN_PAINTING"), why);
}

// What can be done now

void EditCommands::publish()
{
    MenuState state;
    if (const std::optional<PaintEdit> edit = m_session.undoEdit())
        state.undo = text(undoKey(*edit));
    if (const std::optional<PaintEdit> edit = m_session.redoEdit())
        state.redo = text(redoKey(*edit));
    for (const StoredPainting &painting : m_session.storedPaintings()) {
        QString title = formatString(text("RESTORE_PAINTING_OF"), {dateText(painting)});
        if (state.storedPaintings.contains(title)) // of the same minute
            title = formatString(text("RESTORE_PAINTING_OF"), {dateText(painting, true)});
        state.storedPaintings << title;
    }
    state.hasPhoto = m_session.state() != Session::State::Empty;
    state.mayEdit = m_session.state() == Session::State::Editing;
    state.mayOpen = m_session.state() != Session::State::Exporting;
    state.showsPainting = ViewSettings::showsPainting();
    state.showsAllSettings = ViewSettings::showsAllSettings();
    m_application.setMenuState(state);
    publishPaintings();
    if (QAccessible::isActive()) {
        const double painted = m_session.painting().paintedFraction();
        m_view.keyboardCursor->setPainted(
            painted, formatString(text("PAINTED_SHARE"), {QString::number(std::lround(100 * painted))}));
    }
}

/// The bar offers the newest painting until something is painted.
void EditCommands::publishPaintings()
{
    const std::vector<StoredPainting> &stored = m_session.storedPaintings();
    const bool isUntouched = m_session.painting().isEmpty() && !m_session.undoEdit() && !m_session.redoEdit();
    if (stored.empty() || !isUntouched) {
        m_view.vwBottom->setStoredPainting({});
        return;
    }
    const char *key = stored.front().photoHasChanged ? "PAINTING_STORED_CHANGED" : "PAINTING_STORED";
    m_view.vwBottom->setStoredPainting(formatString(text(key), {dateText(stored.front())}));
}

} // namespace hazelmark
