// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QComboBox>

/// A box whose current text is shortened in the middle, as in its list, where it is too long, and
/// stands in one line, here and there. currentText() stays the whole text.
class ElidedComboBox : public QComboBox {
public:
    explicit ElidedComboBox(QWidget* parent = nullptr);

protected:
    void paintEvent(QPaintEvent* event) override;
};
