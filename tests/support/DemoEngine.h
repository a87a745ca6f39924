// The stand-in engine as a child process of a test: on a port of its own, with a models folder and a home
// that vanish with it.
#pragma once

#include <QByteArray>
#include <QJsonArray>
#include <QJsonObject>
#include <QMap>
#include <QProcess>
#include <QString>
#include <QTemporaryDir>

class DemoEngine
{
public:
    // Starts the engine with `variables` added to its environment and returns when it answers. Ends the test
    // program when it does not.
    explicit DemoEngine(const QMap<QString, QString> &variables = {});
    // The same with nothing that takes time of its own, unless `variables` say so.
    static QMap<QString, QString> quick(QMap<QString, QString> variables = {});
    // Ends the process and waits for it.
    ~DemoEngine();
    DemoEngine(const DemoEngine &) = delete;
    DemoEngine &operator=(const DemoEngine &) = delete;

    int port() const { return m_port; }
    QString modelsFolder() const;
    // Stops the process where it is; connections to it are still taken. It has stopped when this returns.
    void freeze() const;
    void thaw() const;

    // Replaces the faults in force: "reset", "chat:error-line=out of luck,slow". Empty ends them all.
    void setFaults(const QString &faults) const;

    // The requests that have reached the engine, oldest first, without those of the control interface.
    QJsonArray requests() const;
    // Those of them to `path`, for example "/api/chat".
    QJsonArray requests(const QString &path) const;

    // One exchange with the engine, waited for; for whatever the functions above do not offer.
    QByteArray call(const QByteArray &method, const QString &path, const QByteArray &body = {}) const;

private:
    QTemporaryDir m_folder;
    QProcess m_process;
    int m_port = 0;
};
