// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QSet>
#include <QString>
#include <QStringList>

/// The reports in a directory in the order in which they go out, which is by name, case ignored:
/// those of the beginning of a month go before older ones of the end of the month before, which
/// "past" makes harmless. The directory is read once a drain, and not for each report of it.
class WaitingReports {
public:
    /// The path of the report that goes out next; empty when all have gone out that were there at
    /// the first call. The call after that reads the directory anew.
    QString next(const QString& directory);

    /// Has the next call of next() read the directory.
    void startAnew();

    /// Deletes a report that the service has confirmed, or its picture. What can't be deleted is
    /// logged, its deletion is tried again by retryRemovals(), and it is never given out again.
    void remove(const QString& path);
    void retryRemovals();

private:
    void read(const QString& directory);

    QString m_directory; ///< the one that was read; empty: none
    QStringList m_names; ///< the next one last
    QSet<QString> m_confirmed; ///< paths of those that could not be deleted
};
