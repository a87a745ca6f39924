// The only code that talks to the engine: one operation per endpoint of its REST API. A small value, to be
// made afresh from the engine's current port for each request.
#pragma once

#include "core/api/ChatChunk.h"
#include "core/api/ChatRequest.h"
#include "core/api/InstalledModel.h"
#include "core/api/LoadedModel.h"
#include "core/api/ModelDetails.h"
#include "core/api/PullProgress.h"
#include "platform/async/Stop.h"
#include "platform/async/Stream.h"
#include "platform/async/Task.h"
#include "platform/http/HttpTransfer.h"

#include <QList>
#include <QUrl>

#include <optional>

// Main thread only. The tasks throw OllamaError or TransportError, and the streams end with one of them. The
// client may be dropped while its operations run. A body the engine sends with a success status never fails
// an operation: what cannot be read of it takes defaults.
class OllamaClient
{
public:
    // Always the loopback address, also while the engine is shared on the network.
    explicit OllamaClient(int port);

    const QUrl &baseURL() const { return m_baseURL; }

    // The installed models, in the engine's order.
    Task<QList<InstalledModel>> tags(StopToken stop = {}) const;
    // The models in memory, in the engine's order.
    Task<QList<LoadedModel>> ps(StopToken stop = {}) const;
    // Asks the engine to take a model out of memory.
    Task<> unload(const QString &name, StopToken stop = {}) const;
    // Deletes an installed model from the disk.
    Task<> deleteModel(const QString &name, StopToken stop = {}) const;
    Task<ModelDetails> show(const QString &name, StopToken stop = {}) const;
    // The engine's version, which may be empty. Gives up after two seconds of silence.
    Task<QString> version(StopToken stop = {}) const;

    // Downloads a model; one record per line. Dropping the stream, or `stop`, ends the transfer.
    Stream<PullProgress> pull(const QString &name, StopToken stop = {}) const;
    // Generates an answer; one record per line. A record that is done need not be the last. Dropping the
    // stream, or `stop`, ends the transfer.
    Stream<ChatChunk> chat(const ChatRequest &request, StopToken stop = {}) const;

    // Vets an answer by its head, with the error body at hand. Throws OllamaError.
    static void check(const HttpHead &head, const QByteArray &body);
    // The engine's own text in an error body.
    static std::optional<QString> parseError(const QByteArray &data);

private:
    QUrl m_baseURL;
};
