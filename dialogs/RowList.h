// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QVector>

class QListWidget;
class QWidget;

/// An empty widget to become a row of the list, which owns it.
QWidget* newRow(QListWidget* list);

/// Makes widgets from newRow() the rows of the list, in place of those it has. They stand in a grid
/// of this height and are as large as they ask to be.
void setRows(QListWidget* list, int gridHeight, const QVector<QWidget*>& rows);
