// SPDX-License-Identifier: GPL-3.0-or-later
#include "PanelFixture.h"

#include "dialogs/AboutForm.h"
#include "res/Resources.h"
#include "support/TestMain.h"
#include "support/TestServiceUrl.h"
#include "update/UpdateState.h"

class TestAboutForm : public QObject {
    Q_OBJECT

private slots:
    void tellsWhatItIsAndFollowsTheVersionChecks()
    {
        initResources();
        setTestServiceUrl(QStringLiteral("https://localhost:1"));
        SignedInService service;
        UpdateState::instance()->init(&service);
        UpdateState::instance()->setUpdateInfo("[{\"version\":\"9.2.0\"}]");
        AboutForm form(&service);
        QCOMPARE(labelText(form, "lbVersion"), QStringLiteral("Версия: 1.1.0"));
        QCOMPARE(labelText(form, "lbUrl").count(QStringLiteral("https://localhost:1")), 2);
        QCOMPARE(labelText(form, "lbUpdateInfo"), QStringLiteral("TPMC is up to date"));

        service.session()->setIsOnline(true);
        form.refresh();
        // Nobody listens there, so that the request turns the client offline.
        QTRY_VERIFY(!service.session()->isOnline());
        QCOMPARE(labelText(form, "lbUpdateInfo"), QStringLiteral("Проверка обновления..."));
        emit service.updateAvailable(true);
        QCOMPARE(labelText(form, "lbUpdateInfo"), QStringLiteral("Доступно обновление 9.2.0"));
        emit service.updateAvailable(false);
        QCOMPARE(labelText(form, "lbUpdateInfo"), QStringLiteral("Установлена последняя версия"));
    }
};

TESSAPORT_TEST_MAIN(TestAboutForm, QApplication)
#include "tst_aboutform.moc"
