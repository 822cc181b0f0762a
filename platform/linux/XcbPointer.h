// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstdlib>
#include <memory>

namespace platform {

struct FreeDeleter {
    void operator()(void* memory) const { std::free(memory); }
};

/// Owns what xcb hands over to be freed: a reply, an error, a list.
template <typename T> using XcbPointer = std::unique_ptr<T, FreeDeleter>;

} // namespace platform
