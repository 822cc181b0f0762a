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

    void needsAReason_data()
    {
        QTest::addColumn<QString>("reason");
        QTest::addColumn<bool>("isAccepted");
        QTest::newRow("empty") << "" << false;
        QTest::newRow("blanks and line breaks") << " \n\t\n " << false;
        QTest::newRow("words between blanks") << "\n  ill  " << true;
    }
    void needsAReason()
    {
        QFETCH(QString, reason);
        QFETCH(bool, isAccepted);
        CalendarForm form;
        form.show();
        QCOMPARE(form.selectedTime(), QTime(23, 59));
        form.findChild<QCalendarWidget*>()->setSelectedDate({2001, 2, 3});
        form.findChild<QPlainTextEdit*>()->setPlainText(reason);
        button(form, "Ок")->click();
        QCOMPARE(form.result(), int(isAccepted ? QDialog::Accepted : QDialog::Rejected));
        QCOMPARE(form.isVisible(), !isAccepted);
        QCOMPARE(NotificationManager::instance()->hasNotifications(), !isAccepted);
        QCOMPARE(form.getReason(), reason);
        QCOMPARE(form.selectedDate(), QDate(2001, 2, 3));
    }

    void canBeLeft()
    {
        CalendarForm form;
        QSignalSpy rejected(&form, &QDialog::rejected);
        form.show();
        button(form, "Отмена")->click();
        form.show();
        QTest::keyClick(&form, Qt::Key_Escape);
        QVERIFY(!form.isVisible());
        QCOMPARE(rejected.size(), 2);
    }

    void keyboardGoesThroughInOrder()
    {
        CalendarForm form;
        form.show();
        QVERIFY(QTest::qWaitForWindowActive(&form));
        form.findChild<QTimeEdit*>()->setFocus();
        QTest::keyClicks(QApplication::focusWidget(), QStringLiteral("930"));
        QTest::keyClick(QApplication::focusWidget(), Qt::Key_Tab);
        QTest::keyClicks(QApplication::focusWidget(), QStringLiteral("ill"));
        QTest::keyClick(QApplication::focusWidget(), Qt::Key_Tab);
        QTest::keyClick(QApplication::focusWidget(), Qt::Key_Return);
        QCOMPARE(form.result(), int(QDialog::Accepted));
        QCOMPARE(form.getReason(), QStringLiteral("ill"));
        QCOMPARE(form.selectedTime(), QTime(9, 30));
    }

    void monthAndYearAreNoButtons()
    {
        const CalendarForm form;
        const auto calendar = form.findChild<QCalendarWidget*>();
        for (const char* name : {"qt_calendar_monthbutton", "qt_calendar_yearbutton"})
            QVERIFY(!calendar->findChild<QToolButton*>(QLatin1String(name))->isEnabled());
        for (const Qt::DayOfWeek day : {Qt::Saturday, Qt::Sunday})
            QCOMPARE(calendar->weekdayTextFormat(day).foreground().color(), QColor(249, 156, 0));
    }

private:
    static QPushButton* button(const CalendarForm& form, const char* text)
    {
        // Both have the name for the style sheet.
        const auto buttons = form.findChildren<QPushButton*>(QStringLiteral("pbTessaport"));
        return buttons.first()->text() == QString::fromUtf8(text) ? buttons.first()
                                                                  : buttons.last();
    }
};

TESSAPORT_TEST_MAIN(TestCalendarForm, QApplication)
#include "tst_calendarform.moc"
