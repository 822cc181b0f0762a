// SPDX-License-Identifier: GPL-3.0-or-later
#include "dialogs/LoginForm.h"
#include "res/Resources.h"
#include "service/TessaPort.h"
#include "support/StandIn.h"
#include "support/TestMain.h"
#include "support/TestServiceUrl.h"

#include <QApplication>
#include <QDesktopWidget>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QSignalSpy>

class LoginFormTest : public QObject {
    Q_OBJECT

private slots:
    void initTestCase() { initResources(); }
    void init();
    void cleanup();

    void opensInTheMiddleWithStoredCredentials();
    void asksForWhatIsMissing_data();
    void asksForWhatIsMissing();
    void tellsWhatWentWrong_data();
    void tellsWhatWentWrong();
    void signsInAtTheSecondTry();
    void closesWhileWaiting_data();
    void closesWhileWaiting();

private:
    QLineEdit* email() const { return m_form->findChild<QLineEdit*>(QStringLiteral("lbEmail")); }
    QLineEdit* password() const
    {
        return m_form->findChild<QLineEdit*>(QStringLiteral("lbPassword"));
    }
    QPushButton* enter() const
    {
        return m_form->findChild<QPushButton*>(QStringLiteral("pbTessaport"));
    }
    QString info() const { return m_form->findChild<QLabel*>(QStringLiteral("lbInfo"))->text(); }
    void show()
    {
        m_form->show();
        QVERIFY(QTest::qWaitForWindowActive(m_form.get()));
    }
    static void type(const QString& text, Qt::Key last)
    {
        QVERIFY(QApplication::focusWidget());
        QTest::keyClicks(QApplication::focusWidget(), text);
        QTest::keyClick(QApplication::focusWidget(), last);
    }

    std::unique_ptr<TessaPort> m_service;
    std::unique_ptr<LoginForm> m_form;
};

void LoginFormTest::init()
{
    m_service = std::make_unique<TessaPort>();
    m_service->setNoSave(true);
    m_form = std::make_unique<LoginForm>(m_service.get());
}

void LoginFormTest::cleanup()
{
    m_form.reset();
    m_service.reset();
}

void LoginFormTest::opensInTheMiddleWithStoredCredentials()
{
    m_service->session()->setLogin(QStringLiteral("anna@example.org"));
    m_service->session()->setPassword(QStringLiteral(" secret "));
    m_form = std::make_unique<LoginForm>(m_service.get());
    show();
    QCOMPARE(email()->text(), QStringLiteral("anna@example.org"));
    QCOMPARE(password()->text(), QStringLiteral(" secret "));
    QCOMPARE(QApplication::focusWidget(), email());
    const QPoint middle = QApplication::desktop()->availableGeometry(m_form.get()).center();
    QTRY_VERIFY((m_form->geometry().center() - middle).manhattanLength() <= 2);
    QCOMPARE(m_form->windowType(), Qt::Tool);
}

void LoginFormTest::asksForWhatIsMissing_data()
{
    QTest::addColumn<QString>("email");
    QTest::addColumn<QString>("password");
    QTest::addColumn<QString>("info");
    QTest::addColumn<QByteArray>("focus");

    QTest::newRow("both") << ""
                          << "" << QStringLiteral("Введите e-mail") << QByteArray("lbEmail");
    QTest::newRow("e-mail") << ""
                            << "x" << QStringLiteral("Введите e-mail") << QByteArray("lbEmail");
    QTest::newRow("password") << " "
                              << "" << QStringLiteral("Введите пароль") << QByteArray("lbPassword");
}

void LoginFormTest::asksForWhatIsMissing()
{
    QFETCH(QString, email);
    QFETCH(QString, password);
    show();
    type(email, Qt::Key_Tab);
    type(password, Qt::Key_Return);
    QTEST(info(), "info");
    QTEST(QApplication::focusWidget()->objectName().toUtf8(), "focus");
    QVERIFY(enter()->isEnabled());
}

void LoginFormTest::tellsWhatWentWrong_data()
{
    QTest::addColumn<int>("code");
    QTest::addColumn<QString>("info");

    const QString before = QStringLiteral("Введите e-mail");
    const QString noConnection = QStringLiteral("Не удалось соединиться с сервером.");
    QTest::newRow("-1") << -1 << before;
    QTest::newRow("0") << 0 << QStringLiteral("Неверный логин или пароль");
    QTest::newRow("1") << 1 << noConnection;
    QTest::newRow("2") << 2 << noConnection;
    QTest::newRow("3") << 3 << noConnection;
    QTest::newRow("4") << 4 << before;
    QTest::newRow("5") << 5 << QStringLiteral("Ошибка соединения с базой данных.");
    QTest::newRow("6") << 6 << before;
}

void LoginFormTest::tellsWhatWentWrong()
{
    QFETCH(int, code);
    enter()->click();
    enter()->setEnabled(false);
    emit m_service->error(code);
    QTEST(info(), "info");
    QVERIFY(enter()->isEnabled());
}

void LoginFormTest::signsInAtTheSecondTry()
{
    StandIn standIn;
    QVERIFY(standIn.isRunning());
    setTestServiceUrl(standIn.url());
    QSignalSpy finished(m_form.get(), &QDialog::finished);
    show();
    type(QStringLiteral("demo@example.com"), Qt::Key_Tab);
    type(QStringLiteral("wrong"), Qt::Key_Return);
    QVERIFY(!enter()->isEnabled());
    QTRY_COMPARE(info(), QStringLiteral("Неверный логин или пароль"));
    QCOMPARE(email()->text(), QStringLiteral("demo@example.com"));
    QVERIFY(enter()->isEnabled());
    QVERIFY(finished.isEmpty());

    password()->setFocus();
    password()->selectAll();
    type(QStringLiteral("demo"), Qt::Key_Tab);
    QTest::keyClick(enter(), Qt::Key_Space);
    QCOMPARE(info(), QString());
    QVERIFY(finished.wait());
    QCOMPARE(m_form->result(), int(QDialog::Accepted));
    QCOMPARE(m_service->session()->login(), QStringLiteral("demo@example.com"));
    QVERIFY(m_service->session()->logged());
}

void LoginFormTest::closesWhileWaiting_data()
{
    QTest::addColumn<bool>("byKey");
    QTest::newRow("button") << false;
    QTest::newRow("Esc") << true;
}

void LoginFormTest::closesWhileWaiting()
{
    QFETCH(bool, byKey);
    StandIn standIn;
    QVERIFY(standIn.isRunning());
    setTestServiceUrl(standIn.url());
    standIn.fail(QStringLiteral("/api_teams"), QStringLiteral("hang"));
    QSignalSpy loginOk(m_service.get(), &TessaPort::loginOk);
    show();
    type(QStringLiteral("demo@example.com"), Qt::Key_Tab);
    type(QStringLiteral("demo"), Qt::Key_Return);
    QVERIFY(standIn.waitForRequests(QStringLiteral("/api_teams"), 1));
    QVERIFY(!enter()->isEnabled());
    if (byKey) {
        QTest::keyClick(QApplication::focusWidget(), Qt::Key_Escape);
    } else {
        m_form->findChild<QPushButton*>(QStringLiteral("pbClose"))->click();
    }
    QVERIFY(!m_form->isVisible());
    QCOMPARE(m_form->result(), int(QDialog::Rejected));

    // The answer comes after the dialog is gone; the client takes it all the same.
    m_form.reset();
    standIn.succeed(QStringLiteral("/api_teams"));
    QVERIFY(loginOk.wait());
}

TESSAPORT_TEST_MAIN(LoginFormTest, QApplication)

#include "tst_loginform.moc"
