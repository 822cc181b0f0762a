// SPDX-License-Identifier: GPL-3.0-or-later
#include "dialogs/AbstractTessaportForm.h"

#include "FramelessWindow.h"
#include "dialogs/WindowPlace.h"
#include "res/Resources.h"
#include "ui_AbstractTessaportForm.h"

#include <QEvent>
#include <QPainter>

AbstractTessaportForm::AbstractTessaportForm(QWidget* parent)
    : QDialog(parent)
    , m_ui(std::make_unique<Ui::AbstractTessaportForm>())
{
    m_ui->setupUi(this);
    setAttribute(Qt::WA_TranslucentBackground);
    // The windows stand beside each other and beside the strip, and only one of them is active.
    setAttribute(Qt::WA_AlwaysShowToolTips);
    setWindowFlags((windowFlags() & Qt::Dialog) | Qt::FramelessWindowHint
                   | Qt::WindowStaysOnTopHint);
    keepPlaceWhenShown(this);
    installEventFilter(this);
    setAttribute(Qt::WA_ShowModal);
    setBackground(QStringLiteral(":/images/main.png"));
}

AbstractTessaportForm::~AbstractTessaportForm() = default;

void AbstractTessaportForm::setBackground(const QString& resource)
{
    m_backgroundName = resource;
    m_background = QImage();
    m_stretchedBackground = QImage();
    update();
}

void AbstractTessaportForm::setHeight(int height, std::initializer_list<QWidget*> children)
{
    if (m_tallest == 0)
        m_tallest = this->height();
    const int lost = this->height() - height;
    setFixedSize(width(), height);
    for (QWidget* const child : children)
        child->resize(child->width(), child->height() - lost);

    setBackground(m_backgroundName);
}

// When it is first seen: most forms are made with the program, hidden, and not opened for hours.
const QImage& AbstractTessaportForm::background()
{
    if (!m_background.isNull())
        return m_background;
    m_background = panelImage(m_backgroundName);
    if (height() < m_tallest) {
        const qreal scale = qreal(m_background.height()) / m_tallest;
        m_background = shortenedPanel(m_background, qRound(height() * scale), scale);
    }
    return m_background;
}

bool AbstractTessaportForm::eventFilter(QObject* object, QEvent* event)
{
    if (m_movable && object == this) {
        // Comes once, before the form is shown, when the subclass has made its children.
        if (event->type() == QEvent::Polish)
            keepMouseWithButtons(this);
        dragWindow(this, m_lastMousePos, event);
    }
    return QDialog::eventFilter(object, event);
}

void AbstractTessaportForm::paintEvent(QPaintEvent* event)
{
    QWidget::paintEvent(event);
    QPainter painter(this);
    paintPanel(painter, background(), m_stretchedBackground);
}
