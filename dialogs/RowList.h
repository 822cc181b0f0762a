// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QListWidget>
#include <QPushButton>
#include <QVector>

/// A list whose rows are shown, and styled, only when they come near the part in view: to style
/// hundreds takes longer than anybody likes to wait. A row near the part in view is one that the
/// keyboard reaches from there.
class RowList : public QListWidget {
public:
    using QListWidget::QListWidget;

    QRect visualRect(const QModelIndex& index) const override;

protected:
    void updateEditorGeometries() override;
    void scrollContentsBy(int dx, int dy) override;

private:
    bool m_isPlacingRows = false;
};

/// A button of a row. It has a fixed size, and is not measured or styled to be laid out.
class RowButton : public QPushButton {
public:
    using QPushButton::QPushButton;

    QSize sizeHint() const override { return minimumSize(); }
    QSize minimumSizeHint() const override { return minimumSize(); }
};

/// A row to be of a list, which owns it and shows it. Neither the row nor what is in it is styled
/// before it is shown.
class Row : public QWidget {
public:
    explicit Row(QListWidget* list);

    void setVisible(bool visible) override;

protected:
    bool event(QEvent* event) override;
    void childEvent(QChildEvent* event) override;
    bool eventFilter(QObject* child, QEvent* event) override;

private:
    bool isStyledTooSoon(const QEvent* event) const;

    friend void setRows(QListWidget* list, int gridHeight, const QVector<Row*>& rows);

    bool m_isInList = false;
};

/// Makes these the rows of the list, in place of those it has. They stand in a grid of this height
/// and are as large as they ask to be.
void setRows(QListWidget* list, int gridHeight, const QVector<Row*>& rows);
