// SPDX-License-Identifier: GPL-3.0-or-later
#include "platform/Termination.h"

#include <QSocketNotifier>

#include <csignal>
#include <fcntl.h>
#include <unistd.h>

namespace {

int signalPipe[2] = {-1, -1};

// Nothing but a write is allowed here: the rest happens in the event loop.
void writeSignal(int)
{
    const char byte = 0;
    if (::write(signalPipe[1], &byte, 1) < 0)
        return;
}

} // namespace

void platform::watchTermination(QObject* context, std::function<void()> callback)
{
    if (::pipe2(signalPipe, O_CLOEXEC | O_NONBLOCK) != 0)
        return;
    auto* notifier = new QSocketNotifier(signalPipe[0], QSocketNotifier::Read, context);
    QObject::connect(notifier, &QSocketNotifier::activated, context,
                     [callback = std::move(callback)] {
                         char byte;
                         while (::read(signalPipe[0], &byte, 1) > 0) { }
                         callback();
                     });

    struct sigaction action = {};
    action.sa_handler = writeSignal;
    action.sa_flags = SA_RESTART;
    for (const int number : {SIGTERM, SIGINT, SIGHUP})
        ::sigaction(number, &action, nullptr);
}
