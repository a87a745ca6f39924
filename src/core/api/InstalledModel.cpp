#include "core/api/InstalledModel.h"

#include <QHash>

size_t qHash(const InstalledModel &model, size_t seed) noexcept
{
    return qHashMulti(seed, model.name, model.size, model.family, model.parameterSize, model.quantization);
}
