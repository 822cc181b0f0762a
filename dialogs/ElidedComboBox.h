// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QComboBox>

/// A box whose current text is shortened in the middle, as in its list, where it is too long, and
/// stands in one line, here and there. currentText() stays the whole text.
class ElidedComboBox : public QComboBox {
public:
    using QComboBox::QComboBox;

    void showPopup() override;

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    bool m_hasDelegate = false;
};
