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
    void init()
    {
        m_service = std::make_unique<TessaPort>();
        m_service->setNoSave(true);
        m_form = std::make_unique<LoginForm>(m_service.get());
    }
    void cleanup()
    {
        m_form.reset();
        m_service.reset();
    }

    void opensInTheMiddleWithStoredCredentials()
    {
        m_service->session()->setLogin(QStringLiteral("anna@example.org"));
        m_service->session()->setPassword(QStringLiteral(" secret "));
        m_form = std::make_unique<LoginForm>(m_service.get());
        show();
        QCOMPARE(child<QLineEdit>("lbEmail")->text(), QStringLiteral("anna@example.org"));
        QCOMPARE(child<QLineEdit>("lbPassword")->text(), QStringLiteral(" secret "));
        QCOMPARE(QApplication::focusWidget(), child<QLineEdit>("lbEmail"));
        const QPoint middle = QApplication::desktop()->availableGeometry(m_form.get()).center();
        QTRY_VERIFY((m_form->geometry().center() - middle).manhattanLength() <= 2);
    }

    void asksForWhatIsMissing_data()
    {
        QTest::addColumn<QString>("email");
        QTest::addColumn<QString>("password");
        QTest::addColumn<QString>("info");
        QTest::addColumn<QString>("focus");

        const QString askEmail = QStringLiteral("Введите e-mail");
        QTest::newRow("both") << ""
                              << "" << askEmail << "lbEmail";
        QTest::newRow("e-mail") << ""
                                << "x" << askEmail << "lbEmail";
        QTest::newRow("password") << " "
                                  << "" << QStringLiteral("Введите пароль") << "lbPassword";
    }
    void asksForWhatIsMissing()
    {
        QFETCH(QString, email);
        QFETCH(QString, password);
        show();
        type(email, Qt::Key_Tab);
        type(password, Qt::Key_Return);
        QTEST(info(), "info");
        QTEST(QApplication::focusWidget()->objectName(), "focus");
        QVERIFY(enter()->isEnabled());
    }

    void tellsWhatWentWrong()
    {
        const QString before = QStringLiteral("Введите e-mail");
        const QString noConnection = QStringLiteral("Не удалось соединиться с сервером.");
        const QStringList texts{QStringLiteral("Неверный логин или пароль"),
                                noConnection,
                                noConnection,
                                noConnection,
                                before,
                                QStringLiteral("Ошибка соединения с базой данных."),
                                before};
        for (int code = -1; code < texts.size(); ++code) {
            enter()->click();
            enter()->setEnabled(false);
            emit m_service->error(code);
            QCOMPARE(info(), texts.value(code, before));
            QVERIFY(enter()->isEnabled());
        }
    }

    void signsInAtTheSecondTry()
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
        QCOMPARE(child<QLineEdit>("lbEmail")->text(), QStringLiteral("demo@example.com"));
        QVERIFY(enter()->isEnabled());
        QVERIFY(finished.isEmpty());

        child<QLineEdit>("lbPassword")->setFocus();
        child<QLineEdit>("lbPassword")->selectAll();
        type(QStringLiteral("demo"), Qt::Key_Tab);
        QTest::keyClick(enter(), Qt::Key_Space);
        QCOMPARE(info(), QString());
        QVERIFY(finished.wait());
        QCOMPARE(m_form->result(), int(QDialog::Accepted));
        QCOMPARE(m_service->session()->login(), QStringLiteral("demo@example.com"));
    }

    void closesWhileWaiting_data()
    {
        QTest::addColumn<bool>("byKey");
        QTest::newRow("button") << false;
        QTest::newRow("Esc") << true;
    }
    void closesWhileWaiting()
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
        if (byKey)
            QTest::keyClick(QApplication::focusWidget(), Qt::Key_Escape);
        else
            child<QPushButton>("pbClose")->click();
        QVERIFY(!m_form->isVisible());
        QCOMPARE(m_form->result(), int(QDialog::Rejected));

        // The answer comes after the dialog is gone; the client takes it all the same.
        m_form.reset();
        standIn.succeed(QStringLiteral("/api_teams"));
        QVERIFY(loginOk.wait());
    }

private:
    template <class Widget> Widget* child(const char* name) const
    {
        return m_form->findChild<Widget*>(QLatin1String(name));
    }
    QPushButton* enter() const { return child<QPushButton>("pbTessaport"); }
    QString info() const { return child<QLabel>("lbInfo")->text(); }
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

TESSAPORT_TEST_MAIN(LoginFormTest, QApplication)

#include "tst_loginform.moc"
