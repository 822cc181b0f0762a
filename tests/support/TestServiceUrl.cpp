// SPDX-License-Identifier: GPL-3.0-or-later
#include "support/TestServiceUrl.h"

#include "service/ServiceAddress.h"

namespace {

QString& testServiceUrl()
{
    static QString url = QStringLiteral("https://localhost:1");
    return url;
}

bool testVerifiesCertificates = false;

} // namespace

void setTestServiceUrl(const QString& url)
{
    testServiceUrl() = url;
}

void setTestVerifiesCertificates(bool verifies)
{
    testVerifiesCertificates = verifies;
}

QString ServiceAddress::baseUrl()
{
    return testServiceUrl();
}

bool ServiceAddress::verifiesCertificates()
{
    return testVerifiesCertificates;
}
