// SPDX-License-Identifier: GPL-3.0-or-later
#include "PanelFixture.h"

#include "dialogs/CalendarForm.h"
#include "notifications/NotificationManager.h"
#include "res/Resources.h"
#include "support/TestMain.h"

#include <QCalendarWidget>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QTimeEdit>

class TestCalendarForm : public QObject {
    Q_OBJECT

private slots:
    void initTestCase() { initResources(); }
    void cleanup() { NotificationManager::instance()->closeAll(); }

    void needsAReason()
    {
        CalendarForm form;
        form.show();
        QCOMPARE(form.selectedTime(), QTime(23, 59));
        form.findChild<QCalendarWidget*>()->setSelectedDate({2001, 2, 3});
        button(form, "Ок")->click();
        QVERIFY(form.isVisible());
        for (const QString& reason : {QStringLiteral(" \n\t"), QStringLiteral("\n  ill  ")}) {
            form.findChild<QPlainTextEdit*>()->setPlainText(reason);
            QCOMPARE(form.getReason(), reason);
            QVERIFY(form.isVisible());
            button(form, "Ок")->click();
        }
        QCOMPARE(form.result(), int(QDialog::Accepted));
        QVERIFY(NotificationManager::instance()->hasNotifications());
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
