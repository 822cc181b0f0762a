// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "session/DataDirectory.h"

#include <QObject>

#include <memory>

/// The lower half of the service client: the data directory and the two sessions that live in it.
/// It knows no network. Its destructor saves the current session unless told not to.
class SessionOwner : public QObject, public DataDirectory {
    Q_OBJECT

public:
    class Session;

    /// Enters the data directory, loads the session of the user who was signed in last and
    /// removes the files of earlier storage formats.
    explicit SessionOwner(QObject* parent = nullptr);
    ~SessionOwner() override;

    /// The state of the signed-in user; the owner keeps it.
    Session* session() const { return m_session.get(); }

    /// With true, the destructor leaves the files as they are.
    void setNoSave(bool noSave) { m_noSave = noSave; }

    /// Deletes what earlier versions of the program left in other formats. Nothing is read or
    /// taken over from it, and failures are silent.
    void removeOldData();

protected:
    /// Saves the current session unless told not to, and lets both go; the first thing that the
    /// destructor of whoever derives from this does, and harmless when done already.
    void closeSessions();

    /// The login and password that were typed and that the service has not accepted yet; it has
    /// no files.
    Session* loginSession() const { return m_loginSession.get(); }

private:
    std::unique_ptr<Session> m_session;
    std::unique_ptr<Session> m_loginSession;
    bool m_noSave = false;
};
