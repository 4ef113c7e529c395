#pragma once

#include "HoverTracker.h"

#include <QAbstractButton>
#include <QColor>
#include <QFont>

#include <array>

namespace hazelmark {

/// A push and toggle button that is drawn from named image pieces: a start (left) cap, a middle that is stretched, and
/// an end (right) cap, for each of its states, with a title whose font is fitted to the button and which may break
/// into two lines.
///
/// `text()` is the title, `isChecked()` the on state. A click sends `clicked` first and flips the state afterwards: a
/// handler sees the state from before the click, and what it sets is flipped, too. What is to stay is set on
/// `clickOver`. While the mouse is held down the button is disabled and drawn so.
class IMGButton : public QAbstractButton
{
    Q_OBJECT

public:
    explicit IMGButton(QWidget *parent = nullptr);

    // Names of images, each of which may be empty: start cap (St), middle (Md) and end cap (En) in the on and the off
    // state, each enabled, held down (Dwn) and disabled (Dis). Caps keep their own width; all fill the button's height.
    QString imgOnState_St() const { return m_images[OnState].start; }
    void setImgOnState_St(const QString &name) { set(m_images[OnState].start, name); }
    QString imgOnState_Md() const { return m_images[OnState].middle; }
    void setImgOnState_Md(const QString &name) { set(m_images[OnState].middle, name); }
    QString imgOnState_En() const { return m_images[OnState].end; }
    void setImgOnState_En(const QString &name) { set(m_images[OnState].end, name); }
    QString imgOnStateDwn_St() const { return m_images[OnStateDwn].start; }
    void setImgOnStateDwn_St(const QString &name) { set(m_images[OnStateDwn].start, name); }
    QString imgOnStateDwn_Md() const { return m_images[OnStateDwn].middle; }
    void setImgOnStateDwn_Md(const QString &name) { set(m_images[OnStateDwn].middle, name); }
    QString imgOnStateDwn_En() const { return m_images[OnStateDwn].end; }
    void setImgOnStateDwn_En(const QString &name) { set(m_images[OnStateDwn].end, name); }
    QString imgOnStateDis_St() const { return m_images[OnStateDis].start; }
    void setImgOnStateDis_St(const QString &name) { set(m_images[OnStateDis].start, name); }
    QString imgOnStateDis_Md() const { return m_images[OnStateDis].middle; }
    void setImgOnStateDis_Md(const QString &name) { set(m_images[OnStateDis].middle, name); }
    QString imgOnStateDis_En() const { return m_images[OnStateDis].end; }
    void setImgOnStateDis_En(const QString &name) { set(m_images[OnStateDis].end, name); }
    QString imgOffState_St() const { return m_images[OffState].start; }
    void setImgOffState_St(const QString &name) { set(m_images[OffState].start, name); }
    QString imgOffState_Md() const { return m_images[OffState].middle; }
    void setImgOffState_Md(const QString &name) { set(m_images[OffState].middle, name); }
    QString imgOffState_En() const { return m_images[OffState].end; }
    void setImgOffState_En(const QString &name) { set(m_images[OffState].end, name); }
    QString imgOffStateDwn_St() const { return m_images[OffStateDwn].start; }
    void setImgOffStateDwn_St(const QString &name) { set(m_images[OffStateDwn].start, name); }
    QString imgOffStateDwn_Md() const { return m_images[OffStateDwn].middle; }
    void setImgOffStateDwn_Md(const QString &name) { set(m_images[OffStateDwn].middle, name); }
    QString imgOffStateDwn_En() const { return m_images[OffStateDwn].end; }
    void setImgOffStateDwn_En(const QString &name) { set(m_images[OffStateDwn].end, name); }
    QString imgOffStateDis_St() const { return m_images[OffStateDis].start; }
    void setImgOffStateDis_St(const QString &name) { set(m_images[OffStateDis].start, name); }
    QString imgOffStateDis_Md() const { return m_images[OffStateDis].middle; }
    void setImgOffStateDis_Md(const QString &name) { set(m_images[OffStateDis].middle, name); }
    QString imgOffStateDis_En() const { return m_images[OffStateDis].end; }
    void setImgOffStateDis_En(const QString &name) { set(m_images[OffStateDis].end, name); }
    /// Drawn as the end cap, over the button, while the pointer is over an off button.
    QString imgMouseHover() const { return m_imgMouseHover; }
    void setImgMouseHover(const QString &name) { set(m_imgMouseHover, name); }
    /// The counterpart of the hover image; not drawn.
    QString imgMouseOut() const { return m_imgMouseOut; }
    void setImgMouseOut(const QString &name) { m_imgMouseOut = name; }

    /// The images of a button that is one picture, of the size of its end cap. The disabled ones are also shown while
    /// the button is held down.
    struct EndCaps
    {
        QString off;
        QString offDisabled;
        QString on;
        QString onDisabled;
        QString hover;
    };
    /// Sets them, and the button's size.
    void setEndCaps(const EndCaps &caps);

