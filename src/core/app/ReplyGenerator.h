// Streams the model's reply into a conversation, one reply at a time in the whole program.
#pragma once

#include "core/api/ChatRequest.h"
#include "platform/async/Job.h"
#include "platform/async/Task.h"

#include <QObject>
#include <QPointer>
#include <QString>
#include <QTimer>
#include <QUuid>

#include <chrono>
#include <optional>

class ChatStore;
class EngineManager;

class ReplyGenerator : public QObject
{
    Q_OBJECT

public:
    // Both are to outlive this. `longWait` is how long a model may take to answer before it counts as
    // awaited.
    ReplyGenerator(EngineManager &engine, ChatStore &chats, std::chrono::milliseconds longWait,
                   QObject *parent = nullptr);
    // A reply that is streaming is stopped, and what arrived last of it is not saved.
    ~ReplyGenerator() override;

    // The conversation whose reply is streaming.
    const std::optional<QUuid> &generatingID() const { return m_generatingID; }

    // The model from which nothing has come for long; empty when there is none.
    const QString &awaitedModel() const { return m_awaitedModel; }

    // Appends an empty reply to the conversation and fills it with the engine's answer to `request`; the
    // engine is started where it does not run. Not to be called while a reply streams.
    void start(const QUuid &id, const ChatRequest &request);
    void stop() const { m_generationTask.requestStop(); }

Q_SIGNALS:
    void generatingIDChanged();
    void awaitedModelChanged();
    // The reply ended early; `message` is for the user.
    void failed(const QString &message);
    // The conversation is saved; the engine may have loaded a model.
    void finished();

private:
    static Task<> run(QPointer<ReplyGenerator> self, QUuid id, ChatRequest request, StopToken stop);
    static Task<> stream(QPointer<ReplyGenerator> self, QUuid id, ChatRequest request, StopToken stop);
    void finish(const QUuid &id);
    void setGeneratingID(const std::optional<QUuid> &id);
    void setAwaitedModel(const QString &model);
    void stopWaiting();

    EngineManager &m_engine;
    ChatStore &m_chats;
    std::optional<QUuid> m_generatingID;
    QString m_model; // that was asked last
    QString m_awaitedModel;
    QTimer m_longWait; // runs from a request to what comes first
    Job m_generationTask;
};
