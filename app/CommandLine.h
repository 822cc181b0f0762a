// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QByteArray>
#include <QString>

#include <optional>
#include <vector>

/// What the program was started with. An option of its own is one only as the first argument and
/// letter for letter; Qt takes its options out of all of them.
class CommandLine {
public:
    /// The arguments of main(), which outlive the object, as this outlives the application object.
    CommandLine(int argc, char* argv[]);

    /// Whether the data directory is to be deleted, for which no display is needed.
    bool cleans() const { return m_option == "--clean"; }

    /// What is to be written instead of starting; nothing when the program is to start.
    std::optional<QString> answer() const;

    /// The arguments for the application object: those of main() behind a choice of the plugin with
    /// which Qt is to meet the display, if the system asks for one, and of no theme in place of one
    /// that the environment names. Those behind it overrule it.
    int& count() { return m_count; }
    char** values() { return m_values.data(); }

private:
    QByteArray m_option;
    QByteArray m_plugin;
    QByteArray m_theme;
    std::vector<char*> m_values;
    int m_count;
};
