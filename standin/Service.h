// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <string>

#include <httplib.h>

#include "Faults.h"
#include "Report.h"
#include "ServiceData.h"
#include "Store.h"

namespace standin {

extern const char* const plainText;
extern const char* const htmlText;

struct Answer {
    std::string body;
    const char* type = "application/json; charset=utf-8";
    int status = 200;
};

/// What is answered: the calls of the client, the pages for the browser, and the orders under
/// /standin/, which orders() explains. One request at a time.
class Service {
public:
    struct Call {
        const httplib::Request& request;
        const std::string& body;

        /// The decoded value of a parameter, empty when it is not there.
        std::string value(const char* name) const { return request.get_param_value(name); }
        bool has(const char* name) const { return request.has_param(name); }
    };
    struct Endpoint {
        enum Kind {
            Open,
            ForAccount, ///< answered only with the credentials of an account
            Order, ///< never failed, and not logged
        };

        const char* method;
        const char* path; ///< may have wildcards
        Answer (Service::*answer)(const Call&);
        Kind kind;
    };

    /// All have to outlive it.
    Service(ServiceData& data, Store& store, Faults& faults);

    /// Null for a path that is not served.
    static const Endpoint* endpoint(const std::string& path);

    Answer answer(const Endpoint& endpoint, const Call& call);

    /// What can be ordered, for the tester.
    static std::string orders();

private:
    static const Endpoint endpoints[16];

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

    /// Keeps a report; the answer is the confirmation unless something is wrong with it.
    Answer confirmed(Report::Kind kind, const Call& call, Answer confirmation);

    ServiceData& m_data;
    Store& m_store;
    Faults& m_faults;
};

} // namespace standin
