// SPDX-License-Identifier: GPL-3.0-or-later
#include <csignal>
#include <cstdlib>
#include <filesystem>
#include <iostream>
#include <memory>
#include <stdexcept>
#include <string>
#include <thread>

#include <getopt.h>
#include <pthread.h>

#include "Certificate.h"
#include "Faults.h"
#include "Server.h"
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

int smallNumber(const std::string& text)
{
    const auto count = number(text);
    if (!count || *count < 0 || *count > 65535)
        throw std::runtime_error("a number up to 65535 is needed, not " + text);
    return static_cast<int>(*count);
}

/// Throws std::runtime_error for what is no option.
Options parsedOptions(int argc, char* argv[])
{
    enum { Port = 1, Data, Store, Idle, Quiet, Help };
    const option known[] = {{"port", required_argument, nullptr, Port},
                            {"data", required_argument, nullptr, Data},
                            {"store", required_argument, nullptr, Store},
                            {"idle", required_argument, nullptr, Idle},
                            {"quiet", no_argument, nullptr, Quiet},
                            {"help", no_argument, nullptr, Help},
                            {}};
    Options options;
    int found = 0;
    while ((found = getopt_long(argc, argv, "", known, nullptr)) != -1) {
        switch (found) {
        case Port:
            options.port = smallNumber(optarg);
            break;
        case Data:
            options.data = optarg;
            break;
        case Store:
            options.store = optarg;
            break;
        case Idle:
            options.idleSeconds = smallNumber(optarg);
            break;
        case Quiet:
            options.quiet = true;
            break;
        case Help:
            options.help = true;
            break;
        default:
            throw std::runtime_error("see --help");
        }
    }
    if (optind < argc)
        throw std::runtime_error(std::string("unknown argument ") + argv[optind]);
    return options;
}

std::string newTemporaryFolder()
{
    std::string name = std::filesystem::temp_directory_path() / "tessaport-standin-XXXXXX";
    if (!mkdtemp(name.data()))
        throw std::runtime_error(name + ": cannot be made");
    return name;
}

/// Does not come back.
void run(const Options& options, const sigset_t& stopSignals)
{
    ServiceData data(options.data);
    Store store(options.store.empty() ? newTemporaryFolder() : options.store);
    Faults faults;
    Service service(data, store, faults);
    Server server(service, store, faults, options.quiet);
    const Certificate certificate = makeCertificate();

    const auto first = server.listener(certificate, options.idleSeconds);
    int port = options.port;
    if (port == 0)
        port = first->bind_to_any_port("127.0.0.1");
    else if (!first->bind_to_port("127.0.0.1", port))
        port = -1;
    if (port < 0)
        throw std::runtime_error("port " + std::to_string(options.port) + " cannot be used");
    // "localhost" may mean this one first; a machine without it does well with the other.
    const auto second = server.listener(certificate, options.idleSeconds);
    const bool hasSecond = second->bind_to_port("::1", port);
    // What is bound takes connections, even before its thread comes to them.
    std::thread([&] { first->listen_after_bind(); }).detach();
    if (hasSecond)
        std::thread([&] { second->listen_after_bind(); }).detach();
    std::cout << "tessaport-standin listens on https://localhost:" << port << "/ and keeps what it"
              << " receives in " << store.folder().string() << std::endl;

    int signal = 0;
    sigwait(&stopSignals, &signal);
    server.finish();
    // Connections end with the process; the library would wait for idle ones.
    std::_Exit(EXIT_SUCCESS);
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
        if (!options.help)
            run(options, stopSignals);
        std::cout << usage << ServiceData::explanation() << Service::orders();
        return EXIT_SUCCESS;
    } catch (const std::exception& error) {
        std::cerr << "tessaport-standin: " << error.what() << "\n";
        return EXIT_FAILURE;
    }
}
