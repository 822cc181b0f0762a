// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QImage>
#include <QPixmap>

class QPainter;

/// Makes the style sheet, the pictures, the fonts and Qt's own texts available as ":/qss/main.qss",
/// ":/images/...", ":/icons/...", ":/fonts/..." and ":/translations/...". They are linked in with a
/// static library, so nothing of them exists before this is called. Calling it again does no harm.
void initResources();

/// Loads the two font resources and makes the regular one the font of the application, at the size
/// the windows are drawn for. Needs a QApplication and initResources(). If the font can't be
/// loaded, the log says so and the system's font stays.
void installFonts();

/// Has Qt's own texts, such as those in the menu of a text field, in Russian. Needs a
/// QCoreApplication and initResources(). If the catalogue can't be loaded, the log says so and they
/// are English.
void installTranslation();

/// Gives the application one style and one light palette, whatever the theme of the desktop, since
/// the panels of the windows are light. Needs a QApplication.
void installPalette();

/// The picture of this resource, from its "@2x" twin when a screen is scaled; either way the same
/// size in the coordinates of widgets. A null pixmap when there is none. Icons and style sheets
/// find the twin by themselves, QPixmap and QImage do not.
QPixmap picture(const QString& resource);

// What the frameless windows paint as their panel.

/// The picture in the resolution of the sharpest screen; null when there is none of this name.
QImage panelImage(const QString& resource);

/// The whole picture, stretched to the painter's viewport.
void paintPanel(QPainter& painter, const QImage& panel);
/// The same for a window that is repainted often: `stretched` is kept between the repaints, null at
/// the first one and for another panel. It stays null where the panel does not have to be
/// stretched.
void paintPanel(QPainter& painter, const QImage& panel, QImage& stretched);

/// The panel with fewer rows, for a window that is lower than it is drawn: taken from between its
/// head and its foot, which keep their form. `scale` is the number of rows a unit.
QImage shortenedPanel(const QImage& panel, int rows, qreal scale);
