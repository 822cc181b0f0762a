// SPDX-License-Identifier: GPL-3.0-or-later
#include "Fuzz.h"
#include "service/JsonCodec.h"

namespace {

// Numbers with a point lose digits, and their short form may come back as a text.
bool hasDouble(const QVariant& value)
{
    if (value.userType() == QMetaType::Double)
        return true;
    for (const QVariant& element : value.toList()) {
        if (hasDouble(element))
            return true;
    }
    for (const QVariant& element : value.toMap()) {
        if (hasDouble(element))
            return true;
    }
    return false;
}

} // namespace

/// What was read can be written, and what was written reads as the same.
extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    const QVariant value =
        JsonCodec::parse(QString::fromUtf8(reinterpret_cast<const char*>(data), int(size)));
    bool success = false;
    const QByteArray text = JsonCodec::serialize(value, success);
    require(success && !text.isNull());
    const QVariant again = JsonCodec::parse(QString::fromUtf8(text.constData(), text.size()));
    require(hasDouble(value) || JsonCodec::serialize(again) == text);
    return 0;
}
