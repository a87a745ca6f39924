#include "core/models/ModelCatalog.h"
#include "support/AppUnderTest.h"
#include "support/OnScreen.h"
#include "support/Table.h"
#include "ui/models/DownloadProgressView.h"
#include "ui/models/FitBadge.h"
#include "ui/models/ModelDetailsView.h"
#include "ui/models/ModelRow.h"
#include "ui/models/ModelsView.h"
#include "ui/models/OtherModels.h"
#include "ui/widgets/ConfirmationDialog.h"

#include <QLineEdit>
#include <QProgressBar>
#include <QScrollBar>

using namespace Qt::StringLiterals;
using Phase = DownloadItem::Phase;

namespace {

// The models tab on the screen, alone.
struct ShownModels : AppUnderTest
{
    explicit ShownModels(const QString &installed = {})
        : AppUnderTest({{u"DEMO_ENGINE_INSTALLED"_s, installed}}), view(**this)
    {
        view.show();
        if (!QTest::qWaitForWindowActive(&view))
            qFatal("The window does not become active");
    }

    ModelRow *row(const QString &name) { return onscreen::find<ModelRow>(&view, name); }
    bool shows(const QString &name, const QString &words) { return onscreen::shows(row(name), words); }
    void click(const QString &name, const QString &button) { onscreen::click(row(name), button); }
    // The same by the keyboard.
    void press(const QString &name, const QString &button)
    {
        onscreen::find(row(name), button)->setFocus();
        QTest::keyClick(QApplication::focusWidget(), Qt::Key_Space);
    }
    QPointer<ConfirmationDialog> askToDelete(const QString &name)
    {
        click(name, u"Delete this model"_s);
        return view.findChild<ConfirmationDialog *>();
    }

    ModelsView view;
};

} // namespace

class ModelsViewTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void aRowFollowsItsModelFromDownloadToDeletion()
    {
        ShownModels app;
        const QString name = u"qwen3:0.6b"_s;
        QVERIFY(app.shows(name, u"523 MB · Limited reasoning"_s) && !app.shows(name, u"Chat"_s));
        app.setPace("{\"pullMs\":60000}");
        app.press(name, u"Download"_s);
        QTRY_VERIFY(app.shows(name, u"Cancel"_s) && !app.shows(name, u"Download"_s));
        QCOMPARE(QApplication::focusWidget(), onscreen::find(app.row(name), u"Cancel"_s));
        app.press(name, u"Cancel"_s);
        QTRY_VERIFY(app.shows(name, u"Download paused"_s));
        QVERIFY(app.row(name)->isAncestorOf(QApplication::focusWidget()));
        app.setPace("{\"pullMs\":0}");
        app.click(name, u"Resume"_s);
        QTRY_VERIFY(app.shows(name, u"Chat"_s) && !app.shows(name, u"Loaded in memory"_s));

        app.click(name, u"Chat"_s);
        QCOMPARE(app->tab(), AppTab::chat);
        app->send(u"Hello"_s, *app->chats().selectedID());
        QTRY_VERIFY(app.shows(name, u"Loaded in memory"_s));
        // The engine agrees at once, but takes too long for us to wait, and then a while.
        app.setPace(R"({"unloadMs":60000})");
        app.press(name, u"Unload"_s);
        QTRY_VERIFY(app.shows(name, u"Unloading"_s) && !onscreen::canClick(app.row(name), u"Unload"_s));
        QCOMPARE(QApplication::focusWidget(), onscreen::find(app.row(name), u"Chat"_s));
        QTRY_VERIFY(onscreen::canClick(app.row(name), u"Unload"_s) && !app.shows(name, u"Unloading"_s));
        app.setPace(R"({"unloadMs":200})");
        app.click(name, u"Unload"_s);
        QVERIFY(app->isUnloading(name));
        QTRY_VERIFY(!app->isUnloading(name));
        QVERIFY(!app->isLoaded(name));
        QTRY_VERIFY(!app.shows(name, u"Loaded in memory"_s));
        QCOMPARE(app.demo.requests(u"/api/generate"_s).size(), 2);

        QPointer<ConfirmationDialog> dialog = app.askToDelete(name);
        QVERIFY(onscreen::shows(
            dialog, u"qwen3:0.6b will be removed from your disk. You can download it again later."_s));
        onscreen::click(dialog, u"Cancel"_s);
        QTRY_VERIFY(!dialog);
        QVERIFY(app.demo.requests(u"/api/delete"_s).isEmpty());
        onscreen::click(app.askToDelete(name), u"Delete"_s);
        QTRY_VERIFY(app.shows(name, u"Download"_s));
        QCOMPARE(app->installed(), QList<InstalledModel>());
    }

    // Installed ones first, in their order, each once, and none of the catalogue.
    void otherModelNames()
    {
        QList<InstalledModel> installed;
        for (const QString &name : {u"phi3.5:latest"_s, u"b:1"_s, u"QWEN3:4b"_s, u"a:1"_s})
            installed.emplaceBack().name = name;
        QList<DownloadItem> downloads;
        for (const QString &name : {u"phi3.5"_s, u" B:1 "_s, u"A0"_s})
            downloads.emplaceBack().pullName = name;
        QCOMPARE(::otherModelNames(InstalledIndex(installed), downloads),
                 QStringList({u"b:1"_s, u"a:1"_s, u"A0"_s}));
    }

    // Of which only the rows near sight are made, whichever way the user goes.
    void aLongList()
    {
        QStringList names;
        for (int number = 300; number > 0; --number)
            names.append(u"m%1:1b"_s.arg(number, 3, 10, QChar(u'0')));
        ShownModels app(names.join(u','));
        const auto installedNames = [&app] {
            QStringList list;
            for (const InstalledModel &model : app->installed())
                list.append(model.name);
            return list;
        };
        names = installedNames();
        QCOMPARE(names.size(), 300);
        const auto made = [&app] { return app.view.findChildren<ModelRow *>().size(); };
        const auto focusedRow = []() -> ModelRow * {
            QWidget *widget = QApplication::focusWidget();
            while (widget && !qobject_cast<ModelRow *>(widget))
                widget = widget->parentWidget();
            return qobject_cast<ModelRow *>(widget);
        };
        constexpr int few = 60;
        QTRY_VERIFY(app.row(names.first()) && app.row(names.last()));
        QVERIFY(!app.row(names.at(150)) && made() < few);

        onscreen::find(app.row(names.first()), u"Chat"_s)->setFocus();
        for (int place = 0; place < 40; ++place) {
            QCOMPARE(focusedRow()->name(), names.at(place));
            QVERIFY(made() < few);
            for (int button = 0; button < 3; ++button)
                QTest::keyClick(QApplication::focusWidget(), Qt::Key_Tab);
            QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        }
        QScrollBar *const bar = app.view.verticalScrollBar();
        bar->setValue(bar->maximum());
        QTRY_VERIFY(app.row(names.at(290)) && made() < few);
        QCOMPARE(focusedRow()->name(), names.at(40)); // out of sight, but not out of reach
        QTest::keyClick(QApplication::focusWidget(), Qt::Key_Backtab);
        QCOMPARE(focusedRow()->name(), names.at(39));
        QTRY_VERIFY(app.row(names.at(30)) && !focusedRow()->visibleRegion().isEmpty());
        onscreen::find<QLineEdit>(&app.view, u"Model name"_s)->setFocus();
        for (int press = 0; press < 9 && !focusedRow(); ++press)
            QTest::keyClick(QApplication::focusWidget(), Qt::Key_Backtab);
        QVERIFY(focusedRow() && focusedRow()->name() == names.last());

        // What stays when the list changes keeps its widgets.
        const QPointer<ModelRow> first = app.row(names.first());
        app.addModel(u"new:1b"_s);
        QTRY_VERIFY(app.row(u"new:1b"_s));
        QCOMPARE(app.row(names.first()), first);
        QVERIFY(made() < few);
    }

    void addsAModelByName()
    {
        ShownModels app(u"gemma3:4b"_s);
        app.setPace("{\"pullMs\":60000}");
        auto *field = onscreen::find<QLineEdit>(&app.view, u"Model name"_s);
        const auto *button = onscreen::find<QAbstractButton>(field->parentWidget(), u"Download"_s);
        QTest::keyClicks(field, u" \u00a0"_s);
        QVERIFY(!button->isEnabled());
        QTest::keyClicks(field, u"two words"_s);
        QTest::keyClick(field, Qt::Key_Return);
        QVERIFY(app->banner() && app->queue().items().isEmpty());
        QCOMPARE(field->text(), u" \u00a0two words"_s);
        field->clear();

        QTest::keyClicks(field, u" tiny:1b "_s);
        onscreen::click(field->parentWidget(), u"Download"_s);
        QVERIFY(field->text().isEmpty() && !button->isEnabled());
        QTRY_VERIFY(app.row(u"tiny:1b"_s) && app.shows(u"tiny:1b"_s, u"size not known in advance"_s));

        QVERIFY(onscreen::shows(&app.view, u"Other models"_s));
        app->queue().cancel(u"tiny:1b"_s);
        QTRY_VERIFY(app.shows(u"tiny:1b"_s, u"Dismiss"_s));
        app.press(u"tiny:1b"_s, u"Dismiss"_s);
        QTRY_VERIFY(!app.row(u"tiny:1b"_s));
        QCOMPARE(QApplication::focusWidget(), field); // that of the row went with it
        onscreen::click(app.askToDelete(u"gemma3:4b"_s), u"Delete"_s);
        QTRY_VERIFY(!onscreen::shows(&app.view, u"Other models"_s));
    }

    void phases_data()
    {
        // The bar's end is 0 while nobody knows how long, and -1 without a bar.
        const auto row = table<Phase::Kind, qint64, QString, int>("kind", "total", "shown", "barMaximum");
        row("queued", Phase::queued, 0, u"Waiting in the queue…"_s, -1);
        row("running, no total", Phase::running, 0, u"0% · 60 bytes of Zero KB"_s, 0);
        row("running", Phase::running, 240, u"25% · 60 bytes of 240 bytes"_s, 1000);
        row("failed", Phase::failed, 240, u"<i>Out</i> of luck & time"_s, -1);
        row("cancelled", Phase::cancelled, 240, u"Download paused"_s, -1);
    }

    void phases()
    {
        QFETCH(const Phase::Kind, kind);
        QFETCH(const qint64, total);
        QFETCH(const QString, shown);
        QFETCH(const int, barMaximum);
        DownloadQueue queue;
        DownloadProgressView view(queue);
        view.show();
        DownloadItem item;
        item.status = u"pulling"_s;
        item.completed = 60;
        item.phase.message = u"<i>Out</i> of luck & time"_s;
        // Whatever it showed before leaves nothing behind.
        for (const Phase::Kind before : {Phase::running, Phase::failed, kind}) {
            item.phase.kind = before;
            item.total = before == kind ? total : 0;
            view.showItem(item);
        }
        QVERIFY(onscreen::shows(&view, shown));
        QCOMPARE(onscreen::shows(&view, u"pulling"_s), barMaximum >= 0);
        const auto *bar = onscreen::find<QProgressBar>(&view, u"Download progress"_s);
        QCOMPARE(bar ? bar->maximum() : -1, barMaximum);
        if (barMaximum > 0)
            QCOMPARE(bar->value(), 250);
        const bool isOver = kind == Phase::failed || kind == Phase::cancelled;
        QCOMPARE(onscreen::shows(&view, u"Cancel"_s), !isOver);
        QCOMPARE(onscreen::shows(&view, u"Resume"_s), isOver);
        QCOMPARE(onscreen::shows(&view, u"Dismiss"_s), isOver);
    }

    void details()
    {
        ShownModels app(u"qwen3:4b"_s);
        app.click(u"qwen3:4b"_s, u"Details"_s);
        QPointer<ModelDetailsView> sheet = app.view.findChild<ModelDetailsView *>();
        QVERIFY(onscreen::shows(sheet, u"Loading details"_s));
        QTRY_VERIFY(onscreen::shows(sheet, u"Family"_s) && !onscreen::shows(sheet, u"Loading details"_s));
        for (const QString &shown :
             {u"262144 tokens"_s, u"completion, tools, thinking"_s, u"Default settings"_s, u"License"_s})
            QVERIFY2(onscreen::shows(sheet, shown), qUtf8Printable(shown));
        QTest::keyClick(sheet, Qt::Key_Return);
        QTRY_VERIFY(!sheet);
        QCOMPARE(app.demo.requests(u"/api/show"_s).size(), 1);

        ModelDetailsView gone(app.demo.port(), u"gone:1b"_s, nullptr);
        gone.show();
        const QString failure = u"I couldn't find a model with that name in the Ollama library."_s;
        QTRY_VERIFY(onscreen::shows(&gone, failure) && !onscreen::shows(&gone, u"Loading details"_s));

        // One that closes before the answer, and takes the request with it.
        app.demo.setFaults(u"stall-early"_s);
        std::optional<ModelDetailsView> early(std::in_place, app.demo.port(), u"qwen3:4b"_s, nullptr);
        const auto last = [&app] { return app.demo.requests(u"/api/show"_s).last().toObject(); };
        QTRY_COMPARE(last()["state"_L1], u"running"_s);
        early.reset();
        QTRY_COMPARE(last()["state"_L1], u"cut"_s);
    }

    void bestPickAndFit()
    {
        ShownModels app;
        const QString best = ModelCatalog::bestPick(app->memory()).name;
        for (const CatalogModel &model : ModelCatalog::models()) {
            QCOMPARE(app.shows(model.name, u"Best pick for this Mac's memory"_s), model.name == best);
            QVERIFY(
                app.shows(model.name, FitBadge(ModelCatalog::fit(model.sizeBytes, app->memory())).text()));
        }
    }
};

QTEST_MAIN(ModelsViewTest)
#include "tst_modelsview.moc"
