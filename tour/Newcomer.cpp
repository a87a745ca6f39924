#include "Newcomer.h"

#include "core/app/Shutdown.h"
#include "core/engine/AppPaths.h"
#include "support/OnScreen.h"
#include "support/RunningChild.h"
#include "support/Waiting.h"
#include "ui/chat/MessageInput.h"

#include <QTest>

#include <cstdio>

using namespace Qt::StringLiterals;

namespace {

constexpr int patience = 60'000; // ms
constexpr int mostTurns = 20;    // something in the picture may always move

} // namespace

Newcomer::Newcomer(const QString &pictures) : m_pictures(pictures)
{
    m_pictures.removeRecursively();
    if (!m_pictures.mkpath(u"."_s))
        throw Disappointment("The folder for the pictures cannot be written.");
    qputenv("HOME", m_sandbox.path(u"."_s).toLocal8Bit()); // the engine lives in one, wherever this runs
    m_sandbox.chooseEngine();
    m_sandbox.defaults().remove(u"guideDone"_s);
    m_state.emplace(AppState::Dependencies{m_sandbox.defaults(), m_desktop, AppPaths::chatsDir()});
    m_window.emplace(*m_state, m_desktop, m_sandbox.defaults());
    m_desktop.setMainWindow(&*m_window);
    m_window->show();
    waitUntil(u"the window opens"_s,
              [this] { return m_window->isVisible() && m_window->windowHandle()->isExposed(); });
}

Newcomer::~Newcomer() = default;

void Newcomer::waitUntil(const QString &happening, const std::function<bool()> &hasHappened)
{
    if (!QTest::qWaitFor(hasHappened, patience))
        throw Disappointment(u"This did not happen: %1."_s.arg(happening).toStdString());
}

void Newcomer::click(const QString &button, const QString &part)
{
    const auto root = [&]() -> QWidget * {
        return part.isEmpty() ? &*m_window : onscreen::find(&*m_window, part);
    };
    waitUntil(u"there is a button \"%1\" to click"_s.arg(button),
              [&] { return root() && onscreen::canClick(root(), button); });
    onscreen::click(root(), button);
}

void Newcomer::press(Qt::Key key, Qt::KeyboardModifiers modifiers)
{
    QTest::keyClick(&*m_window, key, modifiers);
}

void Newcomer::say(const QString &message)
{
    const auto input = [this] { return m_window->findChild<MessageInput *>(); };
    waitUntil(u"a message can be written"_s, [&] { return input() && input()->isVisible(); });
    QTest::keyClicks(input(), message);
    QTest::keyClick(input(), Qt::Key_Return);
}

void Newcomer::takePicture(const QString &name, QWidget *view)
{
    QWidget *const subject = view ? view : &*m_window;
    // What has just come into sight is laid out over several turns of the event loop.
    QImage picture;
    QImage before;
    for (int turn = 0; turn < mostTurns && (picture.isNull() || picture != before); ++turn) {
        before = std::exchange(picture, {});
        QCoreApplication::processEvents();
        picture = subject->grab().toImage();
    }
    const QString file = u"%1-%2.png"_s.arg(++m_pictureCount).arg(name);
    if (!picture.save(m_pictures.filePath(file)))
        throw Disappointment(u"The picture %1 could not be written."_s.arg(file).toStdString());
}

void Newcomer::quit()
{
    m_window->close();
    waitFor(shutDown(*m_state), patience);
    m_window.reset();
    m_state.reset();
    waitUntil(u"the engine ends with the program"_s, [] { return hasNoChildren(); });
}

void Newcomer::tell(const QString &line)
{
    std::puts(qUtf8Printable(line));
    std::fflush(stdout);
}
