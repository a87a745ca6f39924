#include "support/AppUnderTest.h"
#include "support/InputMethod.h"
#include "support/ModelSettingsOnScreen.h"
#include "support/Table.h"

#include <QAccessible>
#include <QClipboard>
#include <QMimeData>
#include <QSignalSpy>

#include <cmath>

using namespace Qt::StringLiterals;

class ModelSettingsViewTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void storesEveryEdit_data()
    {
        const auto row = table<QString, QString, ModelSettings>("control", "input", "stored");
        row("prompt", u"System prompt"_s, u"Be <b>"_s, {u"Be <b>"_s});
        row("temperature most", u"Temperature"_s, u"End"_s, {{}, 2});
        row("top p down", u"Top P"_s, u"Left"_s, {{}, 0.8, 0.89});
        for (const int tokens : {2048, 8192, 16384, 32768, 65536, 131072})
            row(QByteArray::number(tokens), u"Context length"_s, u"%1 tokens"_s.arg(tokens),
                {{}, 0.8, 0.9, tokens});
        const auto kept = [&row](const QString &entry, int minutes) {
            row(entry.toUtf8(), u"Keep loaded"_s, entry, {{}, 0.8, 0.9, 4096, minutes});
        };
        kept(u"Unload right away"_s, 0);
        kept(u"30 minutes"_s, 30);
        kept(u"2 hours"_s, 120);
        kept(u"Until I stop the server"_s, -1);
    }
    void storesEveryEdit()
    {
        QFETCH(const QString, control);
        QFETCH(const QString, input);
        QFETCH(const ModelSettings, stored);
        AppUnderTest app;
        const ModelSettingsOnScreen sheet(*app);
        if (auto *const slider = sheet.slider(control))
            QTest::keySequence(slider, QKeySequence(input));
        else if (auto *const picker = sheet.picker(control))
            choose(picker, input);
        else
            QTest::keyClicks(sheet.prompt(), input);
        QCOMPARE(app->modelSettings(), (ModelSettingsMap{{sheet.model, stored}}));
    }

    void typingAndComposing()
    {
        AppUnderTest app;
        const ModelSettingsOnScreen sheet(*app);
        PromptEditor *prompt = sheet.prompt();
        QTest::keyClicks(prompt, u"ac"_s);
        QGuiApplication::clipboard()->setMimeData(new QMimeData);
        prompt->paste();
        QCOMPARE(sheet.stored().systemPrompt, u"ac"_s);
        QTest::keyClick(prompt, Qt::Key_Left);
        const QSignalSpy changed(&*app, &AppState::modelSettingsChanged);
        inputmethod::compose(prompt, u"にほ"_s);
        QTest::keyClick(prompt, Qt::Key_Return);
        QTest::keyClick(prompt, Qt::Key_Escape);
        QVERIFY(sheet.view->isVisible());
        QCOMPARE(changed.size(), 0);
        inputmethod::commit(prompt, u"日\u00a0本"_s);
        QCOMPARE(sheet.stored().systemPrompt, u"a日\u00a0本c"_s);

        // Another control's change leaves the cursor where it is.
        QTest::keyClick(sheet.slider(u"Top P"_s), Qt::Key_End);
        QTRY_VERIFY(onscreen::shows(sheet.view, u"1.00"_s));
        QTest::keyClick(prompt, Qt::Key_Return);
        QTest::keyClicks(prompt, u"b"_s);
        QCOMPARE(sheet.stored().systemPrompt, u"a日\u00a0本\nbc"_s);
    }

    void slidersStoreWhatTheyReach()
    {
        AppUnderTest app;
        const ModelSettingsOnScreen sheet(*app);
        ContinuousSlider *slider = sheet.slider(u"Temperature"_s);
        QTest::keyClick(slider, Qt::Key_Home);
        const int middle = slider->height() / 2;
        const QPoint target(qRound(0.71 * slider->width()), middle);
        QTest::mousePress(slider, Qt::LeftButton, {}, {6, middle});
        QTest::mouseMove(slider, target);
        QTest::mouseRelease(slider, Qt::LeftButton, {}, target);
        const double reached = sheet.stored().temperature;
        QVERIFY(std::abs(reached - 1.42) < 0.05);
        QTRY_VERIFY(onscreen::shows(sheet.view, QString::number(reached, 'f', 2)));
        // A screen reader says the number, and not where the handle stands.
        QAccessibleInterface *const spoken = QAccessible::queryAccessibleInterface(slider);
        QCOMPARE(spoken->valueInterface()->currentValue(), sheet.stored().temperature);
        spoken->valueInterface()->setCurrentValue(1.2345);
        QVERIFY(std::abs(sheet.stored().temperature - 1.2345) < 0.001);
        QCOMPARE(spoken->text(QAccessible::Value), u"1.23"_s);
    }

    // What no control could have brought about.
    void unknownValuesStay()
    {
        AppUnderTest app;
        ModelSettings odd{u"one\r\ntwo\rthree\u2028four\u00a0"_s, 0.1234567891, 7.5, 6000, 7};
        app->setSettings(odd, u"gemma3:4b"_s);
        const ModelSettingsOnScreen sheet(*app);
        QCOMPARE(sheet.picker(u"Context length"_s)->currentIndex(), -1);
        QCOMPARE(sheet.picker(u"Keep loaded"_s)->currentIndex(), -1);
        QVERIFY(onscreen::shows(sheet.view, u"0.12"_s) && onscreen::shows(sheet.view, u"7.50"_s));
        choose(sheet.picker(u"Context length"_s), u"8192 tokens"_s);
        odd.numCtx = 8192;
        QTRY_COMPARE(sheet.picker(u"Context length"_s)->currentIndex(), 2);
        QCOMPARE(sheet.stored(), odd);

        // Another model has the defaults, and choosing one of them anew stores nothing.
        const ModelSettingsOnScreen other(*app, u"gemma3"_s);
        QVERIFY(other.showsDefaults());
        choose(other.picker(u"Keep loaded"_s), u"5 minutes"_s);
        QCOMPARE(app->modelSettings().size(), 1);
    }

    void resetAndDone()
    {
        AppUnderTest app;
        app->setSettings({u"Be brief"_s, 1.5, 0.1, 8192, -1}, u"gemma3:4b"_s);
        const ModelSettingsOnScreen sheet(*app);
        QCOMPARE(sheet.prompt()->toPlainText(), u"Be brief"_s);
        onscreen::click(sheet.view, u"Reset to defaults"_s);
        QCOMPARE(app->modelSettings(), (ModelSettingsMap{{sheet.model, {}}}));
        QTRY_VERIFY(sheet.showsDefaults());
        QTest::keyClick(sheet.slider(u"Top P"_s), Qt::Key_Return);
        QTRY_VERIFY(!sheet.view);
    }
};

QTEST_MAIN(ModelSettingsViewTest)
#include "tst_modelsettingsview.moc"
