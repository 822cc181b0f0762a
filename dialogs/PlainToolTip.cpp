// SPDX-License-Identifier: GPL-3.0-or-later
#include "dialogs/PlainToolTip.h"

#include <QTextDocument>

namespace {

constexpr int longestLine = 150;
constexpr int longestText = 1000;

} // namespace

QString plainToolTip(const QString& text)
{
    if (text.size() <= longestLine && !Qt::mightBeRichText(text)) {
        return text;
    }
    if (text.size() <= longestText) {
        return Qt::convertFromPlainText(text);
    }
    return Qt::convertFromPlainText(text.left(longestText) + QChar(0x2026));
}
