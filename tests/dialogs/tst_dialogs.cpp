// SPDX-License-Identifier: GPL-3.0-or-later
#include "PanelFixture.h"

#include "dialogs/AboutForm.h"
#include "dialogs/CalendarForm.h"
#include "dialogs/LoginForm.h"
#include "notifications/NotificationManager.h"
#include "res/Resources.h"
#include "support/Notices.h"
#include "support/TestMain.h"
#include "support/TestServiceUrl.h"
#include "update/UpdateState.h"

#include <QCalendarWidget>
#include <QLabel>
#include <QLineEdit>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QTableView>
#include <QTextCharFormat>
#include <QTimeEdit>
#include <QToolButton>

namespace {

/// Types into the widget that has the focus.
void type(const char* text, Qt::Key last)
{
    QVERIFY(QApplication::focusWidget());
    QTest::keyClicks(QApplication::focusWidget(), QLatin1String(text));
    QTest::keyClick(QApplication::focusWidget(), last);
}

/// The buttons of a form, which have one name for the style sheet.
QPushButton* button(const QWidget& form, const char* text)
{
    const auto buttons = form.findChildren<QPushButton*>(QStringLiteral("pbTessaport"));
    return buttons.first()->text() == QString::fromUtf8(text) ? buttons.first() : buttons.last();
}

} // namespace

/// Sign-in, the request for a later deadline, and what the program tells about itself. Nobody
/// listens at the address of the service.
class DialogsTest : public QObject {
    Q_OBJECT

private slots:
    void initTestCase()
    {
        initResources();
        m_service.setNoSave(true);
        setTestServiceUrl(QStringLiteral("https://localhost:1"));
    }
    void cleanup() { NotificationManager::instance()->closeAll(); }

    void signInAsksForWhatIsMissing()
    {
        LoginForm form(&m_service);
        form.show();
        // A window manager may keep the keyboard from Wine's windows.
        QApplication::setActiveWindow(&form);
        type("", Qt::Key_Return);
        QCOMPARE(labelText(form, "lbInfo"), QStringLiteral("Введите e-mail"));
        QCOMPARE(QApplication::focusWidget()->objectName(), QStringLiteral("lbEmail"));
        // A blank is not trimmed away.
        type(" ", Qt::Key_Return);
        QCOMPARE(labelText(form, "lbInfo"), QStringLiteral("Введите пароль"));
        QCOMPARE(QApplication::focusWidget()->objectName(), QStringLiteral("lbPassword"));
        type("p", Qt::Key_Return);
        QCOMPARE(labelText(form, "lbInfo"), QString());
        QVERIFY(!button(form, "")->isEnabled());
        type("", Qt::Key_Escape);
        QVERIFY(!form.isVisible());
    }

    void signInGoesToTheService()
    {
        SignedInService service;
        service.session()->setIsOnline(true);
        LoginForm form(&service);
        QCOMPARE(form.pos(), middleOfScreen(form));
        QCOMPARE(labelText(form, "lbEmail"), service.session()->login());
        QCOMPARE(labelText(form, "lbPassword"), QStringLiteral("demo"));
        QCOMPARE(form.findChild<QLineEdit*>(QStringLiteral("lbPassword"))->echoMode(),
                 QLineEdit::Password);
        form.findChild<QLineEdit*>(QStringLiteral("lbEmail"))->setText(QStringLiteral("b@c"));
        QSignalSpy unanswered(&service, &TessaPort::onlineChanged);
        QTest::ignoreMessage(QtDebugMsg, QRegularExpression(QStringLiteral("b@c.*demo")));
        button(form, "")->click();
        QVERIFY(unanswered.wait());
        emit service.loginOk();
        QCOMPARE(form.result(), int(QDialog::Accepted));
    }

    void signInTellsWhatWentWrong()
    {
        LoginForm form(&m_service);
        const QString before = QStringLiteral("Введите e-mail");
        const QString noConnection = QStringLiteral("Не удалось соединиться с сервером.");
        const QStringList texts{QStringLiteral("Неверный логин или пароль"),
                                noConnection,
                                noConnection,
                                noConnection,
                                before,
                                QStringLiteral("Ошибка соединения с базой данных."),
                                before};
        QPushButton* const enter = button(form, "");
        for (int code = -1; code < texts.size(); ++code) {
            enter->click();
            enter->setEnabled(false);
            emit m_service.error(code);
            QCOMPARE(labelText(form, "lbInfo"), texts.value(code, before));
            QVERIFY(enter->isEnabled());
        }
    }

    void signInFollowsItsTopStrip()
    {
        LoginForm form(&m_service);
        const QPoint before = form.pos();
        drag(form.findChild<QWidget*>(QStringLiteral("wLoginPane")), Qt::LeftButton);
        drag(form.findChild<QWidget*>(QStringLiteral("wTop")), Qt::RightButton);
        drag(form.findChild<QWidget*>(QStringLiteral("pbClose")), Qt::LeftButton);
        QCOMPARE(form.pos(), before);
        drag(form.findChild<QWidget*>(QStringLiteral("wTop")), Qt::LeftButton);
        QCOMPARE(form.pos(), before + QPoint(40, 0));
    }

