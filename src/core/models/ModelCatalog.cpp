#include "core/models/ModelCatalog.h"

#include "platform/text/Trimming.h"

#include <QSet>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace {

constexpr double goodBelow = 0.35;
constexpr double tightBelow = 0.6;

double ratio(qint64 sizeBytes, quint64 memory)
{
    return static_cast<double>(sizeBytes) / static_cast<double>(std::max<quint64>(memory, 1));
}

QString preferredName(quint64 memory)
{
    constexpr double gibibyte = 1024.0 * 1024.0 * 1024.0;
    const double gibibytes = static_cast<double>(memory) / gibibyte;
    if (gibibytes < 12)
        return u"qwen3:4b"_s;
    return gibibytes < 32 ? u"qwen2.5:7b"_s : u"llama3.1:8b"_s;
}

QList<CatalogModel> makeModels()
{
    return {
        {u"qwen3:0.6b"_s, 523'000'000, ModelCatalog::tr("523 MB"),
         ModelCatalog::tr("Very fast chat, drafts, simple extraction"),
         ModelCatalog::tr("Limited reasoning")},
        {u"qwen3:1.7b"_s,
         1'400'000'000,
         ModelCatalog::tr("1.4 GB"),
         ModelCatalog::tr("Fast general assistant, light coding help"),
         {}},
        {u"llama3.2:3b"_s,
         2'000'000'000,
         ModelCatalog::tr("2.0 GB"),
         ModelCatalog::tr("General chat, tool calling"),
         {}},
        {u"phi3.5"_s,
         2'200'000'000,
         ModelCatalog::tr("2.2 GB"),
         ModelCatalog::tr("Reasoning and code in a small package"),
         {}},
        {u"qwen3:4b"_s, 2'500'000'000, ModelCatalog::tr("2.5 GB"),
         ModelCatalog::tr("Best small all-rounder, 256K context"), ModelCatalog::tr("Best pick for 8 GB")},
        {u"qwen2.5-coder:7b"_s, 4'500'000'000, ModelCatalog::tr("4.5 GB"),
         ModelCatalog::tr("Local coding, refactoring, explanations"),
         ModelCatalog::tr("Best coding pick for 16 GB")},
        {u"qwen2.5:7b"_s, 4'500'000'000, ModelCatalog::tr("4.5 GB"),
         ModelCatalog::tr("Strong general chat and multilingual work"),
         ModelCatalog::tr("Best all-round pick for 16 GB")},
        {u"llama3.1:8b"_s,
         5'000'000'000,
         ModelCatalog::tr("5.0 GB"),
         ModelCatalog::tr("Broad ecosystem, general assistant, tools"),
         {}},
        {u"gemma2:9b"_s, 5'500'000'000, ModelCatalog::tr("5.5 GB"),
         ModelCatalog::tr("Multilingual chat and general reasoning"),
         ModelCatalog::tr("Leave headroom on 16 GB")},
        {u"mistral-nemo"_s, 7'100'000'000, ModelCatalog::tr("7.1 GB"), ModelCatalog::tr("Long context, 128K"),
         ModelCatalog::tr("16 GB only, expect slower replies")},
    };
}

} // namespace

size_t qHash(const CatalogModel &model, size_t seed) noexcept
{
    return qHashMulti(seed, model.name, model.sizeBytes, model.sizeLabel, model.bestFor, model.note);
}

const QList<CatalogModel> &ModelCatalog::models()
{
    static const QList<CatalogModel> list = makeModels();
    return list;
}

CatalogModel ModelCatalog::bestPick(quint64 memory)
{
    const QList<CatalogModel> &all = models();
    const auto isGood = [memory](const CatalogModel &model) {
        return fit(model.sizeBytes, memory) == Fit::good;
    };
    const auto preferred = std::ranges::find(all, preferredName(memory), &CatalogModel::name);
    if (preferred != all.end() && isGood(*preferred))
        return *preferred;
    const auto largest = std::find_if(all.rbegin(), all.rend(), isGood);
    return largest != all.rend() ? *largest : all.first();
}

bool ModelCatalog::has(const QString &name)
{
    static const QSet<QString> names = [] {
        QSet<QString> all;
        for (const CatalogModel &model : models())
            all.insert(normalized(model.name));
        return all;
    }();
    return names.contains(normalized(name));
}

Fit ModelCatalog::fit(qint64 sizeBytes, quint64 memory)
{
    const double share = ratio(sizeBytes, memory);
    if (share < goodBelow)
        return Fit::good;
    return share < tightBelow ? Fit::tight : Fit::tooBig;
}

QString ModelCatalog::normalized(const QString &name)
{
    const QString lower = trimmedOfBlanks(name).toLower();
    return lower.contains(u':') ? lower : lower + ":latest"_L1;
}
