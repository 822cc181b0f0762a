// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QByteArray>
#include <QString>
#include <QVariant>

/// The program's own JSON reader and writer on QVariant. The reader is forgiving: commas are
/// optional, what follows the first value is ignored, and a number without a point that fits no
/// integer type stays text. Neither side throws or logs. Report files are read back by what wrote
/// them, so the leniencies and number rules are settled.
namespace JsonCodec {

/// Containers nested deeper than this are broken text.
constexpr int maximumDepth = 512;

/// Objects become QVariantMap, arrays QVariantList, null an invalid QVariant. Broken text gives
/// an invalid value, or an empty container for one that is broken inside.
QVariant parse(const QString& json);
/// The same; `success` tells broken text from a null. A null string succeeds with an invalid value.
QVariant parse(const QString& json, bool& success);
/// The same for bytes from a file or the network. All of them are read: a NUL character ends no
/// text, as it would for QString::fromUtf8(QByteArray).
QVariant parseUtf8(const QByteArray& json);

/// Compact UTF-8; a null array when there is a value in it that can't be written.
QByteArray serialize(const QVariant& data);
/// The same; `success` is false exactly when the result is a null array.
QByteArray serialize(const QVariant& data, bool& success);

/// Line breaks and indentation; off at first, and never switched on by the program.
void setPrettyPrint(bool prettyPrint);
/// Text formats of dates; empty at first, which means Qt::TextDate.
void setDateTimeFormat(const QString& format);
void setDateFormat(const QString& format);

} // namespace JsonCodec
