// SPDX-License-Identifier: GPL-3.0-or-later
#include "Connections.h"

#include <netinet/tcp.h>
#include <openssl/ssl.h>
#include <poll.h>
#include <sys/socket.h>

namespace standin::Connections {

void acknowledgeAtOnce(const httplib::Request& request)
{
    // The client sends head and body apart and waits with the body until the head is acknowledged,
    // for which the system would take 40 milliseconds.
    const int on = 1;
    setsockopt(SSL_get_fd(request.ssl), IPPROTO_TCP, TCP_QUICKACK, &on, sizeof on);
}

void drop(const httplib::Request& request)
{
    ::shutdown(SSL_get_fd(request.ssl), SHUT_RDWR);
}

void reset(const httplib::Request& request)
{
    // A socket that is connected to nowhere lets go of its connection at once.
    sockaddr nowhere{};
    nowhere.sa_family = AF_UNSPEC;
    ::connect(SSL_get_fd(request.ssl), &nowhere, sizeof nowhere);
}

bool isClosedByClient(const httplib::Request& request)
{
    pollfd poll{SSL_get_fd(request.ssl), POLLRDHUP, 0};
    return ::poll(&poll, 1, 0) > 0;
}

} // namespace standin::Connections
