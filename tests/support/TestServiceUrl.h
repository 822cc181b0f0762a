// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>

/// Where the service of this test program is; the program's own constant is not linked.
void setTestServiceUrl(const QString& url);

/// Whether its certificate is looked at; it is not, until a test says so.
void setTestVerifiesCertificates(bool verifies);
