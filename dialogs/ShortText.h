// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>

/// The text, or, when it has more than `longest` UTF-16 units, its beginning and an ellipsis. For
/// texts from outside: what measures or draws one takes its time by each character, also of those
/// that no screen could show.
QString shortText(const QString& text, int longest);

/// The text with a blank for each of its line breaks and other white space: for places that have
/// one line, where the words on both sides of a break would be drawn as one or cut in halves.
QString inOneLine(QString text);
