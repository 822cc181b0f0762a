// SPDX-License-Identifier: GPL-3.0-or-later
#include "capture/UserActivityWatcher.h"

#include "platform/Display.h"
#include "platform/LastInput.h"

#include <QTimer>
#include <QVariant>

#include <utility>

namespace {

constexpr int pollInterval = 100;
constexpr char timerProperty[] = "timer";
constexpr char lastEventTicksProperty[] = "lastEventTicks";

} // namespace

UserActivityWatcher* UserActivityWatcher::s_instance = nullptr;

UserActivityWatcher* UserActivityWatcher::instance()
{
    if (!s_instance)
        s_instance = new UserActivityWatcher(nullptr);
    return s_instance;
}

UserActivityWatcher::UserActivityWatcher(QObject* parent)
    : QObject(parent)
{
    auto* timer = new QTimer(this);
    timer->setInterval(pollInterval);
    connect(timer, &QTimer::timeout, this, &UserActivityWatcher::emitWasActivity);
    setProperty(timerProperty, QVariant::fromValue<QObject*>(timer));
}

UserActivityWatcher::~UserActivityWatcher()
{
    delete qobject_cast<QTimer*>(property(timerProperty).value<QObject*>());

    UserActivityWatcher* const shared = std::exchange(s_instance, nullptr);
    if (shared != this)
        delete shared;
}

bool UserActivityWatcher::start()
{
    if (!platform::seesWholeDesktop())
        return false;
    setProperty(lastEventTicksProperty, qint64(platform::lastInputTick()));
    if (auto* timer = qobject_cast<QTimer*>(property(timerProperty).value<QObject*>()))
        timer->start();
    return true;
}

bool UserActivityWatcher::stop()
{
    // Twice: one hook for the keyboard and one for the mouse, once upon a time.
    return platform::removeInputHook() && platform::removeInputHook();
}

void UserActivityWatcher::emitWasActivity()
{
    const qint64 ticks = platform::lastInputTick();
    // A clock that has come round gives a negative difference; that one poll tells nothing.
    if (ticks - property(lastEventTicksProperty).toLongLong() > 0)
        emit wasActivity();
    setProperty(lastEventTicksProperty, ticks);
}
