// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QHash>
#include <QObject>
#include <QPixmap>
#include <QTextObjectInterface>

class QWidget;

/// Draws the pictures of a text: those that are part of it, in a "data:" address, and a place
/// holder for any other. To be registered with the layout of the document. What Qt does by itself
/// would look for the other ones on the disk and, on Windows, at the machine that an address names.
class TextPictures : public QObject, public QTextObjectInterface {
    Q_OBJECT
    Q_INTERFACES(QTextObjectInterface)

public:
    /// The widget that shows the text owns this.
    explicit TextPictures(QWidget* widget);

    /// The text with a short name in place of each address that holds a picture between its words.
    /// The pictures of the text before are forgotten.
    QString takeFrom(const QString& richText);
    /// The picture of this name or at this address, or the place holder. Never null.
    QPixmap picture(const QString& name);

    QSizeF intrinsicSize(QTextDocument* document, int position, const QTextFormat& format) override;
    void drawObject(QPainter* painter, const QRectF& rect, QTextDocument* document, int position,
                    const QTextFormat& format) override;

private:
    QPixmap decoded(const QString& address);

    QWidget* const m_widget;
    QHash<QString, QString> m_addresses; ///< by name
    QHash<QString, QPixmap> m_pictures; ///< by name or address
    qint64 m_pixels = 0; ///< of all pictures so far
};
