// SPDX-License-Identifier: GPL-3.0-or-later
#include <chrono>
#include <csignal>
#include <cstdlib>
#include <filesystem>
#include <iostream>
#include <memory>
#include <stdexcept>
#include <string>
#include <thread>
#include <vector>

#include <httplib.h>
#include <sys/socket.h>
#include <unistd.h>

#include "Certificate.h"
#include "Connections.h"
#include "Faults.h"
#include "Service.h"
#include "ServiceData.h"
#include "Store.h"

using namespace standin;

namespace {

const char* const usage = R"(Usage: tessaport-standin [options]

A stand-in for the service of TessaPort Team Monitor, for trying out and testing.
It listens with HTTPS on this machine only. Open its address in a browser to see
what has arrived.

  --port N      the port; 0 takes a free one (default 8443)
  --data FILE   accounts, teams and tasks as JSON, read again when edited
                (default: demo data; sign in as demo@example.com with demo)
  --store DIR   the folder for what is received (default: a new temporary one)
  --idle N      close connections that are idle for so many seconds (default 5)
  --quiet       no line for each request
  --help        this text

)";

struct Options {
    int port = 8443;
    std::string data;
    std::string store;
    int idleSeconds = 5;
    bool quiet = false;
    bool help = false;
};

/// Throws std::runtime_error for what is no option.
Options parsedOptions(int argc, char* argv[])
{
    Options options;
    for (int i = 1; i < argc; ++i) {
        const std::string name = argv[i];
        if (name == "--quiet") {
            options.quiet = true;
            continue;
        }
        if (name == "--help") {
            options.help = true;
            continue;
        }
        if (name != "--port" && name != "--data" && name != "--store" && name != "--idle")
            throw std::runtime_error("unknown option " + name);
        if (++i == argc)
            throw std::runtime_error(name + " needs a value");
        const std::string value = argv[i];
        if (name == "--data") {
            options.data = value;
        } else if (name == "--store") {
            options.store = value;
        } else {
            const auto count = number(value);
            if (!count || *count < 0 || *count > 65535)
                throw std::runtime_error(name + " takes a number up to 65535, not " + value);
            (name == "--port" ? options.port : options.idleSeconds) = static_cast<int>(*count);
        }
    }
    return options;
}

std::string newTemporaryFolder()
{
    std::string name = std::filesystem::temp_directory_path() / "tessaport-standin-XXXXXX";
    if (!mkdtemp(name.data()))
        throw std::runtime_error(name + ": cannot be made");
    return name;
}

std::unique_ptr<httplib::SSLServer> makeServer(const Certificate& certificate, int idleSeconds,
                                               Service& service)
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
    server->set_exception_handler(
        [](const httplib::Request& request, httplib::Response& response, std::exception_ptr error) {
            try {
                std::rethrow_exception(error);
            } catch (const std::exception& exception) {
                std::cerr << request.path + ": " + exception.what() + "\n";
            }
            response.status = 500;
        });
    service.addTo(*server);
    return server;
}

void run(const Options& options, const sigset_t& stopSignals)
{
    ServiceData data(options.data);
    Store store(options.store.empty() ? newTemporaryFolder() : options.store);
    Faults faults;
    Service service(data, store, faults, options.quiet);
    const Certificate certificate = makeCertificate();

    std::vector<std::unique_ptr<httplib::SSLServer>> servers;
    servers.push_back(makeServer(certificate, options.idleSeconds, service));
    int port = options.port;
    if (port == 0)
        port = servers.front()->bind_to_any_port("127.0.0.1");
    else if (!servers.front()->bind_to_port("127.0.0.1", port))
        port = -1;
    if (port < 0)
        throw std::runtime_error("port " + std::to_string(options.port) + " cannot be used");
    // "localhost" may mean this one first; a machine without it does well with the other.
    auto second = makeServer(certificate, options.idleSeconds, service);
    if (second->bind_to_port("::1", port))
        servers.push_back(std::move(second));

    std::vector<std::thread> threads;
    for (const auto& server : servers)
        threads.emplace_back([&server = *server] { server.listen_after_bind(); });
    for (const auto& server : servers) {
        while (!server->is_running())
            std::this_thread::sleep_for(std::chrono::milliseconds(1));
    }
    std::cout << "tessaport-standin listens on https://localhost:" << port << "/ and keeps what it"
              << " receives in " << store.folder().string() << std::endl;

    int signal = 0;
    sigwait(&stopSignals, &signal);
    for (const auto& server : servers)
        server->stop();
    faults.stop();
    Connections::dropAll();
    for (std::thread& thread : threads)
        thread.join();
}

} // namespace

int main(int argc, char* argv[])
{
    // Blocked before there is a second thread, so that only sigwait() gets them.
    sigset_t stopSignals;
    sigemptyset(&stopSignals);
    sigaddset(&stopSignals, SIGINT);
    sigaddset(&stopSignals, SIGTERM);
    pthread_sigmask(SIG_BLOCK, &stopSignals, nullptr);
    try {
        const Options options = parsedOptions(argc, argv);
        if (options.help)
            std::cout << usage << Service::orders();
        else
            run(options, stopSignals);
        return EXIT_SUCCESS;
    } catch (const std::exception& error) {
        std::cerr << "tessaport-standin: " << error.what() << "\n";
        return EXIT_FAILURE;
    }
}
