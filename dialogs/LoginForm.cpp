// SPDX-License-Identifier: GPL-3.0-or-later
#include "dialogs/LoginForm.h"

#include "FramelessWindow.h"
#include "dialogs/WindowPlace.h"
#include "res/Resources.h"
#include "service/TessaPort.h"
#include "ui_LoginForm.h"

#include <QPaintEvent>
#include <QPainter>
#include <QShortcut>

namespace {

constexpr int fieldTextIndent = 8;

void paintChild(QWidget* child, const QImage& panel)
{
    QPainter painter(child);
    painter.save();
    paintPanel(painter, panel);
    painter.restore();
}

/// A null text: the code has none, and what is shown stays.
QString errorText(int error)
{
    switch (error) {
    case InvalidCredentials:
        return QStringLiteral("Неверный логин или пароль");
    case ConnectionError:
    case SiteUnavailable:
    case OtherNetworkError:
        return QStringLiteral("Не удалось соединиться с сервером.");
    case DatabaseUnreachable:
        return QStringLiteral("Ошибка соединения с базой данных.");
    default:
        return QString();
    }
}

} // namespace

LoginForm::LoginForm(TessaPort* service, QWidget* parent)
    : QDialog(parent)
    , m_ui(std::make_unique<Ui::LoginForm>())
    , m_service(service)
{
    m_ui->setupUi(this);
    for (QLineEdit* const field : {m_ui->lbEmail, m_ui->lbPassword})
        field->setTextMargins(fieldTextIndent, 0, fieldTextIndent, 0);
    // After the connections by name, which it would break; the style sheet goes by this name.
    m_ui->pbEnter->setObjectName(QStringLiteral("pbTessaport"));
    keepMouseWithButtons(this);
    setAttribute(Qt::WA_TranslucentBackground);
    // Qt::Dialog with Qt::Popup is Qt::Tool: a true pop-up would take the mouse from all programs.
    setWindowFlags((windowFlags() & Qt::Dialog) | Qt::Popup | Qt::FramelessWindowHint
                   | Qt::WindowStaysOnTopHint);
    m_ui->wTop->installEventFilter(this);
    m_ui->wLoginPane->installEventFilter(this);
    m_topImage = panelImage(QStringLiteral(":/images/wlogin-top.png"));
    m_paneImage = panelImage(QStringLiteral(":/images/login.png"));

    const auto escape = new QShortcut(QKeySequence(QStringLiteral("Esc")), this);
    escape->setContext(Qt::WindowShortcut);
    connect(escape, &QShortcut::activated, this, &LoginForm::on_pbClose_clicked);

    keepPlaceWhenShown(this);
    centreOnScreen(this);
    activateWindow();
    m_ui->lbEmail->setText(m_service->session()->login());
    m_ui->lbPassword->setText(m_service->session()->password());
    connect(m_service, &TessaPort::error, this, &LoginForm::errorOccured);
    connect(m_service, &TessaPort::loginOk, this, &LoginForm::accept);
    m_ui->lbEmail->setFocus(Qt::OtherFocusReason);
}

LoginForm::~LoginForm() = default;

bool LoginForm::eventFilter(QObject* object, QEvent* event)
{
    if (event->type() == QEvent::Paint && object == m_ui->wTop) {
        paintChild(m_ui->wTop, m_topImage);
        event->accept();
        return true;
    }
    if (event->type() == QEvent::Paint && object == m_ui->wLoginPane) {
        paintChild(m_ui->wLoginPane, m_paneImage);
        event->accept();
        return true;
    }
    if (object == m_ui->wTop)
        dragWindow(this, m_lastMousePos, event);
    return false;
}

void LoginForm::on_pbEnter_clicked()
{
    m_ui->lbInfo->clear();
    if (m_ui->lbEmail->text().isEmpty()) {
        m_ui->lbInfo->setText(QStringLiteral("Введите e-mail"));
        m_ui->lbEmail->setFocus(Qt::OtherFocusReason);
        return;
    }
    if (m_ui->lbPassword->text().isEmpty()) {
        m_ui->lbInfo->setText(QStringLiteral("Введите пароль"));
        m_ui->lbPassword->setFocus(Qt::OtherFocusReason);
        return;
    }
    m_ui->pbEnter->setEnabled(false);
    m_service->login(m_ui->lbEmail->text(), m_ui->lbPassword->text());
}

void LoginForm::errorOccured(int error)
{
    const QString text = errorText(error);
    if (!text.isNull())
        m_ui->lbInfo->setText(text);
    m_ui->pbEnter->setEnabled(true);
}

void LoginForm::on_pbClose_clicked()
{
    reject();
}
