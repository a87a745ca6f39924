#include "core/api/LoadedModel.h"

#include <QHash>

size_t qHash(const LoadedModel &model, size_t seed) noexcept
{
    return qHashMulti(seed, model.name, model.size);
}
