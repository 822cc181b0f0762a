// SPDX-License-Identifier: GPL-3.0-or-later
#include "Fuzz.h"
#include "service/ServiceReply.h"

/// Each answer of the service, read as the answer to each call.
extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    const QByteArray body = bytes(data, size);
    const std::optional<int> code = ServiceReply::refusal(body);
    require(!code || *code == 0 || *code == 4 || *code == 5 || *code == 6);
    const QList<ServiceReply::TeamWithTasks> teams = ServiceReply::teamsAndTasks(body);
    for (const ServiceReply::TeamWithTasks& entry : teams)
        require(!entry.team.id.isEmpty() && entry.tasks.last().isUnassigned());
    ServiceReply::taskInfo(ServiceReply::answer(body).message);
    const ServiceReply::DayTotals totals = ServiceReply::dayTotals(body);
    require(totals.active.isValid() && totals.total.isValid() && totals.task.isValid());
    return 0;
}
