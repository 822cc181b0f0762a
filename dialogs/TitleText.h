// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "dialogs/ScrollText.h"

/// The title of a task in a window that is open all day: a line of scrolling text whose tick rests
/// while the whole text fits.
class TitleText : public ScrollText {
    Q_OBJECT

public:
    using ScrollText::ScrollText;

protected:
    void showEvent(QShowEvent* event) override;
};