    /// The title's colour.
    QColor colorOnState() const { return m_colors[OnState]; }
    void setColorOnState(const QColor &color) { set(m_colors[OnState], color); }
    QColor colorOnStateDis() const { return m_colors[OnStateDis]; }
    void setColorOnStateDis(const QColor &color) { set(m_colors[OnStateDis], color); }
    QColor colorOffState() const { return m_colors[OffState]; }
    void setColorOffState(const QColor &color) { set(m_colors[OffState], color); }
    QColor colorOffStateDis() const { return m_colors[OffStateDis]; }
    void setColorOffStateDis(const QColor &color) { set(m_colors[OffStateDis], color); }

    /// Insets of the title in points; a title of two lines has a top and a bottom inset of its own (ML).
    int marginLeft() const { return m_marginLeft; }
    void setMarginLeft(int margin) { set(m_marginLeft, margin); }
    int marginRight() const { return m_marginRight; }
    void setMarginRight(int margin) { set(m_marginRight, margin); }
    int marginTop() const { return m_marginTop; }
    void setMarginTop(int margin) { set(m_marginTop, margin); }
    int marginBottom() const { return m_marginBottom; }
    void setMarginBottom(int margin) { set(m_marginBottom, margin); }
    int marginTopML() const { return m_marginTopML; }
    void setMarginTopML(int margin) { set(m_marginTopML, margin); }
    int marginBottomML() const { return m_marginBottomML; }
    void setMarginBottomML(int margin) { set(m_marginBottomML, margin); }
    /// A hint for owners only: the title's content decides how it is laid out.
    bool isMultiLine() const { return m_isMultiLine; }
    void setIsMultiLine(bool multiLine) { m_isMultiLine = multiLine; }
    /// Where the title may be broken into two lines.
    QString multiLineStr() const { return m_multiLineStr; }
    void setMultiLineStr(const QString &separator) { set(m_multiLineStr, separator); }

    /// Whether the button is enabled again right after its action was sent; otherwise a caller does that.
    bool enableImmediately() const { return m_enableImmediately; }
    void setEnableImmediately(bool immediately) { m_enableImmediately = immediately; }
    bool makeBoldFont() const { return m_makeBoldFont; }
    void setMakeBoldFont(bool bold) { set(m_makeBoldFont, bold); }

    /// A title laid out in a rectangle of the button, in its coordinates (points, y downwards).
    struct Layout
    {
        QFont font;
        QSizeF measured;
        QRectF rect;
    };
    /// Lays the title out on one line, or on two with `multi`, in `rect`, and hands back the layout in force: when even
    /// size 50 fits, that is the one from before. Two lines replace the title's working copy `mTitle`.
    const Layout &getAttributesForRect(const QRectF &rect, bool multi = false);
    QString mTitle() const { return m_mTitle; }

    QSize sizeHint() const override;

signals:
    /// The action was sent, the state has flipped, and the button is enabled again if it does that by itself.
    void clickOver();

protected:
    bool event(QEvent *event) override;
    void mousePressEvent(QMouseEvent *event) override;
    void mouseReleaseEvent(QMouseEvent *event) override;
    void keyPressEvent(QKeyEvent *event) override;
    void keyReleaseEvent(QKeyEvent *event) override;
    void nextCheckState() override;
    bool focusNextPrevChild(bool next) override;
    void paintEvent(QPaintEvent *event) override;

private:
    enum State { OnState, OnStateDwn, OnStateDis, OffState, OffStateDwn, OffStateDis, StateCount };

    struct Pieces
    {
        QString start;
        QString middle;
        QString end;
    };

    template <typename T>
    void set(T &field, const T &value)
    {
        field = value;
        updateGeometry();
        update();
    }
    State currentState() const;
    void sendActionAndToggle();
    void endClick();
    void endPressWithoutRelease();
    void drawPieces(QPainter &painter, const Pieces &pieces) const;
    void drawTitle(QPainter &painter);
    QStringList titleParts() const;
    void breakTitle();

    std::array<Pieces, StateCount> m_images;
    std::array<QColor, StateCount> m_colors;
    QString m_imgMouseHover;
    QString m_imgMouseOut;
    int m_marginLeft = 5;
    int m_marginRight = 5;
    int m_marginTop = 5;
    int m_marginBottom = 5;
    int m_marginTopML = 2;
    int m_marginBottomML = 2;
    bool m_isMultiLine = false;
    QString m_multiLineStr{QLatin1Char(' ')};
    QString m_mTitle;
    bool m_enableImmediately = true;
    bool m_makeBoldFont = false;

    bool m_mouseDown = false;
    HoverTracker m_hover;
    Layout m_singleLine;
    Layout m_twoLines;
};

} // namespace hazelmark
