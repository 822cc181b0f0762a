// SPDX-License-Identifier: GPL-3.0-or-later
#include "dialogs/TitleText.h"

void TitleText::showEvent(QShowEvent* event)
{
    ScrollText::showEvent(event);
    // By itself the tick begins with the showing, and repaints a still picture twenty times a
    // second till the text changes. Text that is set sets off only if it has to.
    if (!overflows())
        setText(text());
}
