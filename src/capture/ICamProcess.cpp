#include "capture/ICamProcess.h"

#include "capture/HResult.h"
#include "image/ProcessOperations.h"

int ICamProcess::Set(ProcessOp op, int on, std::initializer_list<int> parameters)
{
    const ProcessOperation& row = Operation(op);
    Q_ASSERT(parameters.size() == row.parameters.size());
    ProcessSwitches values;
    values.*row.on = on != 0;
    const int* given = parameters.begin();
    for (const ProcessParameter& parameter : row.parameters)
        if (given != parameters.end())
            values.*parameter.value = *given++;
    return SetOperation(op, values);
}

int ICamProcess::Get(ProcessOp op, int* on, std::initializer_list<int*> parameters)
{
    const ProcessOperation& row = Operation(op);
    Q_ASSERT(parameters.size() == row.parameters.size());
    ProcessSwitches values;
    // Without an element there is nothing to read, whatever the pointers.
    const int result = GetOperation(op, &values);
    if (FAILED(result))
        return result;
    if (!on)
        return E_POINTER;
    for (int* parameter : parameters)
        if (!parameter)
            return E_POINTER;
    *on = values.*row.on ? 1 : 0;
    int* const* out = parameters.begin();
    for (const ProcessParameter& parameter : row.parameters)
        if (out != parameters.end())
            **out++ = values.*parameter.value;
    return result;
}
