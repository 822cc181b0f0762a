// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <httplib.h>

namespace standin {

/// What the HTTP library has no way to do with the connection of a request.
namespace Connections {

/// To be called before the body is read.
void acknowledgeAtOnce(const httplib::Request& request);

/// Ends the connection: the client sees it closed without a byte of an answer.
void drop(const httplib::Request& request);
/// The same, but the client sees it reset.
void reset(const httplib::Request& request);

/// Whether the client has closed its side.
bool isClosedByClient(const httplib::Request& request);

} // namespace Connections
} // namespace standin
