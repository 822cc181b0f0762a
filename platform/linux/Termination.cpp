// SPDX-License-Identifier: GPL-3.0-or-later
#include "platform/Termination.h"

#include <QSocketNotifier>

#include <cerrno>
#include <csignal>
#include <fcntl.h>
#include <unistd.h>

namespace {

int signalPipe[2] = {-1, -1};

// Nothing but a write is allowed here: the rest happens in the event loop.
void writeSignal(int)
{
    const int savedError = errno;
    const char byte = 0;
    [[maybe_unused]] const ssize_t written = ::write(signalPipe[1], &byte, 1);
    errno = savedError;
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
    for (const int number : {SIGTERM, SIGINT, SIGHUP}) {
        struct sigaction before = {};
        // Who starts the program with a signal ignored wants it ignored.
        if (::sigaction(number, nullptr, &before) == 0 && before.sa_handler != SIG_IGN)
            ::sigaction(number, &action, nullptr);
    }
}
