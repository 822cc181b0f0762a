// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QObject>

/// Switches the start of this program at the user's logon. The switch is with the system and
/// nowhere else.
class AutoRun : public QObject {
    Q_OBJECT

public:
    explicit AutoRun(QObject* parent);

public slots:
    /// Enters the running program, or takes the entry away. Returns its argument, even if the
    /// system refused.
    bool enable(bool enable);

    /// Whether there is an entry of this program's name; it may be of a copy at another place.
    bool isEnabled();
};
