// Turns the signals that ask a program to end (SIGINT, SIGTERM, SIGHUP) into a Qt signal on the main thread.
#pragma once

#include <QObject>
#include <QSocketNotifier>

class TerminationSignals : public QObject
{
    Q_OBJECT

public:
    // Installs the handlers; one object a process.
    explicit TerminationSignals(QObject *parent = nullptr);

Q_SIGNALS:
    // Emitted once for each signal that arrives.
    void terminationRequested();

private:
    QSocketNotifier m_notifier;
};
