// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <string>

#include <httplib.h>

#include "Encoding.h"
#include "Faults.h"
#include "Report.h"
#include "ServiceData.h"
#include "Store.h"

namespace standin {

/// The paths of the service: the calls of the client, the pages for the browser, and the orders
/// under /standin/, which orders() explains.
class Service {
public:
    /// All have to outlive it. Quiet: no line on standard output for each request.
    Service(ServiceData& data, Store& store, Faults& faults, bool quiet);

    void addTo(httplib::Server& server);

    /// What can be ordered, for the tester.
    static std::string orders();

private:
    struct Call {
        std::string method;
        std::string path;
        std::string query;
        Parameters parameters;
        std::string body;
    };
    struct Answer {
        std::string body;
        const char* type = "application/json; charset=utf-8";
        int status = 200;
    };
    using Handler = Answer (Service::*)(const Call&);
    struct Endpoint {
        const char* method;
        const char* pattern;
        Handler handler;
        bool isOrder;
    };
    static const Endpoint endpoints[14];

    static Call callOf(const httplib::Request& request);

    void serve(const httplib::Request& request, httplib::Response& response,
               const httplib::ContentReader* reader, Handler handler);
    void obey(const httplib::Request& request, httplib::Response& response,
              const httplib::ContentReader* reader, Handler handler);
    /// Answers what has no endpoint.
    void refuse(const httplib::Request& request, httplib::Response& response,
                const httplib::ContentReader* reader);
    /// Counts the request under this name.
    void log(const httplib::Request& request, const Call& call, const std::string& name,
             const std::string& fault);

    Answer signIn(const Call& call);
    Answer teams(const Call& call);
    Answer details(const Call& call);
    Answer dayTotals(const Call& call);
    Answer deadlineRequest(const Call& call);
    Answer activity(const Call& call);
    Answer screenshot(const Call& call);
    Answer version(const Call& call);

    Answer overview(const Call& call);
    Answer task(const Call& call);
    Answer picture(const Call& call);

    Answer fail(const Call& call);
    Answer reset(const Call& call);
    Answer state(const Call& call);

    bool accepts(const Call& call);
    /// Keeps a report; the answer is the confirmation unless something is wrong with it.
    Answer confirmed(Report::Kind kind, const Call& call, Answer confirmation);

    ServiceData& m_data;
    Store& m_store;
    Faults& m_faults;
    const bool m_quiet;
};

} // namespace standin
