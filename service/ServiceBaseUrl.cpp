// SPDX-License-Identifier: GPL-3.0-or-later
#include "service/ServiceAddress.h"

QString ServiceAddress::baseUrl()
{
    return QStringLiteral(TESSAPORT_SERVICE_URL);
}

bool ServiceAddress::verifiesCertificates()
{
    return TESSAPORT_VERIFY_CERTIFICATES != 0;
}
