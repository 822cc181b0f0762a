// SPDX-License-Identifier: GPL-3.0-or-later
#include "platform/KeyTable.h"

#include <algorithm>
#include <iterator>

namespace platform {

namespace {

struct KeyRow {
    Qt::Key key;
    KeyCodes codes;
};

constexpr KeyRow keyTable[] = {
    {Qt::Key_Escape, {27, 0xff1b}},
    {Qt::Key_Tab, {9, 0xff09}},
    {Qt::Key_Backtab, {9, 0xff09}},
    {Qt::Key_Backspace, {8, 0xff08}},
    {Qt::Key_Return, {13, 0xff0d}},
    {Qt::Key_Enter, {13, 0xff0d}},
    {Qt::Key_Insert, {45, 0xff63}},
    {Qt::Key_Delete, {46, 0xffff}},
    {Qt::Key_Pause, {19, 0xff13}},
    {Qt::Key_Print, {42, 0xff61}}, // VK_PRINT; Print Screen is VK_SNAPSHOT
    {Qt::Key_Clear, {12, 0xff0b}},
    {Qt::Key_Home, {36, 0xff50}},
    {Qt::Key_End, {35, 0xff57}},
    {Qt::Key_Left, {37, 0xff51}},
    {Qt::Key_Up, {38, 0xff52}},
    {Qt::Key_Right, {39, 0xff53}},
    {Qt::Key_Down, {40, 0xff54}},
    {Qt::Key_PageUp, {33, 0xff55}},
    {Qt::Key_PageDown, {34, 0xff56}},
    {Qt::Key_Space, {32, 0x0020}},
    {Qt::Key_Asterisk, {106, 0xffaa}},
    {Qt::Key_Plus, {107, 0xffab}},
    {Qt::Key_Comma, {108, 0xffac}},
    {Qt::Key_Minus, {109, 0xffad}},
    {Qt::Key_Slash, {111, 0xffaf}},
    {Qt::Key_VolumeMute, {173, 0x1008ff12}},
    {Qt::Key_VolumeDown, {174, 0x1008ff11}},
    {Qt::Key_VolumeUp, {175, 0x1008ff13}},
    {Qt::Key_MediaNext, {176, 0x1008ff17}},
    {Qt::Key_MediaPrevious, {177, 0x1008ff16}},
    {Qt::Key_MediaStop, {178, 0x1008ff15}},
    {Qt::Key_MediaPlay, {179, 0x1008ff14}},
};

/// Keys that follow each other in the same order everywhere.
struct KeyRange {
    Qt::Key first;
    Qt::Key last;
    KeyCodes firstCodes;
};

constexpr KeyRange keyRanges[] = {
    {Qt::Key_0, Qt::Key_9, {'0', '0'}},
    {Qt::Key_A, Qt::Key_Z, {'A', 'A'}},
    {Qt::Key_F1, Qt::Key_F24, {112, 0xffbe}},
};

} // namespace

KeyCodes keyCodes(Qt::Key key)
{
    for (const KeyRange& range : keyRanges) {
        if (key >= range.first && key <= range.last) {
            const quint32 offset = key - range.first;
            return {range.firstCodes.virtualKey + offset, range.firstCodes.keysym + offset};
        }
    }
    const auto row = std::find_if(std::begin(keyTable), std::end(keyTable),
                                  [key](const KeyRow& candidate) { return candidate.key == key; });
    return row == std::end(keyTable) ? KeyCodes() : row->codes;
}

} // namespace platform
