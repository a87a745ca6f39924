#include "platform/async/Launch.h"
#include "support/TestFolder.h"
#include "support/Waiting.h"
#include "ui/app/QtDesktop.h"

#include <QApplication>
#include <QLineEdit>

using namespace Qt::StringLiterals;

namespace {

using Choice = std::optional<QString>;

QFileDialog *panel(const QWidget &window)
{
    return window.findChild<QFileDialog *>();
}

} // namespace

class QtDesktopTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() { QApplication::setAttribute(Qt::AA_DontUseNativeDialogs); }

    void savesWhereTheUserSays()
    {
        const TestFolder folder;
        QWidget window;
        QtDesktop desktop;
        desktop.setMainWindow(&window);
        Task<Choice> choice = desktop.chooseSaveFile(u"The \"Trip\".md"_s);
        QVERIFY(panel(window)->isVisible());
        QCOMPARE(QFileInfo(panel(window)->selectedFiles().first()).fileName(), u"The 'Trip'.md"_s);
        panel(window)->setDirectory(folder.path());
        auto *name = panel(window)->findChild<QLineEdit *>();
        name->setText(u"notes"_s);
        QTest::keyClick(name, Qt::Key_Return);
        QCOMPARE(::waitFor(std::move(choice)), folder.filePath(u"notes.md"_s));
        QTRY_VERIFY(!panel(window));
    }

    void onePanelAtATime()
    {
        QWidget window;
        QtDesktop desktop;
        desktop.setMainWindow(&window);
        Task<Choice> first = desktop.chooseFile(u"Choose"_s);
        QCOMPARE(panel(window)->windowTitle(), u"Choose"_s);
        QCOMPARE(::waitFor(desktop.chooseSaveFile(u"a.md"_s)), Choice());
        QCOMPARE(window.findChildren<QFileDialog *>().size(), 1);
        panel(window)->reject();
        QCOMPARE(::waitFor(std::move(first)), Choice());
        QTRY_VERIFY(!panel(window));
    }

    void panelEndsWithItsSurroundings()
    {
        QtDesktop desktop;
        auto window = std::make_unique<QWidget>();
        desktop.setMainWindow(window.get());
        Task<Choice> choice = desktop.chooseFile({});
        beginQuitting();
        QCOMPARE(::waitFor(std::move(choice)), Choice());
        resumeAfterQuitting();
        choice = desktop.chooseFile({});
        window.reset();
        QCOMPARE(::waitFor(std::move(choice)), Choice());
        desktop.bringToFront();
    }

    void anActivationIsForOneMomentAlone()
    {
        QByteArray seen;
        QtDesktop desktop;
        QWidget window;
        desktop.setMainWindow(&window);
        QVERIFY(window.winId());
        connect(window.windowHandle(), &QWindow::visibleChanged, this,
                [&seen] { seen += qgetenv("XDG_ACTIVATION_TOKEN"); });
        desktop.bringToFront({"kwin-42", "host-1_TIME4711"});
        QCOMPARE(seen, "kwin-42");
        QVERIFY(!qEnvironmentVariableIsSet("XDG_ACTIVATION_TOKEN"));
    }
};

QTEST_MAIN(QtDesktopTest)
#include "tst_qtdesktop.moc"
