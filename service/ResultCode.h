// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

/// What became of an exchange with the service. The numbers are settled.
enum ResultCode {
    InvalidCredentials = 0,
    ConnectionError = 1,
    SiteUnavailable = 2,
    OtherNetworkError = 3,
    InvalidUrl = 4,
    DatabaseUnreachable = 5,
    UnknownError = 6,
    ExchangeSucceeded = 7,
};
