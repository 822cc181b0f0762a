// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QByteArray>
#include <QString>
#include <QVariant>

#include <memory>

class DataDirectory;
class IniFile;

/// What is known of newer versions, kept in `update.json` of the data directory, which is an ini
/// file in spite of its name. Other programs may write that file while this one runs.
class UpdateState {
public:
    static UpdateState* instance();

    /// Opens the file; has to run before anything else here. The directory's owner has to
    /// outlive the use of this object.
    void init(const DataDirectory* directory);

    /// The entries of the version file as last read; empty when there are none.
    QVariantList updateInfo() const;
    /// Stores the entries of a version file. A null reply is ignored; one that is no list of
    /// JSON stores an empty list.
    void setUpdateInfo(const QByteArray& reply);
    /// The version of the first entry that names one; empty when none does.
    QString latestVersion() const;

    bool updateAtStartup() const;
    bool wasUpdated() const;
    void setWasUpdated(bool wasUpdated);
    /// Reads the file anew, since it is set from outside.
    bool forceUpdate() const;
    void setForceUpdate(bool forceUpdate);

    /// Takes over a new copy of the update program that lies in the directory "update" of the
    /// data directory. A first installation shows a notice, a replacement is silent. Failures are
    /// logged, and the copy stays for the next start.
    void installUpdate();

private:
    UpdateState();
    ~UpdateState();

    void store(const QString& key, const QVariant& value);

    const DataDirectory* m_directory = nullptr;
    std::unique_ptr<IniFile> m_settings;
};
