#include "support/AppOnScreen.h"
#include "ui/app/SidebarView.h"
#include "ui/chat/ChatView.h"
#include "ui/chat/TextZoom.h"
#include "ui/engine/ServerView.h"
#include "ui/models/ModelsView.h"

#include <QClipboard>
#include <QMenu>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace {

// The tab whose screen shows, when exactly one does.
std::optional<AppTab> shownTab(AppOnScreen &app)
{
    const bool models = app.find<ModelsView>()->isVisible();
    const bool chat = app.find<ChatView>()->isVisible();
    const bool server = app.find<ServerView>()->isVisible();
    if (models + chat + server != 1)
        return std::nullopt;
    return models ? AppTab::models : chat ? AppTab::chat : AppTab::server;
}

void clickRow(SidebarView *sidebar, int row, Qt::KeyboardModifiers modifiers = {})
{
    const QModelIndex index = sidebar->model()->index(row, 0);
    QTest::mouseClick(sidebar->viewport(), Qt::LeftButton, modifiers, sidebar->visualRect(index).center());
}

QMap<QString, QAction *> entries(const QMainWindow *window, const QString &menu)
{
    QMap<QString, QAction *> all;
    const QList<QMenu *> menus = window->findChildren<QMenu *>();
    const auto isMeant = [&menu](const QMenu *one) { return one->title() == menu; };
    QMenu *const found = *std::find_if(menus.begin(), menus.end(), isMeant);
    Q_EMIT found->aboutToShow();
    const QList<QAction *> actions = found->actions();
    for (QAction *action : actions)
        all.insert(action->text(), action);
    return all;
}

} // namespace

class MainWindowTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void everyWayToATabShowsItsScreen()
    {
        AppOnScreen app;
        QCOMPARE(shownTab(app), AppTab::models);
        app.press(Qt::Key_2);
        QTRY_COMPARE(shownTab(app), AppTab::chat);
        app.press(Qt::Key_3);
        QTRY_COMPARE(shownTab(app), AppTab::server);
        clickRow(app.find<SidebarView>(), 0);
        QTRY_COMPARE(shownTab(app), AppTab::models);
        app->setTab(AppTab::server);
        QTRY_COMPARE(shownTab(app), AppTab::server);
        QTRY_COMPARE(app.find<SidebarView>()->currentIndex().row(), 2);

        app.press(Qt::Key_F);
        QTRY_COMPARE(shownTab(app), AppTab::chat);
        QCOMPARE(QApplication::focusWidget()->accessibleName(), u"Search chats"_s);

        // Nothing is installed: a new chat leads to the models, and says why.
        app.press(Qt::Key_N);
        QTRY_COMPARE(shownTab(app), AppTab::models);
        QTRY_VERIFY(app.shows(u"Download a model first, then you can chat with it."_s));
    }

    void keysZoomTheConversation()
    {
        AppOnScreen app;
        const TextZoom zoom(app.sandbox.defaults());
        app.press(Qt::Key_Plus);
        QCOMPARE(zoom.factor(), 1.0);
        app->setTab(AppTab::chat);
        for (const Qt::Key key : {Qt::Key_Plus, Qt::Key_Equal, Qt::Key_Minus})
            app.press(key);
        QCOMPARE(zoom.factor(), 1.1);
        app.press(Qt::Key_0);
        QCOMPARE(zoom.factor(), 1.0);
        app.sandbox.defaults().set(u"textSize"_s, 300);
        QVERIFY(!entries(app.window(), u"&View"_s)[u"&Larger Text"_s]->isEnabled());
    }

    void oneRowStaysMarked()
    {
        AppOnScreen app;
        auto *sidebar = app.find<SidebarView>();
        clickRow(sidebar, 1);
        for (const Qt::MouseButton button : {Qt::LeftButton, Qt::RightButton})
            QTest::mouseClick(sidebar->viewport(), button, {}, {80, sidebar->height() - 20});
        clickRow(sidebar, 1);
        clickRow(sidebar, 1, Qt::ControlModifier);
        QCOMPARE(sidebar->selectionModel()->selectedIndexes(), {sidebar->model()->index(1, 0)});
        QCOMPARE(app->tab(), AppTab::chat);
    }

    void menusActOnWhatShows()
    {
        AppOnScreen app;
        app->setTab(AppTab::server);
        QTRY_COMPARE(shownTab(app), AppTab::server);
        const QString address = app->engine().address();
        onscreen::find<QLabel>(app.find<ServerView>(), address)->setFocus();
        QMap<QString, QAction *> edit = entries(app.window(), u"&Edit"_s);
        QVERIFY(edit[u"&Copy"_s]->isEnabled() && !edit[u"Cu&t"_s]->isEnabled());
        QVERIFY(edit[u"&Find in Chats"_s]->isEnabled());
        edit[u"Select &All"_s]->trigger();
        edit[u"&Copy"_s]->trigger();
        QCOMPARE(QApplication::clipboard()->text(), address);

        QWidget other;
        other.setWindowTitle(u"This & that"_s);
        other.show();
        QVERIFY(entries(app.window(), u"&Window"_s).contains(u"This && that"_s));
        other.hide();
        QMap<QString, QAction *> windows = entries(app.window(), u"&Window"_s);
        QVERIFY(windows.contains(u"Tarnwick"_s) && !windows.contains(u"This && that"_s));
        windows[u"Ma&ximize"_s]->trigger();
        QVERIFY(app.window()->isMaximized());
        QVERIFY(entries(app.window(), u"&Window"_s)[u"Ma&ximize"_s]->isChecked());
    }

    void cannotBeTooSmall()
    {
        AppOnScreen app;
        app.window()->resize(10, 10);
        const QSize content = app.window()->centralWidget()->size();
        QCOMPARE(content.expandedTo({960, 620}), content);
    }
};

QTEST_MAIN(MainWindowTest)
#include "tst_mainwindow.moc"
