// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QImage>
#include <QPen>
#include <QStaticText>
#include <QTimer>
#include <QWidget>

/// One line of plain text. A text that is wider than the widget runs to the left in an endless
/// loop, with a separator between the repetitions and soft edges; it rests before it sets off, and
/// again after each change of text, separator or verdict. The height is fixed at that of the font
/// which the widget has when it is made.
class ScrollText : public QWidget {
    Q_OBJECT
    Q_PROPERTY(QString text READ text WRITE setText)
    Q_PROPERTY(QString separator READ separator WRITE setSeparator)

public:
    /// With `hoverColour` the text turns black under the mouse.
    explicit ScrollText(bool hoverColour, QWidget* parent = nullptr);

public slots:
    QString text() const;
    /// Markup is not interpreted. Also for the same text as before, the rest starts anew.
    void setText(QString text);
    QString separator() const;
    void setSeparator(QString separator);

protected:
    /// Whether the text is wider than there is room.
    bool overflows() const;
    bool eventFilter(QObject* object, QEvent* event) override;
    void paintEvent(QPaintEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    void showEvent(QShowEvent* event) override;
    void hideEvent(QHideEvent* event) override;

private slots:
    virtual void timer_timeout();

private:
    void updateShownText();
    void setTextColour(const QColor& colour);
    void drawFrame(const QPainter& widgetPainter);
    void drawPicture(const QPainter& widgetPainter, int offset);

    QString m_text;
    QString m_separator;
    QStaticText m_shownText;
    int m_textWidth = 0;
    QSize m_shownSize; ///< of the shown text; -1 x -1 before the first one
    int m_margin = 0;
    bool m_scrolling = false;
    int m_offset = 0; ///< pixels scrolled, or ticks left to rest, negative
    qreal m_ratio = 1.0; ///< pixels of the images a logical one
    QImage m_fadeMask;
    QImage m_frame;
    QImage m_picture; ///< what passes by from an offset on, without fading; null: to be drawn
    int m_pictureOffset = 0;
    QPen m_picturePen;
    QFont m_pictureFont;
    QTimer m_timer;
    const bool m_hoverColour;
};
