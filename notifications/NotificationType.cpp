// SPDX-License-Identifier: GPL-3.0-or-later
#include "notifications/NotificationType.h"

#include <algorithm>
#include <iterator>

namespace {

struct TypeTraits {
    int type;
    const char* text; ///< with the message in the place of %1
    bool closesByItself;
    bool leadsToTask;
};

// "блокируюшая" is spelt as it is known; see docs/decisions.md.
constexpr TypeTraits allTraits[] = {
    {PlainNotification, "%1", true, false},
    {TeamAdded, "Добавлена новая команда \"%1\"", false, false},
    {TeamRemoved, "Вы больше не являетесь членом команды \"%1\"", true, false},
    {TaskAdded, "Добавлена новая задача \"%1\"", false, true},
    {TaskRemoved, "Задача \"%1\" более недоступна", true, false},
    {NewComment, "К задаче \"%1\" добавлен новый комментарий", false, true},
    {UpdateAvailable, "Доступно новое обновление Tessaport Team %1", false, false},
    {DeadlineChanged, "Дедлайн задачи \"%1\" был изменён", true, false},
    {TaskBlocked, "Задача \"%1\" помечена как блокирующая", false, true},
    {TaskUnblocked, "Задача \"%1\" более не является блокирующей", false, true},
    {BlockingTaskAdded, "Добавлена новая блокируюшая задача \"%1\"", false, true},
};

const TypeTraits& traits(int type)
{
    const auto* found = std::find_if(std::begin(allTraits), std::end(allTraits),
                                     [type](const TypeTraits& t) { return t.type == type; });
    return found == std::end(allTraits) ? allTraits[PlainNotification] : *found;
}

} // namespace

QString notificationText(const QString& message, int type)
{
    return QString::fromUtf8(traits(type).text).arg(message);
}

bool closesByItself(int type)
{
    return traits(type).closesByItself;
}

bool leadsToTask(int type)
{
    return traits(type).leadsToTask;
}
