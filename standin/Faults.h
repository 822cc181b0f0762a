// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <chrono>
#include <functional>
#include <map>
#include <mutex>
#include <optional>
#include <string>

#include "Encoding.h"

namespace standin {

/// How a request is failed.
struct Fault {
    enum class Mode {
        Body, ///< answered with another body
        Delay,
        Hang,
        DropBefore,
        DropAfter,
        DropKept,
        ResetKept,
        Status500,
        Endless,
    };

    std::string name;
    Mode mode;
    std::string body;
    std::chrono::milliseconds time; ///< of Delay; of Hang the bound
    std::optional<int> remaining; ///< how many requests more; nothing means until told otherwise
    // Told by Faults:
    int order = 0; ///< which one to its path this is
    int clearings = 0; ///< how many there had been when it was taken

    /// The fault of this name, for all requests; nothing when there is none. The body is that of
    /// the order.
    static std::optional<Fault> named(const std::string& name, const std::string& body);
    /// A line for each name: what it does.
    static std::string explanation();
};

/// Which paths are failed at the moment. All functions may be called from any thread.
class Faults {
public:
    /// Replaces what the path had. Requests that hang on it are released.
    void set(const std::string& path, const Fault& fault);
    /// The path answers rightly again. Requests that hang on it are released.
    void clear(const std::string& path);
    /// All paths answer rightly again. What waits is of the time before, and is not to be answered.
    void clearAll();

    /// The fault for one request, counted down; nothing when it is to be answered rightly.
    std::optional<Fault> take(const std::string& path);

    /// Lets a request wait with a fault that was taken, and is true when it is to be answered then:
    /// a delayed one when its time is up, a hanging one when its path is told otherwise before.
    bool wait(const std::string& path, const Fault& fault,
              const std::function<bool()>& clientHasGone);

    /// Path to mode and remaining count.
    Json toJson() const;

private:
    mutable std::mutex m_mutex;
    std::map<std::string, Fault> m_faults;
    std::map<std::string, int> m_orders; ///< path to how many orders it has had
    int m_clearings = 0;
};

} // namespace standin
