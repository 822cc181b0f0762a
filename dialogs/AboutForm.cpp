// SPDX-License-Identifier: GPL-3.0-or-later
#include "dialogs/AboutForm.h"

#include "dialogs/WindowPlace.h"
#include "res/Resources.h"
#include "service/ServiceAddress.h"
#include "service/TessaPort.h"
#include "ui_AboutForm.h"
#include "update/UpdateState.h"

#include <QCoreApplication>

AboutForm::AboutForm(TessaPort* service, QWidget* parent)
    : QDialog(parent)
    , m_ui(std::make_unique<Ui::AboutForm>())
    , m_service(service)
{
    m_ui->setupUi(this);
    m_ui->label->setPixmap(picture(QStringLiteral(":/images/res/images/TP.png")));
    m_ui->lbVersion->setText(QStringLiteral("Версия: ") + QCoreApplication::applicationVersion());
    m_ui->lbBuildDate->setText(QStringLiteral("Дата сборки: " __DATE__ ", " __TIME__));
    m_ui->lbUrl->setText(
        QStringLiteral("<a href=\"%1\"><span style=\"font-size:10pt; text-decoration: underline; "
                       "color:#0000ff;\">%1</span></a>")
            .arg(ServiceAddress::baseUrl().toHtmlEscaped()));
    makeScrollable(this, {}, [this](const QSize& size) { setFixedSize(size); });
    connect(service, &TessaPort::updateAvailable, this, &AboutForm::updateAvailable);
}

AboutForm::~AboutForm() = default;

void AboutForm::refresh()
{
    m_ui->lbUpdateInfo->setText(QStringLiteral("Проверка обновления..."));
    m_service->requestVersion();
}

void AboutForm::updateAvailable(bool isAvailable)
{
    m_ui->lbUpdateInfo->setText(isAvailable ? QStringLiteral("Доступно обновление ")
                                        + UpdateState::instance()->latestVersion()
                                            : QStringLiteral("Установлена последняя версия"));
}
