// Someone who uses the program for the first time: hands that click and type at its real window, eyes that
// wait until something shows, and a camera.
#pragma once

#include "core/app/AppState.h"
#include "support/Sandbox.h"
#include "ui/app/MainWindow.h"
#include "ui/app/QtDesktop.h"

#include <QDir>

#include <functional>
#include <optional>
#include <stdexcept>

// The program did not do what a newcomer expects of it; what() says so in a sentence.
class Disappointment : public std::runtime_error
{
    using std::runtime_error::runtime_error;
};

class Newcomer
{
public:
    // Starts the program with a profile of its own and the demonstration engine. Pictures go into `pictures`,
    // which is made and emptied. Throws a Disappointment where that folder cannot be written.
    explicit Newcomer(const QString &pictures);
    ~Newcomer();
    Newcomer(const Newcomer &) = delete;
    Newcomer &operator=(const Newcomer &) = delete;

    AppState &state() { return *m_state; }
    MainWindow &window() { return *m_window; }
    Desktop &desktop() { return m_desktop; }
    UserDefaults &defaults() { return m_sandbox.defaults(); }

    // All of these throw a Disappointment when what they need does not come within a minute.
    void waitUntil(const QString &happening, const std::function<bool()> &hasHappened);
    // Clicks the button with these words, in the window or in the part of it with this name.
    void click(const QString &button, const QString &part = {});
    void press(Qt::Key key, Qt::KeyboardModifiers modifiers = Qt::ControlModifier);
    // Writes a message and sends it.
    void say(const QString &message);
    // Keeps what the window, or `view` instead, shows as "{number}-{name}.png".
    void takePicture(const QString &name, QWidget *view = nullptr);
    // Closes the window and quits; nothing that was started is left afterwards.
    void quit();

    // A line for whoever watches the tour.
    static void tell(const QString &line);

private:
    Sandbox m_sandbox;
    QtDesktop m_desktop;
    std::optional<AppState> m_state;
    std::optional<MainWindow> m_window;
    QDir m_pictures;
    int m_pictureCount = 0;
};
