// Sees to it that one profile is used by one running program: the first holds a lock file, a second tells the
// first to come to the front and goes away.
#pragma once

#include <QLockFile>
#include <QObject>
#include <QString>

#include <memory>

class QLocalServer;
class QLocalSocket;

class SingleInstance : public QObject
{
    Q_OBJECT

public:
    // `folder` is the profile's; it is created when this turns out to be the first instance.
    explicit SingleInstance(const QString &folder, QObject *parent = nullptr);
    ~SingleInstance() override;

    // What a launch is for.
    enum class Wish
    {
        show,
        newChat
    };

    // True for the first instance. Otherwise the running one has been told what the launch was for, nothing
    // has been written, and the caller should exit. Blocks for some seconds at most.
    bool claim(Wish wish = Wish::show);

    // Another launch no longer shows this one but waits for its end and takes its place.
    void stopAnswering();

Q_SIGNALS:
    // Another launch with the same profile asks this one to show its window.
    void showRequested();
    // The same, for a new chat.
    void newChatRequested();

private:
    bool handOver(Wish wish);
    void listen();
    void hear(QLocalSocket *caller);

    QString m_folder;
    QString m_serverName;
    std::unique_ptr<QLockFile> m_lock;
    std::unique_ptr<QLocalServer> m_server;
};
