// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "notifications/NotificationManager.h"
#include "service/TessaPort.h"
#include "support/StandIn.h"
#include "support/TestServiceUrl.h"
#include "update/UpdateState.h"

#include <QSignalSpy>
#include <QtTest>

#include <optional>

/// What a test has of a running stand-in and a client of it.
class ServiceTest {
protected:
    /// Both anew, with a fresh data directory, the demo user signed in; false if that fails.
    bool start()
    {
        NotificationManager::instance()->closeAll();
        m_client.reset();
        QDir(QDir::homePath() + QStringLiteral("/.tessaport")).removeRecursively();
        m_standIn.emplace();
        setTestServiceUrl(m_standIn->url());
        m_client.emplace();
        UpdateState::instance()->init(&*m_client);
        QSignalSpy loginOk(&*m_client, &TessaPort::loginOk);
        m_client->login(QStringLiteral("demo@example.com"), QStringLiteral("demo"));
        return m_standIn->isRunning() && loginOk.wait();
    }

    /// What the service has answered before is here after so many.
    void roundTrips()
    {
        for (int i = 0; i < 3; ++i) {
            QSignalSpy updateAvailable(&*m_client, &TessaPort::updateAvailable);
            m_client->requestVersion();
            QVERIFY(updateAvailable.wait());
        }
    }

    StandIn& standIn() { return *m_standIn; }
    TessaPort& client() { return *m_client; }
    Session& session() { return *m_client->session(); }

private:
    std::optional<StandIn> m_standIn;
    std::optional<TessaPort> m_client;
};
