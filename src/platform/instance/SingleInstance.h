// Sees to it that one profile is used by one running program: the first holds the profile's lock, a second
// tells the first what it was started for and goes away.
#pragma once

#include "platform/instance/LaunchRequest.h"
#include "platform/instance/ProfileLock.h"

#include <QDeadlineTimer>
#include <QObject>
#include <QString>

#include <chrono>
#include <memory>
#include <optional>

class QSocketNotifier;

class SingleInstance : public QObject
{
    Q_OBJECT

public:
    // `folder` is the profile's; it is created when this turns out to be the first instance. A running one
    // has `patience` to answer: longer than a start or quitting takes on a busy machine, unless the disk
    // holds it up.
    explicit SingleInstance(const QString &folder,
                            std::chrono::milliseconds patience = std::chrono::seconds(10));
    ~SingleInstance() override;

    // How a launch has ended.
    struct Claim
    {
        enum class Outcome
        {
            first,      // this program has the profile
            handedOver, // the running one has confirmed that it does what the launch was for
            unanswered, // one runs and does not answer
            blocked,    // what stands at `path`, in the lock's place, cannot be used
            noFolder    // nothing can be written in the folder `path`; `error` says why
        };
        Outcome outcome = Outcome::first;
        QString path;
        int error = 0;      // an errno value
        qint64 process = 0; // the id of the one that does not answer; 0: not known
    };

    // Nothing has been written unless this is the first. Blocks for some seconds at most where no answer
    // comes.
    Claim claim(const LaunchRequest &request = {});

    // Another launch no longer shows this one but waits for its end and takes its place.
    void stopAnswering();

Q_SIGNALS:
    // Another launch with the same profile asks this one to do what it was for.
    void requested(const LaunchRequest &request);

private:
    enum class Answer
    {
        given,
        refused, // nobody is there, or is just going
        missing  // somebody is there and says nothing
    };
    Answer ask(const LaunchRequest &request, const QDeadlineTimer &deadline) const;
    Answer askAt(const QString &path, const LaunchRequest &request, const QDeadlineTimer &deadline) const;
    Claim begin();
    void listen();
    void greet();
    void hear(Descriptor connection);

    const std::chrono::milliseconds m_patience;
    const QString m_folder;
    const QString m_socketName;
    ProfileLock m_lock;
    QString m_socketPath; // where this one answers
    Descriptor m_socket;
    std::unique_ptr<QSocketNotifier> m_callers;
};
