// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "service/ResultCode.h"
#include "service/WaitingReports.h"
#include "session/Session.h"

#include <QElapsedTimer>
#include <QHash>
#include <QNetworkAccessManager>
#include <QNetworkReply>
#include <QSslError>

class QFile;
class QImage;
class QUrlQuery;

// A slot takes a type that is deprecated and has no successor in this major version.
QT_WARNING_PUSH
QT_WARNING_DISABLE_DEPRECATED

/// The one client of the service: every call goes out and every reply comes back here. Requests
/// are sent and left to come back when they will; nothing is queued or retried, except that a
/// report is a file on disk until the service has confirmed it, and nothing is given up but an
/// answer that has no end or does not come.
class TessaPort : public SessionOwner {
    Q_OBJECT

public:
    explicit TessaPort(QObject* parent = nullptr);
    ~TessaPort() override;

    /// Asks whether the credentials are good. On success the session is theirs and loginOk()
    /// comes; a refusal comes as error(). A failure of the network comes as neither.
    void login(const QString& login, const QString& password);
    /// Asks for all teams and their tasks, and for the details of each task that has none cached.
    void requestTeamsAndTasks();
    /// Asks for the newest version of the program; see updateAvailable().
    void requestVersion();
    /// Asks for a task's details; nothing is asked for the row of unassigned time.
    void requestTaskInfo(const QString& taskId);
    /// Asks to move the chosen task's deadline. A time of 23:59 means no particular time.
    void requestDeadline(const QDate& date, const QString& message, const QTime& time);
    /// Asks for the day's booked time. The argument goes out as the task's id unless it is "0".
    void requestActive(const QString& taskId);
    /// Chooses team and task; emits teamChanged() when the team is another one.
    void setCurrentTask(const QString& teamId, const QString& taskId);

    /// Reports a minute with this many active slots, from 0 to 10.
    void sendActivity(int active);
    /// Reports a picture of the desktop. A null image is answered by a notice.
    void sendScreenshot(const QImage& image);

    void openUrl(const QString& url);
    void openTaskUrl(const QString& taskId);
    /// See runElevated().
    int runWinAppAsAdmin(const QString& file, const QString& arguments);

public slots:
    /// For a button with the property "task_id": opens the page of that task.
    void openTaskUrl();

signals:
    void teamChanged(QString teamId);
    /// The service answered, but refused, whatever call it was: InvalidCredentials, InvalidUrl,
    /// DatabaseUnreachable or UnknownError.
    void error(int error);
    void loginOk();
    /// The service became reachable or unreachable; see Session::isOnline(). The message says why
    /// and ends in a blank, or is empty.
    void onlineChanged(QString message);
    /// The version file has been read; whether it names a version newer than this one.
    void updateAvailable(bool isAvailable);
    /// Details have arrived. An empty record: a request for details failed.
    void taskInfoUpdated(TaskInfo taskInfo);
    /// The day's booked time has come and is the session's. The session tells some of it by itself,
    /// but not that all of it is there.
    void timesUpdated();

private slots:
    void replyFinished(QNetworkReply* reply);
    void sslErrorHandler(QNetworkReply* qnr, QList<QSslError> errors);
    void networkAccessibleChangedHandler(
        QNetworkAccessManager::NetworkAccessibility networkAccessibility);

private:
    /// Which call a reply answers; it travels in the reply's property "stage".
    enum Stage {
        SignIn = 1,
        Refresh = 2,
        Version = 3,
        Report = 4,
        DeadlineRequest = 5,
        Details = 6,
        TimeSync = 7,
    };
    struct Endpoint {
        Stage stage;
        const char* path; ///< null where the address comes with the report
        void (TessaPort::*handler)(QNetworkReply*);
        bool isForSession; ///< the reply goes into the session of the user who asked
        qint64 longestAnswer; ///< in bytes, unpacked; of a longer one the rest is not waited for
    };
    static const Endpoint endpoints[7];
    /// Null for a number that is no stage.
    static const Endpoint* endpointOf(int stage);
    static QUrl endpointUrl(Stage stage);

    QNetworkReply* get(Stage stage, const QUrlQuery& query);
    QNetworkReply* post(Stage stage, const QUrl& url, const QByteArray& body);
    /// Marks a reply with the call that it answers and the user for whom it was made, and bounds
    /// it.
    QNetworkReply* tagged(QNetworkReply* reply, Stage stage);

    void handleLogin(QNetworkReply* reply);
    void handleTeamsAndTasks(QNetworkReply* reply);
    void handleUpdate(QNetworkReply* reply);
    void handleReportReply(QNetworkReply* reply);
    void handleDeadlineReply(QNetworkReply* reply);
    void handleTaskInfo(QNetworkReply* reply);
    void handleTimeSync(QNetworkReply* reply);

    void handleFailure(QNetworkReply* reply);
    void parseTeamsAndTasks(const QByteArray& data);
    /// Whether the body is usable; says so by error() when it is not.
    bool checkReply(const QByteArray& data);
    void setOnlineByResult(ResultCode code);

    // The road of a report: sendReport() puts it on disk and posts it, and sendNextReportFile()
    // posts one that has waited. postReport() counts it as pending, and reportAnswered() as not
    // pending any more, whatever became of it.

    /// What the disk did not take; memory has the only copy, until the service has confirmed it.
    struct UnwrittenReport {
        QString directory;
        QVariantMap report;
        QByteArray picture; ///< empty when there is none, or when it is on disk
    };

    /// Puts a record on disk and posts it; posts it from memory when the disk does not take it or
    /// has not taken its picture, which is given here then.
    void sendReport(const QString& path, const QVariantMap& body, const QByteArray& picture = {});
    /// A report file that is whole and on disk, closed; null when it could not be written.
    std::unique_ptr<QFile> writeReportFile(const QVariant& apiUrl, const QVariant& body);
    /// Posts what the file holds; the file on disk stays until the service has confirmed it. One
    /// that is no report is removed, and one that can't be read is left alone: neither is posted.
    void sendReportFile(std::unique_ptr<QFile> file);
    /// Of a report, what is posted. The file name tells what to remove on confirmation; empty for a
    /// report that has none.
    QNetworkReply* postReport(const QVariantMap& report, const QString& fileName);
    void reportAnswered(bool isConfirmed);
    /// Whether the service has confirmed the report.
    bool confirms(const QNetworkReply& reply, const QByteArray& data);
    /// Deletes a report that is done with, and its picture.
    void removeReportFile(std::unique_ptr<QFile> file);
    void removePicture(const QVariantMap& report);
    /// Posts the first of the reports that wait, unless one is under way.
    void sendNextReportFile();
    /// The disk gets another chance to take what was posted from memory in vain; the log names what
    /// is lost.
    void keepUnwritten(const UnwrittenReport& unwritten);
    QString activityDir() const;
    /// Where the picture of this moment goes.
    QString picturePath();
    /// Removes what a process that was killed may have left of the user's.
    void removeUnfinished();

    QNetworkAccessManager m_manager;
    QString m_lastPicture;
    QElapsedTimer m_sinceLastPicture;
    int m_pendingReports = 0; ///< posted and not yet answered
    WaitingReports m_waitingReports;
    QHash<QNetworkReply*, UnwrittenReport> m_unwrittenReports; ///< by what they wait for
};

QT_WARNING_POP
