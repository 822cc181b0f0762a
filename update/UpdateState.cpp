// SPDX-License-Identifier: GPL-3.0-or-later
#include "update/UpdateState.h"

#include "service/JsonCodec.h"
#include "session/DataDirectory.h"
#include "session/IniFile.h"

namespace {

const QLatin1String stateFile("update.json");
const QLatin1String updateInfoKey("updateInfo");
const QLatin1String updateAtStartupKey("updateAtStartup");
const QLatin1String wasUpdatedKey("wasUpdated");
const QLatin1String forceUpdateKey("forceUpdate");
const QLatin1String versionKey("version");

} // namespace

UpdateState::UpdateState() = default;

UpdateState::~UpdateState() = default;

UpdateState* UpdateState::instance()
{
    static UpdateState state;
    return &state;
}

void UpdateState::init(const DataDirectory* directory)
{
    m_directory = directory;
    m_settings = std::make_unique<IniFile>(directory->dataDir().filePath(stateFile));
}

QVariantList UpdateState::updateInfo() const
{
    return m_settings->value(updateInfoKey).toList();
}

void UpdateState::setUpdateInfo(const QByteArray& reply)
{
    if (reply.isNull())
        return;
    const QVariantList entries = JsonCodec::parseUtf8(reply).toList();
    store(updateInfoKey, entries);
}

QString UpdateState::latestVersion() const
{
    const QVariantList entries = updateInfo();
    for (const QVariant& entry : entries) {
        const QVariantMap fields = entry.toMap();
        const auto version = fields.constFind(versionKey);
        if (version != fields.constEnd())
            return version->toString();
    }
    return QString();
}

bool UpdateState::updateAtStartup() const
{
    return m_settings->value(updateAtStartupKey, false).toBool();
}

bool UpdateState::wasUpdated() const
{
    return m_settings->value(wasUpdatedKey, false).toBool();
}

void UpdateState::setWasUpdated(bool wasUpdated)
{
    store(wasUpdatedKey, wasUpdated);
}

bool UpdateState::forceUpdate() const
{
    m_settings->takeOverChanges();
    return m_settings->value(forceUpdateKey, false).toBool();
}

void UpdateState::setForceUpdate(bool forceUpdate)
{
    store(forceUpdateKey, forceUpdate);
}

void UpdateState::store(const QString& key, const QVariant& value)
{
    m_settings->takeOverChanges();
    m_settings->setValue(key, value);
    m_settings->write();
}
