#include "ControlApi.h"

#include "Json.h"
#include "ProcessFaults.h"

#include <QJsonArray>

#include <string_view>

namespace demo {

using namespace Qt::StringLiterals;

namespace {

void answer(httplib::Response &response, const QJsonObject &object, int status = 200)
{
    response.status = status;
    response.set_content(compact(object), "application/json; charset=utf-8");
}

void refuse(httplib::Response &response, int status, const std::string &text)
{
    answer(response, {{"error"_L1, toQt(text)}}, status);
}

QJsonArray faultArray(const EngineState &state)
{
    QJsonArray array;
    for (const Fault &fault : state.faults.all()) {
        const std::string scope = fault.scope.empty() ? std::string() : fault.scope + ":";
        const std::string value = fault.value.empty() ? std::string() : "=" + fault.value;
        array.append(toQt(scope + fault.name + value));
    }
    return array;
}

void setFaults(EngineState &state, const QJsonObject &body, httplib::Response &response)
{
    const ParsedFaults parsed = parseFaults(toStd(body.value("faults"_L1).toString()));
    if (!parsed.unknown.empty()) {
        refuse(response, 400, "no such fault: " + parsed.unknown.front());
        return;
    }
    state.faults.set(parsed.faults);
    startProcessFaults(parsed.faults);
    answer(response, {{"faults"_L1, faultArray(state)}});
}

void setPace(EngineState &state, const QJsonObject &body, httplib::Response &response)
{
    const auto take = [&body](QLatin1StringView key, std::atomic<int> &value, int least) {
        value = std::max(body.value(key).toInt(value), least);
    };
    take("pullMs"_L1, state.pace.pullMs, 0);
    take("loadMs"_L1, state.pace.loadMs, 0);
    take("unloadMs"_L1, state.pace.unloadMs, 0);
    take("chunkMs"_L1, state.pace.chunkMs, 0);
    take("chunkBytes"_L1, state.pace.chunkBytes, 1);
    answer(response, {{"pullMs"_L1, state.pace.pullMs.load()},
                      {"loadMs"_L1, state.pace.loadMs.load()},
                      {"unloadMs"_L1, state.pace.unloadMs.load()},
                      {"chunkMs"_L1, state.pace.chunkMs.load()},
                      {"chunkBytes"_L1, state.pace.chunkBytes.load()}});
}

void installModel(EngineState &state, const QJsonObject &body, httplib::Response &response)
{
    const auto name = ModelName::parse(toStd(body.value("name"_L1).toString()));
    if (!name) {
        refuse(response, 400, "invalid model name");
        return;
    }
    state.store.install(*name);
    answer(response, {{"name"_L1, toQt(name->listed())}});
}

} // namespace

void answerControl(EngineState &state, const httplib::Request &request, httplib::Response &response)
{
    const auto body = parseObject(request.body).value_or(QJsonObject());
    const std::string key = request.method + " " + request.path;
    if (key == "GET /demo/requests") {
        answer(response, {{"requests"_L1, state.requests.toJson()}});
    } else if (key == "DELETE /demo/requests") {
        state.requests.clear();
        answer(response, {});
    } else if (key == "GET /demo/faults") {
        answer(response, {{"faults"_L1, faultArray(state)}});
    } else if (key == "POST /demo/faults") {
        setFaults(state, body, response);
    } else if (key == "DELETE /demo/faults") {
        state.faults.set({});
        answer(response, {{"faults"_L1, QJsonArray()}});
    } else if (key == "POST /demo/settings") {
        setPace(state, body, response);
    } else if (key == "POST /demo/models") {
        installModel(state, body, response);
    } else {
        refuse(response, 404, "no such control");
    }
}

} // namespace demo
