// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QObject>

/// Tells that the user touched keyboard or mouse. It asks the system ten times a second for the
/// moment of the last input, sees no input itself and hooks into nothing.
///
/// Its state is in two dynamic properties: "timer" (QObject*, the polling timer, a child) and
/// "lastEventTicks" (qint64, the moment last seen, in milliseconds of the system's 32-bit clock).
class UserActivityWatcher : public QObject {
    Q_OBJECT

public:
    /// The watcher that everybody shares, made at the first call. Nobody owns it: it lives to the
    /// end of the process.
    static UserActivityWatcher* instance();

    explicit UserActivityWatcher(QObject* parent);
    /// Takes the shared watcher along, whichever one goes.
    ~UserActivityWatcher() override;

    /// Begins to watch; input before the call isn't told. False, and nothing is watched, where the
    /// system doesn't tell of all input: who works there would look idle. A query that fails is no
    /// input, and not told here.
    bool start();

    /// Takes off hooks that nothing sets; doesn't end the watching.
    static bool stop();

signals:
    /// There was input since the last poll; once a poll, however much of it.
    void wasActivity();

public slots:
    void emitWasActivity();

private:
    static UserActivityWatcher* s_instance;
};
