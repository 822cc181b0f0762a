// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <httplib.h>

namespace standin {

/// The TLS connections that have carried a request and are still open.
///
/// The HTTP library has no way to end a connection without an answer, and on stop it waits for idle
/// ones to time out; this gives both. All functions may be called from any thread.
namespace Connections {

/// To be called with every request before anything else here, and before its body is read.
void remember(const httplib::Request& request);

/// Ends the connection of a request: the client sees it closed without a byte of an answer.
void drop(const httplib::Request& request);
/// The same, but the client sees it reset.
void reset(const httplib::Request& request);

/// Whether the client has closed its side.
bool isClosedByClient(const httplib::Request& request);

/// Ends all of them.
void dropAll();

} // namespace Connections
} // namespace standin
