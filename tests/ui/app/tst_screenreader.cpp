#include "support/ScreenTour.h"
#include "ui/app/GuideView.h"
#include "ui/chat/MessageInput.h"
#include "ui/widgets/Announcer.h"

#include <QAccessible>
#include <QLineEdit>

#include <climits>
#include <functional>
#include <set>

using namespace Qt::StringLiterals;

namespace {

// Everything below a window that an assistive program has come across, the gone things among it.
class Explorer
{
public:
    // Asks for all there is, and for what is not.
    void explore(QWidget &window)
    {
        m_seen.clear();
        explore(QAccessible::queryAccessibleInterface(&window));
        const std::set<QAccessible::Id> known = m_known;
        for (const QAccessible::Id id : known) {
            QAccessibleInterface *const one = QAccessible::accessibleInterface(id);
            if (one && !m_seen.contains(id))
                ask(*one);
        }
    }

    size_t met() const { return m_known.size(); }

private:
    void explore(QAccessibleInterface *one)
    {
        if (!one || !one->isValid())
            return;
        m_seen.insert(QAccessible::uniqueId(one));
        m_known.insert(QAccessible::uniqueId(one));
        for (int index = 0; index < one->childCount(); ++index)
            explore(one->child(index));
        ask(*one);
    }

    static void ask(QAccessibleInterface &one)
    {
        if (!one.isValid())
            return;
        const int count = one.childCount();
        // Qt's menus read before their list; no bridge of Qt's asks for less than the first.
        const bool isMenu = one.role() == QAccessible::MenuBar || one.role() == QAccessible::PopupMenu;
        for (const int index : {isMenu ? INT_MAX : -1, count, count + 1, INT_MAX})
            QVERIFY(!one.child(index));
        one.childAt(-30'000, 30'000);
        one.childAt(one.rect().x(), one.rect().y());
        one.focusChild();
        one.relations();
        one.indexOfChild(one.parent());
        one.state();
        one.window();
        for (const auto kind : {QAccessible::Name, QAccessible::Description, QAccessible::Value})
            one.text(kind);
        if (auto *const table = one.tableInterface()) {
            for (const int row : {-1, table->rowCount(), INT_MAX})
                QVERIFY(!table->cellAt(row, 0));
            table->selectedCells();
        }
        if (auto *const text = one.textInterface()) {
            int from = 0;
            int to = 0;
            for (const int offset : {-1, text->characterCount(), INT_MAX}) {
                text->characterRect(offset);
                for (const auto boundary : {QAccessible::WordBoundary, QAccessible::LineBoundary})
                    text->textAtOffset(offset, boundary, &from, &to);
            }
        }
    }

    std::set<QAccessible::Id> m_known;
    std::set<QAccessible::Id> m_seen; // this time
};

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
        Explorer explorer;
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
