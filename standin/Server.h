// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <memory>
#include <mutex>
#include <string>

#include <httplib.h>

#include "Certificate.h"
#include "Faults.h"
#include "Service.h"
#include "Store.h"

namespace standin {

/// Serves what the service answers, unless a fault has it otherwise, and logs it.
class Server {
public:
    /// All have to outlive it. Quiet: no line on standard output for each request.
    Server(Service& service, Store& store, Faults& faults, bool quiet);

    /// For one address of this machine; connections are closed that are idle for so long. Throws
    /// std::runtime_error when OpenSSL does not take the certificate.
    std::unique_ptr<httplib::SSLServer> listener(const Certificate& certificate, int idleSeconds);

    /// Waits until nothing is half written, and lets nothing more be answered.
    void finish() { m_mutex.lock(); }

private:
    void serve(const httplib::Request& request, httplib::Response& response,
               const httplib::ContentReader* reader);
    /// Whether the service is to answer; if not, all is done.
    bool getsPastFault(const Fault& fault, const httplib::Request& request,
                       httplib::Response& response);
    /// Counts the request under this name.
    void log(const httplib::Request& request, const std::string& body, const std::string& name,
             const std::string& fault);

    Service& m_service;
    Store& m_store;
    Faults& m_faults;
    const bool m_quiet;
    std::mutex m_mutex; ///< of service and store
};

} // namespace standin
