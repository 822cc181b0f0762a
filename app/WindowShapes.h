// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QObject>

/// An event filter for the application object. On a desktop that does not mix translucent windows
/// with what is behind them, it cuts each such window, when it is shown or resized, to the shape of
/// its panel: shadows and corners would be black there. Elsewhere it changes nothing.
class WindowShapes : public QObject {
    Q_OBJECT

public:
    explicit WindowShapes(QObject* parent);

    bool eventFilter(QObject* object, QEvent* event) override;
};
