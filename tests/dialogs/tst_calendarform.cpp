// SPDX-License-Identifier: GPL-3.0-or-later
#include "PanelFixture.h"

#include "dialogs/CalendarForm.h"
#include "notifications/NotificationManager.h"
#include "res/Resources.h"
#include "support/TestMain.h"

#include <QCalendarWidget>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QTextCharFormat>
#include <QTimeEdit>
#include <QToolButton>

class TestCalendarForm : public QObject {
    Q_OBJECT

private slots:
    void initTestCase() { initResources(); }
    void cleanup() { NotificationManager::instance()->closeAll(); }

    void asksForTheEndOfTodayAtFirst();
    void needsAReason_data();
    void needsAReason();
    void canBeLeft();
    void keyboardGoesThroughInOrder();
    void monthsAreTurnedByTheArrowsAlone();
};

namespace {

QPushButton* button(const CalendarForm& form, const QString& text)
{
    // Both are named pbTessaport, for the style sheet.
    const auto buttons = form.findChildren<QPushButton*>(QStringLiteral("pbTessaport"));
    for (QPushButton* candidate : buttons)
        if (candidate->text() == text)
            return candidate;
    return nullptr;
}

QPushButton* okButton(const CalendarForm& form)
{
    return button(form, QStringLiteral("Ок"));
}

QPlainTextEdit* reasonEdit(const CalendarForm& form)
{
    return form.findChild<QPlainTextEdit*>();
}

} // namespace

void TestCalendarForm::asksForTheEndOfTodayAtFirst()
{
    const QDate before = QDate::currentDate();
    const CalendarForm form;
    QVERIFY(form.selectedDate() >= before && form.selectedDate() <= QDate::currentDate());
    QCOMPARE(form.selectedTime(), QTime(23, 59));
    QCOMPARE(form.getReason(), QString());
    QCOMPARE(form.windowTitle(), QStringLiteral("Запрос на продление задачи"));
    QVERIFY(form.isModal());
}

void TestCalendarForm::needsAReason_data()
{
    QTest::addColumn<QString>("reason");
    QTest::addColumn<bool>("isAccepted");
    QTest::newRow("empty") << QString() << false;
    QTest::newRow("blanks and line breaks") << QStringLiteral(" \n\t\n ") << false;
    QTest::newRow("words") << QStringLiteral("Правки\nзаказчика") << true;
    QTest::newRow("words between blanks") << QStringLiteral("\n  болею  ") << true;
}

void TestCalendarForm::needsAReason()
{
    QFETCH(QString, reason);
    QFETCH(bool, isAccepted);
    CalendarForm form;
    QSignalSpy accepted(&form, &QDialog::accepted);
    form.show();
    form.findChild<QCalendarWidget*>()->setSelectedDate({2001, 2, 3});
    reasonEdit(form)->setPlainText(reason);
    okButton(form)->click();
    QCOMPARE(accepted.size(), isAccepted ? 1 : 0);
    QCOMPARE(form.isVisible(), !isAccepted);
    QCOMPARE(NotificationManager::instance()->hasNotifications(), !isAccepted);
    QCOMPARE(form.getReason(), reason);
    QCOMPARE(form.selectedDate(), QDate(2001, 2, 3));
}

void TestCalendarForm::canBeLeft()
{
    CalendarForm form;
    QSignalSpy accepted(&form, &QDialog::accepted);
    QSignalSpy rejected(&form, &QDialog::rejected);
    form.show();
    reasonEdit(form)->setPlainText(QStringLiteral("болею"));
    button(form, QStringLiteral("Отмена"))->click();
    form.show();
    QTest::keyClick(&form, Qt::Key_Escape);
    QVERIFY(!form.isVisible());
    QCOMPARE(rejected.size(), 2);
    QCOMPARE(accepted.size(), 0);
}

void TestCalendarForm::keyboardGoesThroughInOrder()
{
    CalendarForm form;
    form.show();
    QVERIFY(QTest::qWaitForWindowActive(&form));
    form.findChild<QTimeEdit*>()->setFocus();
    QTest::keyClicks(QApplication::focusWidget(), QStringLiteral("930"));
    QTest::keyClick(QApplication::focusWidget(), Qt::Key_Tab);
    QCOMPARE(QApplication::focusWidget(), reasonEdit(form));
    QTest::keyClicks(QApplication::focusWidget(), QStringLiteral("ill"));
    QTest::keyClick(QApplication::focusWidget(), Qt::Key_Tab);
    QCOMPARE(QApplication::focusWidget(), okButton(form));
    QTest::keyClick(QApplication::focusWidget(), Qt::Key_Return);
    QCOMPARE(form.result(), int(QDialog::Accepted));
    QCOMPARE(form.getReason(), QStringLiteral("ill"));
    QCOMPARE(form.selectedTime(), QTime(9, 30));
}

void TestCalendarForm::monthsAreTurnedByTheArrowsAlone()
{
    const CalendarForm form;
    const auto calendar = form.findChild<QCalendarWidget*>();
    const auto tool = [calendar](const char* name) {
        return calendar->findChild<QToolButton*>(QLatin1String(name));
    };
    calendar->setCurrentPage(2020, 4);
    QCOMPARE(tool("qt_calendar_monthbutton")->text().toLower(), QStringLiteral("апрель"));
    QVERIFY(!tool("qt_calendar_monthbutton")->isEnabled());
    QVERIFY(!tool("qt_calendar_yearbutton")->isEnabled());
    tool("qt_calendar_nextmonth")->click();
    QCOMPARE(calendar->monthShown(), 5);
    tool("qt_calendar_prevmonth")->click();
    tool("qt_calendar_prevmonth")->click();
    QCOMPARE(calendar->monthShown(), 3);
    QVERIFY(!tool("qt_calendar_prevmonth")->icon().isNull());

    for (const Qt::DayOfWeek day : {Qt::Saturday, Qt::Sunday})
        QCOMPARE(calendar->weekdayTextFormat(day).foreground().color(), QColor(249, 156, 0));
}

TESSAPORT_TEST_MAIN(TestCalendarForm, QApplication)
#include "tst_calendarform.moc"
