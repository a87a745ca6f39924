#pragma once

// Which faults the engine is to show, to which requests. Faults come from the environment, from the control
// interface, or from the model's name in the request itself.

#include <mutex>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace demo {

struct Fault
{
    // One endpoint ("chat", "pull", ...); empty for all.
    std::string scope;
    std::string name;
    std::string value;

    bool operator==(const Fault &) const = default;
};

// The faults that one request has to show.
class FaultSet
{
public:
    FaultSet() = default;
    explicit FaultSet(std::vector<Fault> faults);

    bool has(std::string_view name) const;
    // The value after "=", or empty.
    std::string value(std::string_view name) const;
    // The value as a whole number of at least 0, or `otherwise` when it is none.
    int number(std::string_view name, int otherwise) const;

private:
    std::vector<Fault> m_faults;
};

struct ParsedFaults
{
    std::vector<Fault> faults;
    // Entries that name no fault.
    std::vector<std::string> unknown;
};

// "reset,chat:error-line=out of luck,status=500;html"
ParsedFaults parseFaults(std::string_view text);

// "fault-stall_2:latest", "qwen3-fault-status_500_html", "fault-pull-reset": what the name asks `endpoint`
// for.
std::vector<Fault> faultsInModelName(std::string_view model, std::string_view endpoint);
bool asksForFault(std::string_view model);

// The faults in force; usable from any thread.
class FaultPlan
{
public:
    void set(std::vector<Fault> faults);
    std::vector<Fault> all() const;
    FaultSet forRequest(std::string_view endpoint, std::string_view model) const;

private:
    mutable std::mutex m_mutex;
    std::vector<Fault> m_faults;
};

} // namespace demo
