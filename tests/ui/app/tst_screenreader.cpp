#include "support/AccessibleExplorer.h"
#include "support/ScreenTour.h"
#include "ui/app/GuideView.h"
#include "ui/chat/MessageInput.h"
#include "ui/widgets/Announcer.h"

#include <QLineEdit>

#include <functional>

using namespace Qt::StringLiterals;

namespace {

// Whether that is said, wherever the focus is.
bool announces(AppOnScreen &app, const QString &text)
{
    return onscreen::find<Announcer>(app.window(), text);
}

} // namespace

// What a screen reader may ask for while a screen changes; the program must survive it.
class ScreenReaderTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void asksForAnything_data() { ScreenTour::addRows(); }

    void asksForAnything()
    {
        QFETCH(const QString, screen);
        ScreenTour tour(screen);
        QWidget &window = tour.window();
        AppState &state = tour.state();
        AccessibleExplorer explorer;
        const std::function<void()> changes[] = {
            [] {},
            [&] { window.resize(window.minimumSizeHint()); },
            [&] { window.resize(2000, 3000); },
            [&] { state.setBanner(std::nullopt); },
            [&] { state.newChat(); },
            [&] { state.setTab(AppTab::models); },
            [&] { state.setServer(false); },
            [&] { state.setTab(AppTab::chat); },
            [&] { window.resize(window.minimumSizeHint()); },
            [&] { state.setTab(AppTab::server); },
        };
        for (const auto &change : changes) {
            change();
            explorer.explore(window);
            QCoreApplication::processEvents();
            explorer.explore(window);
        }
        QVERIFY(explorer.met() > 10);
    }

    // Where the focus goes, and what is told of the rest.
    void leads()
    {
        AppOnScreen app({{u"DEMO_ENGINE_INSTALLED"_s, u"qwen3:0.6b"_s}}, AppOnScreen::first);
        QVERIFY(app.find<GuideView>()->isAncestorOf(app.window()->focusWidget()));
        app.click(u"Skip the guide"_s);
        app->openChat(u"qwen3:0.6b"_s);
        app->setTab(AppTab::models);
        app.press(Qt::Key_2);
        QTRY_VERIFY(qobject_cast<MessageInput *>(app.window()->focusWidget()));
        app.press(Qt::Key_F);
        QTRY_VERIFY(qobject_cast<QLineEdit *>(app.window()->focusWidget()));
        QVERIFY(app.isAnswered(u"1"_s, *app->chats().selectedID()));
        QTRY_VERIFY(announces(app, u"The reply has ended"_s));
        app->setBanner(u"Something is wrong"_s);
        QTRY_VERIFY(announces(app, u"Something is wrong"_s));
        app.press(Qt::Key_N);
        QTRY_VERIFY(qobject_cast<MessageInput *>(app.window()->focusWidget()));
    }
};

QTEST_MAIN(ScreenReaderTest)
#include "tst_screenreader.moc"
