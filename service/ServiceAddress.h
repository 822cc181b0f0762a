// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>

/// Where the service is. The base URL is a constant of the build, supplied by ServiceBaseUrl.cpp
/// for the program and by a source file of their own for the tests.
namespace ServiceAddress {

/// An https URL without a slash at its end.
QString baseUrl();

/// Whether a service whose certificate is not trusted is refused; a constant of the build.
bool verifiesCertificates();

/// The base URL without its scheme, in the spelling that QUrl gives to every URL of the service:
/// that of the base URL itself may have capitals or an encoded host.
QString host();

/// The base URL followed by a path, which starts with a slash.
QString url(const QString& path);

/// Opens a page in the user's browser; whether that works is not looked at.
void openUrl(const QString& url);
/// Opens the page of a task.
void openTaskPage(const QString& taskId);
/// Opens the page from which the program can be fetched.
void openMonitorPage();

} // namespace ServiceAddress
