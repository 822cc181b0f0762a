// SPDX-License-Identifier: GPL-3.0-or-later
#include "Fuzz.h"
#include "session/DataDirectory.h"
#include "update/UpdateState.h"

namespace {

class Directory : public DataDirectory {
public:
    Directory()
    {
        qputenv("HOME", folder().toLocal8Bit());
        enterDataDirectory();
    }
};

} // namespace

/// A version file with anything in it; what was read of it is there after the next start.
extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    static const Directory directory;
    UpdateState* state = UpdateState::instance();
    state->init(&directory);
    state->setUpdateInfo(bytes(data, size));
    const QVariantList entries = state->updateInfo();
    const QString version = state->latestVersion();
    state->init(&directory);
    require(state->updateInfo() == entries && state->latestVersion() == version);
    return 0;
}
