// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QJsonArray>
#include <QJsonObject>
#include <QMap>
#include <QTemporaryDir>
#include <QVector>

#include <memory>

class StandInProcess;

/// A request as the service saw it. Requests come in the order in which they were read.
struct SeenRequest {
    QString method;
    QString path;
    QString query; ///< as on the wire, still encoded
    QByteArray body; ///< as on the wire, still encoded
    QMap<QString, QString> headers; ///< by name in lower case
    QString fault; ///< the mode it was failed with, empty when it was answered rightly

    /// The record of a report: the one object in the array that follows "data=".
    QJsonObject record() const;
};

/// A running stand-in for the service, on a free port of this machine, with data and a store of its
/// own; gone with the object. Functions that wait or talk to it run a local event loop.
class StandIn {
public:
    /// Starts it; see isRunning() for whether that went well.
    StandIn();
    ~StandIn();

    /// The teams, tasks and account (demo@example.com, password demo) that it has built in.
    static QJsonObject demoData();

    bool isRunning() const;

    /// Without a slash at its end, as "https://localhost:43210".
    QString url() const;

    /// Changes the service: the next request is answered out of the new data.
    void setData(const QJsonObject& data);

    /// Makes a path fail; tessaport-standin --help explains the modes. The body is that of
    /// "answer".
    ///
    /// The count is how many requests more it holds for, -1 without end. A delay lasts the given
    /// milliseconds, a hang until succeed() or at most so long (0: ten minutes). Mind that
    /// QNetworkAccessManager itself sends what it can again, up to three times, when its connection
    /// ends without an answer: a program is sure to see a drop only without a count.
    void fail(const QString& path, const QString& mode, int count = -1, int milliseconds = 0,
              const QByteArray& body = {});
    /// The path answers rightly again; what hangs on it is answered now.
    void succeed(const QString& path);
    /// Forgets faults, moved deadlines, requests and everything kept. The data stay.
    void reset();

    /// What reached it, all or for one path. A request is here once its body has been read, before
    /// it is answered.
    QVector<SeenRequest> requests(const QString& path = {}) const;
    /// What it confirmed, in order: each with "n", "kind" ("activity", "screenshot" or "deadline"),
    /// "received", "time" and the "record"; of a screenshot "picture", a file of its own, in the
    /// place of the encoded one.
    QJsonArray confirmedRecords() const;

    /// False when there are fewer after ten seconds.
    bool waitForRequests(const QString& path, int count) const;
    bool waitForRecords(int count) const;

    /// The service goes away, and comes back at the same address with what it kept.
    void stop();
    bool start();

private:
    /// The folder with requests.jsonl and what was kept of each confirmed record.
    QString storeDir() const;
    QString dataFile() const;
    QByteArray control(const QByteArray& verb, const QString& pathAndQuery,
                       const QByteArray& body = {}) const;

    QTemporaryDir m_directory;
    std::unique_ptr<StandInProcess> m_process;
    int m_port = 0; ///< 0 until it has chosen one
};
