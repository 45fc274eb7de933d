#include "image/ProcessOperations.h"

void CopyOperation(ProcessOp op, const ProcessSwitches& from, ProcessSwitches& to)
{
    const ProcessOperation& row = Operation(op);
    to.*row.on = from.*row.on;
    for (const ProcessParameter& p : row.parameters)
        to.*p.value = from.*p.value;
}
