// SPDX-License-Identifier: GPL-3.0-or-later
#include "dialogs/ShortText.h"

QString shortText(const QString& text, int longest)
{
    if (text.size() <= longest)
        return text;
    // Half of a surrogate pair would be no character.
    const int end = text.at(longest - 1).isHighSurrogate() ? longest - 1 : longest;
    return text.left(end) + QChar(0x2026);
}

QString inOneLine(QString text)
{
    for (QChar& character : text) {
        if (character.isSpace())
            character = QLatin1Char(' ');
    }
    return text;
}
