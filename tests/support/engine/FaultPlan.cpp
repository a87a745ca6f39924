#include "FaultPlan.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <utility>

namespace demo {

namespace {

enum class Kind
{
    request,
    pull,
    chat,
    process,
};

struct Definition
{
    std::string_view name;
    Kind kind;
};

constexpr auto definitions = std::to_array<Definition>({
    {"status", Kind::request},
    {"endless-error", Kind::request},
    {"not-http", Kind::request},
    {"not-json", Kind::request},
    {"empty-body", Kind::request},
    {"wrong-types", Kind::request},
    {"text-numbers", Kind::request},
    {"reset-early", Kind::request},
    {"close-early", Kind::request},
    {"stall-early", Kind::request},
    {"reset", Kind::request},
    {"close", Kind::request},
    {"stall", Kind::request},
    {"bad-chunk", Kind::request},
    {"bytes", Kind::request},
    {"cuts", Kind::request},
    {"truncated-lines", Kind::request},
    {"blank-lines", Kind::request},
    {"huge-lines", Kind::request},
    {"invalid-utf8", Kind::request},
    {"cr", Kind::request},
    {"crlf", Kind::request},
    {"no-last-newline", Kind::request},
    {"error-first", Kind::request},
    {"error-line", Kind::request},
    {"early-end", Kind::request},
    {"no-done", Kind::chat},
    {"no-counters", Kind::chat},
    {"zero-counters", Kind::chat},
    {"no-message", Kind::chat},
    {"text-in-last-line", Kind::chat},
    {"load-fail", Kind::chat},
    {"out-of-memory", Kind::chat},
    {"busy", Kind::chat},
    {"runner-died", Kind::chat},
    {"falling", Kind::pull},
    {"no-success", Kind::pull},
    {"digest-mismatch", Kind::pull},
    {"no-space", Kind::pull},
    {"no-host", Kind::pull},
    {"max-retries", Kind::pull},
    {"canceled", Kind::pull},
    {"slow-start", Kind::process},
    {"port-in-use", Kind::process},
    {"exit-0", Kind::process},
    {"exit-1", Kind::process},
    {"kill", Kind::process},
    {"stop-delay", Kind::process},
    {"ignore-term", Kind::process},
    {"log-lines", Kind::process},
    {"log-huge", Kind::process},
    {"log-invalid-utf8", Kind::process},
});

constexpr auto scopes =
    std::to_array<std::string_view>({"version", "tags", "ps", "show", "pull", "chat", "generate", "delete"});

const Definition *definitionOf(std::string_view name)
{
    const auto found = std::find_if(definitions.begin(), definitions.end(),
                                    [name](const Definition &definition) { return definition.name == name; });
    return found == definitions.end() ? nullptr : &*found;
}

bool isScope(std::string_view text)
{
    return std::find(scopes.begin(), scopes.end(), text) != scopes.end();
}

std::string_view trimmed(std::string_view text)
{
    const std::size_t first = text.find_first_not_of(" \t\r\n");
    if (first == std::string_view::npos) {
        return {};
    }
    return text.substr(first, text.find_last_not_of(" \t\r\n") - first + 1);
}

// Faults in a model's name belong to the endpoint that shows them best, unless the name says which one.
Fault faultInName(std::string_view token)
{
    while (!token.empty() && (token.back() == '.' || token.back() == '-' || token.back() == '_')) {
        token.remove_suffix(1);
    }
    Fault fault;
    if (const std::size_t mark = token.find('_'); mark != std::string_view::npos) {
        fault.value = token.substr(mark + 1);
        token = token.substr(0, mark);
    }
    const std::size_t dash = token.find('-');
    if (dash != std::string_view::npos && isScope(token.substr(0, dash)) &&
        definitionOf(token.substr(dash + 1)) != nullptr) {
        fault.scope = token.substr(0, dash);
        token = token.substr(dash + 1);
    }
    const Definition *definition = definitionOf(token);
    if (definition == nullptr || definition->kind == Kind::process) {
        return {};
    }
    if (fault.scope.empty()) {
        fault.scope = definition->kind == Kind::pull ? "pull" : "chat";
    }
    fault.name = token;
    return fault;
}

constexpr std::string_view marker = "fault-";

} // namespace

FaultSet::FaultSet(std::vector<Fault> faults) : m_faults(std::move(faults)) {}

bool FaultSet::has(std::string_view name) const
{
    return std::any_of(m_faults.begin(), m_faults.end(),
                       [name](const Fault &fault) { return fault.name == name; });
}

std::string FaultSet::value(std::string_view name) const
{
    const auto found = std::find_if(m_faults.begin(), m_faults.end(),
                                    [name](const Fault &fault) { return fault.name == name; });
    return found == m_faults.end() ? std::string() : found->value;
}

int FaultSet::number(std::string_view name, int otherwise) const
{
    const std::string text = value(name);
    int number = 0;
    const auto [end, problem] = std::from_chars(text.data(), text.data() + text.size(), number);
    return problem == std::errc() && end == text.data() + text.size() && number >= 0 ? number : otherwise;
}

ParsedFaults parseFaults(std::string_view text)
{
    ParsedFaults parsed;
    while (!text.empty()) {
        const std::size_t comma = text.find(',');
        std::string_view entry = trimmed(text.substr(0, comma));
        text.remove_prefix(comma == std::string_view::npos ? text.size() : comma + 1);
        if (entry.empty()) {
            continue;
        }
        const std::string whole(entry);
        Fault fault;
        if (const std::size_t equals = entry.find('='); equals != std::string_view::npos) {
            fault.value = entry.substr(equals + 1);
            entry = entry.substr(0, equals);
        }
        if (const std::size_t colon = entry.find(':'); colon != std::string_view::npos) {
            fault.scope = entry.substr(0, colon);
            entry = entry.substr(colon + 1);
        }
        fault.name = entry;
        const bool known = definitionOf(entry) != nullptr && (fault.scope.empty() || isScope(fault.scope));
        if (known) {
            parsed.faults.push_back(fault);
        } else {
            parsed.unknown.push_back(whole);
        }
    }
    return parsed;
}

std::vector<Fault> faultsInModelName(std::string_view model, std::string_view endpoint)
{
    std::vector<Fault> faults;
    model = model.substr(0, model.find(':'));
    std::size_t start = model.find(marker);
    while (start != std::string_view::npos) {
        start += marker.size();
        const std::size_t next = model.find(marker, start);
        const Fault fault =
            faultInName(model.substr(start, next == std::string_view::npos ? next : next - start));
        if (!fault.name.empty() && fault.scope == endpoint) {
            faults.push_back(fault);
        }
        start = next;
    }
    return faults;
}

bool asksForFault(std::string_view model)
{
    return model.find(marker) != std::string_view::npos;
}

void FaultPlan::set(std::vector<Fault> faults)
{
    const std::lock_guard lock(m_mutex);
    m_faults = std::move(faults);
}

std::vector<Fault> FaultPlan::all() const
{
    const std::lock_guard lock(m_mutex);
    return m_faults;
}

FaultSet FaultPlan::forRequest(std::string_view endpoint, std::string_view model) const
{
    std::vector<Fault> chosen = faultsInModelName(model, endpoint);
    for (const Fault &fault : all()) {
        // A test that breaks everything still has to see the engine come up.
        const bool everywhere = fault.scope.empty() && endpoint != "version";
        if (everywhere || fault.scope == endpoint) {
            chosen.push_back(fault);
        }
    }
    return FaultSet(std::move(chosen));
}

} // namespace demo
