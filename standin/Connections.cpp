// SPDX-License-Identifier: GPL-3.0-or-later
#include "Connections.h"

#include <mutex>
#include <set>

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
}

void drop(const httplib::Request& request)
{
    shutDown(request.ssl);
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
