// Pulls models into the engine, one at a time and in the order they were asked for; failed and cancelled ones
// stay in the list until the user resumes or dismisses them.
#pragma once

#include "core/models/DownloadItem.h"
#include "core/models/SpeedMeter.h"
#include "core/models/StallWatch.h"
#include "platform/async/Job.h"
#include "platform/async/Task.h"

#include <QList>
#include <QObject>
#include <QPointer>
#include <QString>

#include <functional>
#include <optional>

class EngineManager;

class DownloadQueue : public QObject
{
    Q_OBJECT

public:
    // What tests put something else in the place of.
    struct Seams
    {
        // The bytes free on the volume of a folder, if known. Empty: the volume's own answer.
        std::function<std::optional<qint64>(const QString &folder)> freeBytes;
        SpeedMeter::Clock clock = std::chrono::steady_clock::now;
        // How long nothing may come before the item counts as stalled.
        std::chrono::milliseconds patience = StallWatch::usualPatience;
    };

    DownloadQueue();
    explicit DownloadQueue(Seams seams, QObject *parent = nullptr);
    // A running pull is stopped.
    ~DownloadQueue() override;

    const QList<DownloadItem> &items() const { return m_items; }
    // The item of the model called `name`, however it is written; valid until the next change.
    const DownloadItem *item(const QString &name) const;

    // Asks for a model, or resumes one that failed or was cancelled: that item goes to the end of the list.
    // `knownSize` is what the catalogue says, in bytes. False when it was refused, and the user told why.
    bool enqueue(const QString &name, std::optional<qint64> knownSize);
    // Stops the pull of that model, should it run; its item stays until it has ended. A model that is not
    // being pulled is taken off the list.
    void cancel(const QString &name);
    // Stops the pull that is talking to the engine, as cancel() does; false when none is.
    bool endTransfer();
    // Takes the model off the list and leaves its pull, should it run, alone.
    void dismiss(const QString &name);

    // Not owned; without one every pull fails.
    void setEngine(EngineManager *engine);

    // Called after a model was pulled.
    std::function<void()> onInstalledChanged;
    // Called with the sentence for the user when a request is refused.
    std::function<void(const QString &)> onMessage;

Q_SIGNALS:
    void itemsChanged();
    // A pull has ended in either way; its item as it is now, and as it was last.
    void failed(const DownloadItem &item);
    void succeeded(const DownloadItem &item);

private:
    void pump();
    static Task<> run(QPointer<DownloadQueue> self, QString id, QString name, StopToken stop);
    static Task<std::optional<DownloadItem::Phase>> attempt(QPointer<DownloadQueue> self, QString id,
                                                            QString name, StopToken stop);
    static Task<bool> pull(QPointer<DownloadQueue> self, QString id, QString name, StopToken stop);
    // Lets `change` alter the item, should it still be there, and tells whoever observes it.
    void alter(const QString &id, const std::function<void(DownloadItem &)> &change);
    void succeed(const QString &id);
    void finish(const QString &id, const DownloadItem::Phase &phase);
    void refuse(const QString &message) const;
    DownloadItem *find(const QString &id);
    bool removeAll(const QString &id);

    Seams m_seams;
    QPointer<EngineManager> m_engine;
    QList<DownloadItem> m_items;
    std::optional<QString> m_currentID;
    Job m_currentTask;
    bool m_transferring = false; // the current one has asked the engine
};
