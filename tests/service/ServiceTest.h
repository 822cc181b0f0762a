// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "notifications/NotificationManager.h"
#include "service/TessaPort.h"
#include "support/StandIn.h"
#include "support/TestServiceUrl.h"

#include <QSignalSpy>
#include <QtTest>

/// A running stand-in and a client of it with a fresh data directory, the demo user signed in.
/// Check isReady() first.
class ServiceTest {
public:
    ServiceTest()
    {
        NotificationManager::instance()->closeAll();
        QDir(QDir::homePath() + QStringLiteral("/.tessaport")).removeRecursively();
        setTestServiceUrl(m_standIn.url());
        m_client = std::make_unique<TessaPort>();
        QSignalSpy loginOk(m_client.get(), &TessaPort::loginOk);
        m_client->login(QStringLiteral("demo@example.com"), QStringLiteral("demo"));
        m_isReady = m_standIn.isRunning() && loginOk.wait();
    }

    bool isReady() const { return m_isReady; }
    StandIn& standIn() { return m_standIn; }
    TessaPort& client() { return *m_client; }
    Session& session() { return *m_client->session(); }

    QDir activityDir() const
    {
        return QDir(m_client->dataDir().filePath(QStringLiteral("demo@example.com/activity")));
    }

private:
    StandIn m_standIn;
    std::unique_ptr<TessaPort> m_client;
    bool m_isReady = false;
};
