// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "mainwindow/AbstractMainForm.h"
#include "service/TessaPort.h"

#include <QApplication>
#include <QScreen>
#include <QtTest>

inline Task makeTask(const char* id, const char* title, const QDateTime& deadline = {})
{
    Task task;
    task.id = QLatin1String(id);
    task.title = QString::fromUtf8(title);
    task.deadline = deadline;
    return task;
}

/// A main window that does nothing by itself.
class QuietMainForm : public AbstractMainForm {
public:
    explicit QuietMainForm(TessaPort* service)
        : m_service(service)
    {
        resize(392, 73);
    }
    TessaPort* service() const override { return m_service; }
    QIcon taskIcon(const Task&) const override { return QPixmap(1, 1); }
    void updateAttention() override { }

private:
    TessaPort* const m_service;
};

/// A service client with a user signed in, who has no teams yet, and offline, so that nothing is
/// asked of the service.
class SignedInService : public TessaPort {
public:
    SignedInService()
    {
        static int users = 0;
        session()->reset();
        session()->load(QStringLiteral("user%1@example.com").arg(++users), QStringLiteral("demo"));
        session()->setIsOnline(false);
    }
};

/// The same, with two teams and a task chosen from the second.
class TwoTeams : public SignedInService {
public:
    TwoTeams()
    {
        session()->setTeams({{QStringLiteral("1"), QStringLiteral("Первая")},
                             {QStringLiteral("2"), QStringLiteral("Вторая")}});
        session()->setTasks({makeTask("11", "Письмо"), makeTask("12", "Б")}, QStringLiteral("1"));
        session()->setTasks({makeTask("21", "<h1>Макет</h1>", QDateTime({2020, 4, 26}, {18, 5})),
                             makeTask("22", "Текст"), unassignedTask()},
                            QStringLiteral("2"));
        session()->setTeamID(QStringLiteral("2"));
        session()->setTaskID(QStringLiteral("22"));
    }
};

/// The visible window of this class; null when there is none or more than one.
template <class Form> Form* visibleForm()
{
    Form* found = nullptr;
    const QWidgetList windows = QApplication::topLevelWidgets();
    for (QWidget* window : windows) {
        const auto form = qobject_cast<Form*>(window);
        if (!form || !form->isVisible())
            continue;
        if (found)
            return nullptr;
        found = form;
    }
    return found;
}

/// The text of a label among the form's children.
inline QString labelText(const QWidget& form, const char* name)
{
    return form.findChild<QWidget*>(QLatin1String(name))->property("text").toString();
}

inline QPoint middleOfScreen(const QWidget& window)
{
    const QPoint centre = QGuiApplication::primaryScreen()->availableGeometry().center();
    return {int(centre.x() - 0.5 * window.width()), int(centre.y() - 0.5 * window.height())};
}

/// Presses a button of the mouse over a widget, and moves on to its window's right.
inline void drag(QWidget* widget, Qt::MouseButton button)
{
    const QPoint place(5, 5);
    QMouseEvent press(QEvent::MouseButtonPress, place, widget->mapToGlobal(place), button, button,
                      {});
    QApplication::sendEvent(widget, &press);
    QMouseEvent move(QEvent::MouseMove, place, widget->mapToGlobal(place) + QPoint(40, 0),
                     Qt::NoButton, button, {});
    QApplication::sendEvent(widget, &move);
    QTest::mouseRelease(widget, button, {}, {-1, -1});
}
