// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QDialog>
#include <QImage>
#include <QPoint>

#include <initializer_list>
#include <memory>

namespace Ui {
class AbstractTessaportForm;
}

/// A frameless, translucent dialog on top of all windows that shows a picture as its panel and is
/// dragged by any place where no child takes the mouse. It is modal unless the subclass says
/// otherwise. It has an object name already when the subclass sets up its form file, which then
/// gives none: the subclass sets its own.
class AbstractTessaportForm : public QDialog {
    Q_OBJECT

public:
    explicit AbstractTessaportForm(QWidget* parent = nullptr);
    ~AbstractTessaportForm() override;

protected:
    /// The picture behind the form, stretched to it: the main window's, until another is set.
    void setBackground(const QString& resource);
    /// Makes the form lower than it is drawn, where the screen has no room for it, or as tall
    /// again. The children listed lack the difference. For a form whose background is set.
    void setHeight(int height, std::initializer_list<QWidget*> children);
    /// Whether the form can be dragged; it can at first.
    void setMovable(bool movable) { m_movable = movable; }

    /// Lets the form follow a drag. Never consumes an event.
    bool eventFilter(QObject* object, QEvent* event) override;
    void paintEvent(QPaintEvent* event) override;

private:
    const QImage& background();

    QImage m_background; ///< null till it is first asked for
    QImage m_stretchedBackground; ///< paintPanel()'s
    QString m_backgroundName;
    int m_tallest = 0; ///< the height it is drawn for; 0 before setHeight()
    bool m_movable = true;
    std::unique_ptr<Ui::AbstractTessaportForm> m_ui;
    QPoint m_lastMousePos;
};
