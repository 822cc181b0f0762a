// SPDX-License-Identifier: GPL-3.0-or-later
#include "Server.h"

#include <algorithm>
#include <cctype>
#include <chrono>
#include <iostream>
#include <stdexcept>

#include <sys/socket.h>

#include "Connections.h"

namespace standin {
namespace {

std::string lowerCase(std::string text)
{
    std::transform(text.begin(), text.end(), text.begin(),
                   [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
    return text;
}

/// False when the client went away before all of it came.
bool readBody(const httplib::Request& request, const httplib::ContentReader* reader,
              std::string& body)
{
    // A request that tells no length and is not chunked has no body; the library would read on
    // until the connection ends.
    if (!reader
        || (!request.has_header("Content-Length") && !request.has_header("Transfer-Encoding")))
        return true;
    return (*reader)([&body](const char* data, size_t length) {
        body.append(data, length);
        return true;
    });
}

void tellError(const httplib::Request& request, httplib::Response& response,
               std::exception_ptr error)
{
    try {
        std::rethrow_exception(error);
    } catch (const std::exception& exception) {
        std::cerr << request.path + ": " + exception.what() + "\n";
    }
    response.status = 500;
}

} // namespace

Server::Server(Service& service, Store& store, Faults& faults, bool quiet)
    : m_service(service)
    , m_store(store)
    , m_faults(faults)
    , m_quiet(quiet)
{
}

std::unique_ptr<httplib::SSLServer> Server::listener(const Certificate& certificate,
                                                     int idleSeconds)
{
    auto server =
        std::make_unique<httplib::SSLServer>(certificate.certificate.get(), certificate.key.get());
    if (!server->is_valid())
        throw std::runtime_error("OpenSSL does not take the certificate");
    // What services of today ask for.
    SSL_CTX_set_min_proto_version(server->ssl_context(), TLS1_2_VERSION);
    // The library's default lets two programs share a port and its requests.
    server->set_socket_options([](socket_t socket) {
        const int on = 1;
        setsockopt(socket, SOL_SOCKET, SO_REUSEADDR, &on, sizeof on);
    });
    // An open connection takes a thread, hanging ones for long.
    constexpr int threads = 64;
    server->new_task_queue = [] { return new httplib::ThreadPool(threads); };
    server->set_keep_alive_max_count(1000);
    server->set_keep_alive_timeout(idleSeconds);
    server->set_read_timeout(std::chrono::seconds(30));
    server->set_write_timeout(std::chrono::seconds(30));
    server->set_tcp_nodelay(true);
    server->set_exception_handler(tellError);

    const std::string anything = ".*";
    const auto withoutBody = [this](const httplib::Request& request, httplib::Response& response) {
        serve(request, response, nullptr);
    };
    // With a content reader also for posted forms: read by the library itself, those are limited to
    // 8 KiB, and a connection could not be dropped before the body is read.
    const auto withBody = [this](const httplib::Request& request, httplib::Response& response,
                                 const httplib::ContentReader& reader) {
        serve(request, response, &reader);
    };
    server->Get(anything, withoutBody).Options(anything, withoutBody);
    server->Post(anything, withBody).Put(anything, withBody);
    server->Patch(anything, withBody).Delete(anything, withBody);
    return server;
}

void Server::serve(const httplib::Request& request, httplib::Response& response,
                   const httplib::ContentReader* reader)
{
    Connections::acknowledgeAtOnce(request);
    const Service::Endpoint* const endpoint = Service::endpoint(request.path);
    // A question for the head alone is answered by what answers the whole.
    const bool isServed = endpoint
        && endpoint->method == (request.method == "HEAD" ? std::string("GET") : request.method);
    const bool isOrder = isServed && endpoint->kind == Service::Endpoint::Order;
    const auto fault = isServed && !isOrder ? m_faults.take(request.path) : std::nullopt;

    std::string body;
    if (fault && fault->mode == Fault::Mode::DropBefore) {
        log(request, body, request.path, fault->name);
        return Connections::drop(request);
    }
    if (!readBody(request, reader, body))
        return Connections::drop(request);
    if (!isServed) {
        const char* const reason = endpoint ? "wrong method" : "unknown path";
        log(request, body, request.method + " " + request.path, reason);
        response.status = endpoint ? 405 : 404;
        return response.set_content(reason, plainText);
    }
    if (!isOrder)
        log(request, body, request.path, fault ? fault->name : std::string());
    if (fault && !getsPastFault(*fault, request, response))
        return;

    const std::lock_guard lock(m_mutex);
    const Answer answer = m_service.answer(*endpoint, {request, body});
    if (fault && fault->mode == Fault::Mode::DropKept)
        return Connections::drop(request);
    if (fault && fault->mode == Fault::Mode::ResetKept)
        return Connections::reset(request);
    response.status = answer.status;
    response.set_content(answer.body, answer.type);
}

bool Server::getsPastFault(const Fault& fault, const httplib::Request& request,
                           httplib::Response& response)
{
    switch (fault.mode) {
    case Fault::Mode::DropKept:
    case Fault::Mode::ResetKept:
        return true;
    case Fault::Mode::Delay:
    case Fault::Mode::Hang:
        if (m_faults.wait(request.path, fault,
                          [&request] { return Connections::isClosedByClient(request); }))
            return true;
        break;
    case Fault::Mode::Status500:
        response.status = 500;
        response.set_content("Internal Server Error", plainText);
        return false;
    case Fault::Mode::Endless:
        response.set_chunked_content_provider(plainText, [](size_t, httplib::DataSink& sink) {
            static const std::string piece(65536, ' ');
            return sink.write(piece.data(), piece.size());
        });
        return false;
    case Fault::Mode::Body:
        response.set_content(fault.body, plainText);
        return false;
    case Fault::Mode::DropBefore:
    case Fault::Mode::DropAfter:
        break;
    }
    Connections::drop(request);
    return false;
}

void Server::log(const httplib::Request& request, const std::string& body, const std::string& name,
                 const std::string& fault)
{
    const std::string now = dateTime(std::time(nullptr));
    const size_t query = request.target.find('?');
    Json headers = Json::object();
    for (const auto& [header, content] : request.headers) {
        // The library adds these itself.
        if (header != "REMOTE_ADDR" && header != "REMOTE_PORT" && header != "LOCAL_ADDR"
            && header != "LOCAL_PORT")
            headers[lowerCase(header)] = content;
    }
    const std::lock_guard lock(m_mutex);
    m_store.logRequest(
        name,
        {{"time", now},
         {"method", request.method},
         {"path", request.path},
         {"query", query == std::string::npos ? "" : request.target.substr(query + 1)},
         {"headers", headers},
         {"body", body},
         {"fault", fault}});
    if (!m_quiet) {
        const std::string remark = fault.empty() ? std::string() : " (" + fault + ")";
        std::cout << now + " " + request.method + " " + request.path + remark + "\n" << std::flush;
    }
}

} // namespace standin
