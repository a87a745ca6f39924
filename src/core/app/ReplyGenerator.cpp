#include "core/app/ReplyGenerator.h"

#include "core/api/Cancellation.h"
#include "core/api/Friendly.h"
#include "core/api/OllamaClient.h"
#include "core/app/ChatGeneration.h"
#include "core/chat/ChatStore.h"
#include "core/engine/EngineManager.h"
#include "platform/async/Completion.h"
#include "platform/async/Sleep.h"
#include "platform/error/SimpleError.h"

#include <utility>

using namespace Qt::StringLiterals;

namespace {

Task<> startEngine(QPointer<EngineManager> engine, Completion<> settled)
{
    try {
        co_await engine->start();
        settled.complete();
    } catch (...) {
        settled.fail(std::current_exception());
    }
}

// Returns when the engine's start is settled or `stop` asks: who gives up a reply does not wait for an engine
// that takes a minute, and the engine goes on starting.
Task<> startUnlessStopped(QPointer<EngineManager> engine, StopToken stop)
{
    const Completion<> settled;
    const StopCallback stopped(stop, [settled] { settled.complete(); });
    launch([&] { return startEngine(engine, settled); });
    co_await settled.wait();
}

} // namespace

ReplyGenerator::ReplyGenerator(EngineManager &engine, ChatStore &chats, std::chrono::milliseconds longWait,
                               QObject *parent)
    : QObject(parent), m_engine(engine), m_chats(chats)
{
    m_longWait.setSingleShot(true);
    m_longWait.setInterval(longWait);
    connect(&m_longWait, &QTimer::timeout, this, [this] { setAwaitedModel(m_model); });
}

ReplyGenerator::~ReplyGenerator()
{
    m_generationTask.requestStop();
}

void ReplyGenerator::start(const QUuid &id, const ChatRequest &request)
{
    setGeneratingID(id);
    m_model = request.model;
    m_chats.mutate(id, [](Conversation &conversation) {
        conversation.messages.append(ChatMessage::make(u"assistant"_s));
    });
    m_generationTask = Job([&](const StopToken &stop) { return run(this, id, request, stop); });
}

Task<> ReplyGenerator::run(QPointer<ReplyGenerator> self, QUuid id, ChatRequest request, StopToken stop)
{
    // Out of the call that asked for it, so that everyone has seen the beginning before the end.
    const std::chrono::milliseconds nextTurn(0);
    co_await sleepFor(nextTurn, stop);
    if (!self)
        co_return;
    std::optional<QString> message;
    try {
        co_await stream(self, id, std::move(request), stop);
    } catch (...) {
        const auto error = std::current_exception();
        if (!stop.stopRequested() && !isCancellation(error))
            message = Friendly::message(error);
    }
    if (!self)
        co_return;
    if (message)
        Q_EMIT self->failed(*message);
    self->finish(id);
}

Task<> ReplyGenerator::stream(QPointer<ReplyGenerator> self, QUuid id, ChatRequest request, StopToken stop)
{
    EngineManager &engine = self->m_engine;
    if (engine.state().kind != EngineManager::State::running && !stop.stopRequested())
        co_await startUnlessStopped(&engine, stop);
    if (!self || stop.stopRequested())
        co_return;
    if (engine.state().kind != EngineManager::State::running)
        throw SimpleError(tr("The local engine isn't running. Open the Server tab to see why."));

    const OllamaClient client(engine.port());
    Stream<ChatChunk> chunks = client.chat(request, stop);
    self->m_longWait.start();
    while (const auto chunk = co_await chunks.next()) {
        if (!self || stop.stopRequested())
            co_return;
        self->stopWaiting();
        self->m_chats.mutate(id, [&chunk](Conversation &conversation) {
            if (!conversation.messages.isEmpty())
                ChatGeneration::apply(*chunk, conversation.messages.last());
        });
    }
}

void ReplyGenerator::finish(const QUuid &id)
{
    stopWaiting();
    const Conversation *const conversation = m_chats.find(id);
    if (conversation && !conversation->messages.isEmpty() &&
        ChatGeneration::isEmptyReply(conversation->messages.last()))
        m_chats.mutate(id, [](Conversation &changed) { changed.messages.removeLast(); });
    m_chats.touch(id);
    setGeneratingID(std::nullopt);
    Q_EMIT finished();
}

void ReplyGenerator::stopWaiting()
{
    m_longWait.stop();
    setAwaitedModel({});
}

void ReplyGenerator::setAwaitedModel(const QString &model)
{
    if (std::exchange(m_awaitedModel, model) != model)
        Q_EMIT awaitedModelChanged();
}

void ReplyGenerator::setGeneratingID(const std::optional<QUuid> &id)
{
    if (std::exchange(m_generatingID, id) != id)
        Q_EMIT generatingIDChanged();
}
