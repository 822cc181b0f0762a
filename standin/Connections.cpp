// SPDX-License-Identifier: GPL-3.0-or-later
#include "Connections.h"

#include <mutex>
#include <set>

#include <netinet/tcp.h>
#include <openssl/ssl.h>
#include <poll.h>
#include <sys/socket.h>

namespace standin::Connections {
namespace {

std::mutex mutex;
std::set<const SSL*> open;

// OpenSSL calls this when it frees a connection, which is before its socket is closed: what is
// remembered always has a socket of its own.
void forget(void* ssl, void*, CRYPTO_EX_DATA*, int, long, void*)
{
    const std::lock_guard lock(mutex);
    open.erase(static_cast<const SSL*>(ssl));
}

void shutDown(const SSL* ssl)
{
    ::shutdown(SSL_get_fd(ssl), SHUT_RDWR);
}

} // namespace

void remember(const httplib::Request& request)
{
    static const int index = SSL_get_ex_new_index(0, nullptr, nullptr, nullptr, forget);
    const std::lock_guard lock(mutex);
    if (index >= 0)
        open.insert(request.ssl);
    // The client sends head and body apart and waits with the body until the head is acknowledged,
    // for which the system would take 40 milliseconds.
    const int on = 1;
    setsockopt(SSL_get_fd(request.ssl), IPPROTO_TCP, TCP_QUICKACK, &on, sizeof on);
}

void drop(const httplib::Request& request)
{
    shutDown(request.ssl);
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

void dropAll()
{
    const std::lock_guard lock(mutex);
    for (const SSL* ssl : open)
        shutDown(ssl);
}

} // namespace standin::Connections
