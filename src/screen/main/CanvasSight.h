#pragma once

#include <QElapsedTimer>
#include <QObject>

namespace hazelmark {

class MainScreenView;

/// What of the photo area is seen: the painting in green or not, and for a comparison the photo as it was.
class CanvasSight : public QObject
{
    Q_OBJECT

public:
    /// `view` outlives it.
    explicit CanvasSight(MainScreenView &view);

    void setPaintingShown(bool shown);
    /// Shows the photo without blur and without green. A stroke that begins ends it.
    void setComparing(bool comparing);
    bool isComparing() const { return m_isComparing; }

private:
    void apply();

    MainScreenView &m_view;
    bool m_isPaintingShown = true;
    bool m_isComparing = false;
    bool m_wasComparing = false; ///< when the button was pressed
    QElapsedTimer m_pressed;
};

} // namespace hazelmark
