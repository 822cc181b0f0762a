// SPDX-License-Identifier: GPL-3.0-or-later
#include "dialogs/LoginForm.h"
#include "res/Resources.h"
#include "service/TessaPort.h"
#include "support/StandIn.h"
#include "support/TestMain.h"
#include "support/TestServiceUrl.h"

#include <QApplication>
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
        m_form->show();
        QVERIFY(QTest::qWaitForWindowActive(m_form.get()));
    }
    void cleanup()
    {
        m_form.reset();
        m_service.reset();
    }

    void asksForWhatIsMissing()
    {
        type("", Qt::Key_Return);
        QCOMPARE(info(), QStringLiteral("Введите e-mail"));
        // A blank is not trimmed away.
        type(" ", Qt::Key_Return);
        QCOMPARE(info(), QStringLiteral("Введите пароль"));
        QCOMPARE(QApplication::focusWidget()->objectName(), QStringLiteral("lbPassword"));
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
        setTestServiceUrl(standIn.url());
        QSignalSpy finished(m_form.get(), &QDialog::finished);
        type("demo@example.com", Qt::Key_Tab);
        type("wrong", Qt::Key_Return);
        QVERIFY(!enter()->isEnabled());
        QTRY_COMPARE(info(), QStringLiteral("Неверный логин или пароль"));
        QVERIFY(finished.isEmpty());

        QTest::keyClick(QApplication::focusWidget(), Qt::Key_A, Qt::ControlModifier);
        type("demo", Qt::Key_Return);
        QCOMPARE(info(), QString());
        QVERIFY(finished.wait());
        QCOMPARE(m_form->result(), int(QDialog::Accepted));
    }

    void closesWhileWaiting()
    {
        StandIn standIn;
        setTestServiceUrl(standIn.url());
        standIn.fail(QStringLiteral("/api_teams"), QStringLiteral("hang"));
        QSignalSpy loginOk(m_service.get(), &TessaPort::loginOk);
        type("demo@example.com", Qt::Key_Tab);
        type("demo", Qt::Key_Return);
        QVERIFY(standIn.waitForRequests(QStringLiteral("/api_teams"), 1));
        type("", Qt::Key_Escape);
        QVERIFY(!m_form->isVisible());

        // The answer comes after the dialog is gone; the client takes it all the same.
        m_form.reset();
        standIn.succeed(QStringLiteral("/api_teams"));
        QVERIFY(loginOk.wait());
    }

private:
    QPushButton* enter() const
    {
        return m_form->findChild<QPushButton*>(QStringLiteral("pbTessaport"));
    }
    QString info() const { return m_form->findChild<QLabel*>(QStringLiteral("lbInfo"))->text(); }
    static void type(const char* text, Qt::Key last)
    {
        QTest::keyClicks(QApplication::focusWidget(), QLatin1String(text));
        QTest::keyClick(QApplication::focusWidget(), last);
    }

    std::unique_ptr<TessaPort> m_service;
    std::unique_ptr<LoginForm> m_form;
};

TESSAPORT_TEST_MAIN(LoginFormTest, QApplication)

#include "tst_loginform.moc"
