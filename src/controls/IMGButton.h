#pragma once

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
/// handler sees the state from before the click. While the mouse is held down the button is disabled and drawn so.
class IMGButton : public QAbstractButton
{
    Q_OBJECT

public:
    /// Names of the images of one state, each of which may be empty. Caps keep their own width; all three fill the
    /// button's height.
    struct Pieces
    {
        QString start;
        QString middle;
        QString end;
    };
    enum State { OnState, OnStateDwn, OnStateDis, OffState, OffStateDwn, OffStateDis };

    explicit IMGButton(QWidget *parent = nullptr);

    const Pieces &pieces(State state) const { return m_pieces[state]; }
    void setPieces(State state, const Pieces &pieces);
    // The three names that most buttons get by with: a button of the size of its end cap shows that image alone.
    QString imgOnState_En() const { return m_pieces[OnState].end; }
    void setImgOnState_En(const QString &name);
    QString imgOffState_En() const { return m_pieces[OffState].end; }
    void setImgOffState_En(const QString &name);
    /// Drawn as the end cap, over the button, while the pointer is over an off button.
    QString imgMouseHover() const { return m_imgMouseHover; }
    void setImgMouseHover(const QString &name);
    /// The counterpart of the hover image; not drawn.
    QString imgMouseOut() const { return m_imgMouseOut; }
    void setImgMouseOut(const QString &name) { m_imgMouseOut = name; }

    /// The title's colour in OnState, OnStateDis, OffState or OffStateDis.
    QColor titleColor(State state) const { return m_titleColors[state]; }
    void setTitleColor(State state, const QColor &color);

    /// Insets of the title in points; a title of two lines has a top and a bottom inset of its own.
    QMargins titleMargins() const { return m_margins; }
    void setTitleMargins(const QMargins &margins);
    int marginTopML() const { return m_marginTopML; }
    int marginBottomML() const { return m_marginBottomML; }
    void setMultiLineMargins(int top, int bottom);
    /// A hint for owners only: the title's content decides how it is laid out.
    bool isMultiLine() const { return m_isMultiLine; }
    void setIsMultiLine(bool multiLine) { m_isMultiLine = multiLine; }
    /// Where the title may be broken into two lines.
    QString multiLineStr() const { return m_multiLineStr; }
    void setMultiLineStr(const QString &separator);

    /// Whether the button is enabled again right after its action was sent; otherwise a caller does that.
    bool enableImmediately() const { return m_enableImmediately; }
    void setEnableImmediately(bool immediately) { m_enableImmediately = immediately; }
    bool makeBoldFont() const { return m_makeBoldFont; }
    void setMakeBoldFont(bool bold);

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
    State currentState() const;
    QColor currentTitleColor() const;
    void sendActionAndToggle();
    void drawPieces(QPainter &painter, const Pieces &pieces) const;
    void drawTitle(QPainter &painter);
    void breakTitle();

    std::array<Pieces, 6> m_pieces;
    std::array<QColor, 6> m_titleColors;
    QString m_imgMouseHover;
    QString m_imgMouseOut;
    QMargins m_margins{5, 5, 5, 5};
    int m_marginTopML = 2;
    int m_marginBottomML = 2;
    bool m_isMultiLine = false;
    QString m_multiLineStr{QLatin1Char(' ')};
    QString m_mTitle;
    bool m_enableImmediately = true;
    bool m_makeBoldFont = false;

    bool m_mouseDown = false;
    bool m_mouseHover = false;
    Layout m_singleLine;
    Layout m_twoLines;
};

} // namespace hazelmark
