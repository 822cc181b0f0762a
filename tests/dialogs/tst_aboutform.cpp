// SPDX-License-Identifier: GPL-3.0-or-later
#include "PanelFixture.h"

#include "dialogs/AboutForm.h"
#include "res/Resources.h"
#include "support/StandIn.h"
#include "support/TestMain.h"
#include "support/TestServiceUrl.h"
#include "update/UpdateState.h"

#include <QJsonValue>

class TestAboutForm : public QObject {
    Q_OBJECT

private slots:
    void initTestCase() { initResources(); }
    void tellsWhatItIs();
    void followsTheVersionChecks();
};

void TestAboutForm::tellsWhatItIs()
{
    setTestServiceUrl(QStringLiteral("https://service.example:8443"));
    SignedInService service;
    const AboutForm form(&service);
    QCOMPARE(labelText(form, "lbVersion"), QStringLiteral("Версия: 1.1.0"));
    const QRegularExpression buildDate(
        QStringLiteral("^Дата сборки: [A-Z][a-z]{2} [ \\d]\\d \\d{4}, \\d\\d:\\d\\d:\\d\\d$"));
    QVERIFY(buildDate.match(labelText(form, "lbBuildDate")).hasMatch());
    QCOMPARE(labelText(form, "lbUrl").count(QStringLiteral("https://service.example:8443")), 2);
    QCOMPARE(labelText(form, "lbUpdateInfo"), QStringLiteral("TPMC is up to date"));
    QCOMPARE(form.maximumSize(), QSize(440, 250));
    QVERIFY(!form.isModal());
}

void TestAboutForm::followsTheVersionChecks()
{
    QJsonObject data = StandIn::demoData();
    data.insert(QStringLiteral("version"), QStringLiteral("9.2.0"));
    StandIn standIn(data);
    QVERIFY(standIn.isRunning());
    setTestServiceUrl(standIn.url());
    SignedInService service;
    UpdateState::instance()->init(&service);
    AboutForm form(&service);

    form.refresh();
    QCOMPARE(labelText(form, "lbUpdateInfo"), QStringLiteral("Проверка обновления..."));
    QTRY_COMPARE(labelText(form, "lbUpdateInfo"), QStringLiteral("Доступно обновление 9.2.0"));

    data.insert(QStringLiteral("version"), QStringLiteral("1.1.0"));
    standIn.setData(data);
    service.requestVersion();
    QTRY_COMPARE(labelText(form, "lbUpdateInfo"), QStringLiteral("Установлена последняя версия"));
}

TESSAPORT_TEST_MAIN(TestAboutForm, QApplication)
#include "tst_aboutform.moc"
