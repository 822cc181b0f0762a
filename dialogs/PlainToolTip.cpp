// SPDX-License-Identifier: GPL-3.0-or-later
#include "dialogs/PlainToolTip.h"

#include "dialogs/ShortText.h"

#include <QTextDocument>

namespace {

constexpr int longestLine = 100;
constexpr int longestWord = 50;
constexpr int longestText = 1000;

/// Gives a word that is too long for a line places where it can be parted, since a tool tip is
/// parted nowhere else.
QString withPartedWords(const QString& text)
{
    const QChar partingPlace(0x200B);
    QString result;
    int length = 0;
    for (const QChar character : text) {
        length = character.isSpace() ? 0 : length + 1;
        if (length > longestWord && !character.isLowSurrogate() && !character.isMark()) {
            result += partingPlace;
            length = 1;
        }
        result += character;
    }
    return result;
}

} // namespace

QString plainToolTip(const QString& text)
{
    if (text.size() <= longestLine && !Qt::mightBeRichText(text))
        return text;
    return Qt::convertFromPlainText(withPartedWords(shortText(text, longestText)),
                                    Qt::WhiteSpaceNormal);
}
