// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QComboBox>
#include <QLabel>

/// A label of one line of plain text that ends in an ellipsis where the text is too long for it.
/// text() stays the whole text.
class ElidedLabel : public QLabel {
public:
    using QLabel::QLabel;

protected:
    void paintEvent(QPaintEvent* event) override;
};

/// A box whose current text is shortened as in its list where it is too long for the box.
/// currentText() stays the whole text.
class ElidedComboBox : public QComboBox {
public:
    using QComboBox::QComboBox;

protected:
    void paintEvent(QPaintEvent* event) override;
};
