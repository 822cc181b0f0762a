// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QLabel>

/// A label of plain text in one line, which ends in an ellipsis where it is too long. text() stays
/// the whole text.
class ElidedLabel : public QLabel {
public:
    using QLabel::QLabel;

    /// The last so many characters are shown in any case, behind the ellipsis. None at first.
    void setKeptEnd(int length) { m_keptEnd = length; }

    /// A fixed size is told without measuring the text.
    QSize sizeHint() const override;
    QSize minimumSizeHint() const override;

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    QString shownText(int room) const;

    int m_keptEnd = 0;
};
