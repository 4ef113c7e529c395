#pragma once

#include "CoreFilterObject.h"
#include "SettingsTable.h"

#include <QHash>
#include <QLineEdit>
#include <QList>
#include <QWidget>

#include <array>
#include <functional>

class QLabel;
class QScrollArea;
class QTimer;
class QVBoxLayout;

namespace hazelmark {

class ApplicationDelegate;
class ColorWell;
class DisclosureButton;
class FloatSlider;
class HighlightButton;
class IMGButton;
class SettingRowView;

/// The settings on the right of the main screen: the switch between paint and erase, eighteen sliders with a numeric
/// field each, and the vignette's colour. The values live in the sliders; a render reads them when it starts.
///
/// Only a person's change sends an action: what this class sets itself moves sliders and texts silently. Children are
/// named as the interface has them ("sliderBlurAmount", "txtBlurAmount", ...). 250 points wide.
class SettingsPanel : public QWidget
{
    Q_OBJECT

public:
    static constexpr int kPanelWidthPoints = 250;

    /// What the sender's tag of a reset button stands for. Tag 2 resets nothing.
    enum ResetTag { kResetMasking = 0, kResetBlur = 1, kResetNothing = 2, kResetInFocus = 3 };

    explicit SettingsPanel(ApplicationDelegate &application, QWidget *parent = nullptr);

    FloatSlider *slider(Setting setting) const;
    QLineEdit *field(Setting setting) const;
    ColorWell *colorPickerVignette() const { return m_colorPickerVignette; }
    IMGButton *btnPaint() const { return m_btnPaint; }
    IMGButton *btnEraser() const { return m_btnEraser; }
    IMGButton *btnBlurEverything() const { return m_btnBlurEverything; }
    IMGButton *btnClearPainting() const { return m_btnClearPainting; }
    IMGButton *toolInForce() const { return m_toolIsEraser ? m_btnEraser : m_btnPaint; }
    /// What takes the focus, from the top to the bottom.
    QList<QWidget *> tabOrder() const { return m_tabOrder; }
    QScrollArea *scrollvwSettings() const { return m_scrollvwSettings; }
    HighlightButton *resetButton(ResetTag tag) const; ///< null for the tag that resets nothing

    /// The texts in the interface language; also colours the flat buttons again.
    void setLocalizedStrings();
    /// Gives the flat buttons (reset) their resting colours.
    void setButtonsHighlightColor();
    /// Shows the eraser, or else the brush, as the tool in hand.
    void showTool(bool eraser);
    void scrollToTop();
    void setUnfolded(bool unfolded);
    bool isUnfolded() const;
    /// Whether the group of settings without effect is there at all. When it comes it is unfolded.
    void setAllSettingsShown(bool shown);

    /// Says whether a preview is under way: the sliders that ask for one wait with the moves of a drag so long.
    void setBusyTest(const std::function<bool()> &isBusy);

    /// Every field from its slider, as a whole number.
    void setAllTextsForSliders();

    void resetMaskingSliders();
    void resetBlurSliders();
    void resetInFocusSliders();
    void resetAllSlidersAndTextfields();
    void btnResetSliderSettingsTapped(ResetTag tag);

    /// What `field` holds changed by typing: it is applied 0.2 s later.
    void controlTextDidChange(QLineEdit *field);
    /// Brings the number in `field` into its slider, and what the slider then holds back into the field.
    void changeSliderValuesAfterTextEdit(QLineEdit *field);

    void handleSliderBlurRegion();
    void handleSliderInFocusRegion();
    void sliderBlurAmountValueChange();
    void vignetteColorChanged();

    /// The settings as they are now, for one render.
    CoreFilterObject createPresetObjectFromSettingWithTitle(const QString &title) const;

signals:
    void segmentPaintEraseTapped(bool eraser);
    void blurEverythingTapped();
    void clearPaintingTapped();
    void brushDiameterSlid();
    void brushHardnessSlid();
    void brushSizeAutoSlid();
    /// Diameter or hardness were typed or reset. Whoever has the brush sets hardness first, then the diameter, and
    /// leaves the texts as they are: these are rounded already.
    void brushValuesSet();
    /// A setting changed that a preview shows: for `applyCustomEnhanceFilterOnPreviewImage`.
    void effectChanged();
    /// The blur amount or the vignette's colour changed: for `btnProcessTapped:`.
    void processWanted();

private:
    void makeTools(QVBoxLayout *layout);
    void makeGroups(QVBoxLayout *layout);
    void addGroup(QVBoxLayout *layout, const char *titleKey, ResetTag tag, const QList<Setting> &settings);
    QWidget *makeHeader(const char *titleKey, ResetTag tag);
    QWidget *makeColorRow();
    void connectActions();
    void sendAction(Setting setting);
    void setSliderAndText(Setting setting, double value);
    void showVignetteStops();
    QString lookup(const char *key) const;

    ApplicationDelegate &m_application;
    std::array<SettingRowView *, kSettingCount> m_rows{};
    IMGButton *m_btnPaint = nullptr;
    IMGButton *m_btnEraser = nullptr;
    IMGButton *m_btnBlurEverything = nullptr;
    IMGButton *m_btnClearPainting = nullptr;
    QList<QWidget *> m_tabOrder;
    bool m_toolIsEraser = false;
    QLabel *m_toolName = nullptr;
    QScrollArea *m_scrollvwSettings = nullptr;
    DisclosureButton *m_disclosure = nullptr;
    QWidget *m_withoutEffect = nullptr; ///< the group: its disclosure, and what that folds
    QWidget *m_folded = nullptr;
    QLabel *m_vignetteNote = nullptr;
    QLabel *m_lblVignetteColor = nullptr;
    ColorWell *m_colorPickerVignette = nullptr;
    QList<std::pair<QLabel *, const char *>> m_headers; ///< with the keys of their titles
    struct Reset
    {
        HighlightButton *button;
        ResetTag tag;
        const QLabel *title; ///< of the group
    };
    QList<Reset> m_resets;
    QHash<QLineEdit *, QTimer *> m_textEntryDelays;
};

} // namespace hazelmark