    void laterDeadlineNeedsAReason()
    {
        CalendarForm form;
        form.show();
        QCOMPARE(form.selectedTime(), QTime(23, 59));
        form.findChild<QCalendarWidget*>()->setSelectedDate({2001, 2, 3});
        for (const QString& reason : {QString(), QStringLiteral(" \n\t")}) {
            form.findChild<QPlainTextEdit*>()->setPlainText(reason);
            button(form, "Ок")->click();
            QVERIFY(form.isVisible());
        }
        QCOMPARE(shownNotices().count(QStringLiteral("0 Введите причину переноса!")), 2);
        QTest::keyClick(&form, Qt::Key_Escape);
        QVERIFY(!form.isVisible());

        form.show();
        QApplication::setActiveWindow(&form);
        form.findChild<QTimeEdit*>()->setFocus();
        type("930", Qt::Key_Tab);
        form.findChild<QPlainTextEdit*>()->setPlainText(QStringLiteral("\n  ill  "));
        type("", Qt::Key_Tab);
        type("", Qt::Key_Return);
        QCOMPARE(form.result(), int(QDialog::Accepted));
        QCOMPARE(form.getReason(), QStringLiteral("\n  ill  "));
        QCOMPARE(form.selectedTime(), QTime(9, 30));
        QCOMPARE(form.selectedDate(), QDate(2001, 2, 3));
        button(form, "Отмена")->click();
        QCOMPARE(form.result(), int(QDialog::Rejected));
    }

    void calendarIsRussianAndTurnsByItsArrows()
    {
        const CalendarForm form;
        // The style sheet goes by their name.
        QCOMPARE(form.findChildren<QPushButton*>(QStringLiteral("pbTessaport")).size(), 2);
        QCOMPARE(form.windowTitle(), QStringLiteral("Запрос на продление задачи"));
        auto* calendar = form.findChild<QCalendarWidget*>();
        QCOMPARE(calendar->locale().language(), QLocale::Russian);
        for (const Qt::DayOfWeek day : {Qt::Saturday, Qt::Sunday})
            QCOMPARE(calendar->weekdayTextFormat(day).foreground().color(), QColor(249, 156, 0));
        const auto part = [calendar](const char* name) {
            return calendar->findChild<QToolButton*>(QLatin1String("qt_calendar_")
                                                     + QLatin1String(name));
        };
        QVERIFY(!part("monthbutton")->isEnabled() && !part("monthbutton")->menu());
        QVERIFY(!part("yearbutton")->isEnabled());
        calendar->setCurrentPage(2028, 5);
        for (const auto& [arrow, picture, month] : {std::tuple("prevmonth", "pbarrow_left", 4),
                                                    std::tuple("nextmonth", "pbarrow_right", 5)}) {
            part(arrow)->click();
            QCOMPARE(calendar->monthShown(), month);
            const QIcon icon = part(arrow)->icon();
            QCOMPARE(icon.pixmap(16, QIcon::Normal, QIcon::On).toImage(),
                     QPixmap(QStringLiteral(":/icons/res/icons/%1.png").arg(QLatin1String(picture)))
                         .toImage());
        }
        const auto days =
            calendar->findChild<QTableView*>(QStringLiteral("qt_calendar_calendarview"));
        QCOMPARE(days->palette().color(QPalette::Base), QColor(Qt::transparent));
    }

    void aboutFollowsTheVersionChecks()
    {
        UpdateState::instance()->init(&m_service);
        UpdateState::instance()->setUpdateInfo("[{\"version\":\"9.2.0\"}]");
        AboutForm form(&m_service);
        QCOMPARE(labelText(form, "lbVersion"), QStringLiteral("Версия: 1.1.0"));
        QCOMPARE(labelText(form, "lbUrl").count(QStringLiteral("https://localhost:1")), 2);
        QVERIFY(form.findChild<QLabel*>(QStringLiteral("lbUrl"))->openExternalLinks());
        QCOMPARE(labelText(form, "lbUpdateInfo"), QStringLiteral("TPMC is up to date"));
        QVERIFY(labelText(form, "lbBuildDate").startsWith(QStringLiteral("Дата сборки: ")));
        QVERIFY(
            !form.findChild<QLabel*>(QStringLiteral("label"))->pixmap(Qt::ReturnByValue).isNull());
        m_service.session()->setIsOnline(true);
        QSignalSpy unanswered(&m_service, &TessaPort::onlineChanged);
        form.refresh();
        QVERIFY(unanswered.wait());
        QCOMPARE(labelText(form, "lbUpdateInfo"), QStringLiteral("Проверка обновления..."));
        emit m_service.updateAvailable(true);
        QCOMPARE(labelText(form, "lbUpdateInfo"), QStringLiteral("Доступно обновление 9.2.0"));
        emit m_service.updateAvailable(false);
        QCOMPARE(labelText(form, "lbUpdateInfo"), QStringLiteral("Установлена последняя версия"));
    }

private:
    TessaPort m_service;
};

TESSAPORT_TEST_MAIN(DialogsTest, QApplication)

#include "tst_dialogs.moc"
