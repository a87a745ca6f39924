#include "ui/widgets/RenderScheduler.h"
#include "ui/widgets/RowListView.h"
#include "ui/widgets/Switch.h"

#include <QAccessible>
#include <QSignalSpy>
#include <QStandardItemModel>
#include <QTest>

using namespace Qt::StringLiterals;

class WidgetsTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void rendersOncePerTurnAndOnlyWhileVisible()
    {
        QWidget window;
        auto *view = new QWidget(&window);
        int renders = 0;
        auto *scheduler = new RenderScheduler(view, [&renders] { ++renders; });
        window.show();
        QVERIFY(QTest::qWaitForWindowExposed(&window));
        QCOMPARE(renders, 0);

        for (int change = 0; change < 5; ++change)
            scheduler->schedule();
        QCOMPARE(renders, 0);
        QCoreApplication::processEvents();
        QCOMPARE(renders, 1);

        view->hide();
        scheduler->schedule();
        QCoreApplication::processEvents();
        QCOMPARE(renders, 1);
        view->show();
        QCOMPARE(renders, 2);

        scheduler->schedule();
        delete view;
        QCoreApplication::processEvents();
        QCOMPARE(renders, 2);
    }

    // What a screen reader does instead of the mouse has the same effect.
    void aScreenReaderTogglesASwitch()
    {
        Switch view(u"Switch"_s);
        view.show();
        QSignalSpy clicked(&view, &Switch::clicked);
        QAccessibleActionInterface *actions = QAccessible::queryAccessibleInterface(&view)->actionInterface();
        QVERIFY(actions->actionNames().contains(QAccessibleActionInterface::toggleAction()));
        actions->doAction(QAccessibleActionInterface::toggleAction());
        QCOMPARE(clicked.takeFirst(), QVariantList{true});
        QTest::mouseClick(&view, Qt::LeftButton);
        QCOMPARE(clicked.takeFirst(), QVariantList{false});
        QTest::keyClick(&view, Qt::Key_Space);
        QCOMPARE(clicked.takeFirst(), QVariantList{true});

        // One that does not follow the wish stays as it was.
        connect(&view, &Switch::clicked, &view, [&view] { view.setChecked(false); });
        actions->doAction(QAccessibleActionInterface::toggleAction());
        QVERIFY(clicked.size() == 1 && !view.isChecked());
    }

    void aScreenReaderChoosesARow()
    {
        RowListView view;
        QStandardItemModel rows(3, 1);
        view.setModel(&rows);
        view.setCurrentIndex(rows.index(0, 0));
        view.show();
        QSignalSpy current(view.selectionModel(), &QItemSelectionModel::currentChanged);
        QAccessibleInterface *row = QAccessible::queryAccessibleInterface(&view)->child(2);
        for (int times = 0; times < 2; ++times) { // the second changes nothing
            row->actionInterface()->doAction(QAccessibleActionInterface::toggleAction());
            QCOMPARE(view.currentIndex(), rows.index(2, 0));
            QCOMPARE(view.selectionModel()->selectedIndexes(), {rows.index(2, 0)});
            QCOMPARE(current.size(), 1);
        }
        QTest::keyClick(&view, Qt::Key_Up);
        QCOMPARE(view.selectionModel()->selectedIndexes(), {rows.index(1, 0)});
    }
};

QTEST_MAIN(WidgetsTest)
#include "tst_widgets.moc"
