// SPDX-License-Identifier: GPL-3.0-or-later
#include "app/CommandLine.h"

#include "platform/Display.h"

CommandLine::CommandLine(int argc, char* argv[])
    : m_option(argc > 1 ? argv[1] : "")
    , m_plugin(cleans() ? platform::displaylessPlugin() : platform::windowsPlugin())
    , m_theme(platform::themePlugin())
    , m_values(argv, argv + argc)
{
    static char platformOption[] = "-platform";
    static char themeOption[] = "-platformtheme";
    if (!m_plugin.isEmpty() && argc > 0)
        m_values.insert(m_values.begin() + 1, {platformOption, m_plugin.data()});
    if (!m_theme.isEmpty() && argc > 0)
        m_values.insert(m_values.begin() + 1, {themeOption, m_theme.data()});
    m_count = int(m_values.size());
    m_values.push_back(nullptr);
}

std::optional<QString> CommandLine::answer() const
{
    if (m_option == "--version")
        return QStringLiteral("TessaPort Team Monitor " TESSAPORT_VERSION "\n");
    if (m_option != "--help")
        return std::nullopt;
    return QStringLiteral(
        "Использование: tessaport-monitor [ПАРАМЕТР]\n"
        "\n"
        "Учёт времени работы над задачами команды. Без параметра открывается панель программы.\n"
        "\n"
        "  --clean    удалить каталог данных .tessaport со всем содержимым, в том числе\n"
        "             с неотправленными отчётами, и завершиться. Автозапуск остаётся как есть.\n"
        "             Сначала завершите программу: работающая запишет свои данные снова.\n"
        "  --version  показать версию и завершиться\n"
        "  --help     показать эту справку и завершиться\n"
        "\n"
        "Параметр действует, если стоит первым.\n");
}
