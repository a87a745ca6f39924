#include "platform/process/ProcessMark.h"

bool ProcessMark::matches(const ProcessMark &other) const
{
    const bool programsDiffer = !program.isEmpty() && !other.program.isEmpty() && program != other.program;
    return id > 1 && id == other.id && !birth.isEmpty() && birth == other.birth && !programsDiffer;
}
