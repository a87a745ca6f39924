#include "support/AllTexts.h"
#include "support/AppOnScreen.h"
#include "support/RawServer.h"
#include "ui/chat/ModelSettingsView.h"
#include "ui/models/ModelDetailsView.h"
#include "ui/models/ModelRow.h"
#include "ui/widgets/BorderlessButton.h"
#include "ui/widgets/ConfirmationDialog.h"
#include "ui/widgets/ProminentButton.h"
#include "ui/widgets/SelectableText.h"
#include "ui/widgets/TextLabel.h"

#include <QScopeGuard>

using namespace Qt::StringLiterals;

namespace {

const auto answerNothing = [](QTcpSocket &socket) {
    socket.write("HTTP/1.1 404 Not Found\r\nContent-Length: 0\r\n\r\n");
};

// What an answer, a name or a file might hold to be taken for more than text.
QString hostile(const RawServer &server)
{
    return u"<img src=\"URL\"><a href=\"URL\">x</a> & %1 %2 %n %s {0}"_s.replace("URL"_L1,
                                                                                 server.url().toString());
}

QStringList logged;

void keepLog(QtMsgType, const QMessageLogContext &, const QString &text)
{
    logged << text;
}

// The first text that would be markup to Qt.
QString markup(const QWidget &window)
{
    QCoreApplication::processEvents();
    const QList<QWidget *> all = window.findChildren<QWidget *>();
    for (const QWidget *widget : all) {
        const auto *label = qobject_cast<const QLabel *>(widget);
        if (label && label->text().contains("<img"_L1) && label->textFormat() != Qt::PlainText)
            return label->text();
        if (widget->toolTip().contains("<img"_L1) && Qt::mightBeRichText(widget->toolTip()))
            return widget->toolTip();
    }
    return {};
}

} // namespace

// Text from the engine, a model or a file, in every place of the windows that shows such text: it stays text.
class OutsideTextTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void staysTextAndFetchesNothing()
    {
        RawServer server(answerNothing);
        const QString text = hostile(server);
        AppOnScreen app({{u"DEMO_ENGINE_INSTALLED"_s, u"gemma3:4b"_s}});
        app->openChat(u"gemma3:4b"_s);
        const QUuid chat = app->chats().conversations().first().id;
        const QString picture = u"![x](%1) [y](%1)\n\n![x][1]\n\n[1]: %1\n\n"_s.arg(server.url().toString());
        QVERIFY(app.isAnswered(u"echo "_s + picture + text, chat));
        QCOMPARE(app.contents(chat).last(), picture + text);
        app->chats().rename(chat, text);
        app->chats().mutate(chat, [&text](Conversation &changed) { changed.model = text; });
        const QString name = u"%1%2%n%s<img>"_s;
        app->queue().enqueue(name, std::nullopt);
        app->setBanner(text);
        for (const AppTab tab : {AppTab::models, AppTab::chat, AppTab::server}) {
            app->setTab(tab);
            QTRY_VERIFY(alltexts::ofWindow(*app.window()).contains(tab == AppTab::models ? name : text));
            QCOMPARE(markup(*app.window()), QString());
        }
        ModelSettingsView sheet(*app, text, nullptr);
        ModelDetailsView details(app->engine().port(), text, nullptr);
        ConfirmationDialog confirmation({.title = text, .message = text, .action = text}, nullptr);
        for (QWidget *window : std::initializer_list<QWidget *>{&sheet, &details, &confirmation}) {
            window->show();
            QCOMPARE(markup(*window), QString());
        }
        // A round to a server of ours: what had been asked for before would be there by then.
        QTcpSocket last;
        last.connectToHost(QHostAddress::LocalHost, server.serverPort());
        QVERIFY(last.waitForConnected());
        QTRY_COMPARE(server.connections, 1);
        QCOMPARE(markup(details), QString());
    }

    // A name that would turn the words of ours around it does so in none of their places.
    void leavesOurWordsInTheirOrder()
    {
        const QString name = u"\u05D0\u202E\u2067x"_s;
        const QString shown = u"\u2068\u05D0x\u2069"_s;
        AppOnScreen app({{u"DEMO_ENGINE_INSTALLED"_s, u"gemma3:4b"_s}});
        app->openChat(u"gemma3:4b"_s);
        app->setTab(AppTab::chat);
        const QUuid chat = app->chats().conversations().first().id;
        app->chats().rename(chat, name);
        QTRY_VERIFY(alltexts::ofWindow(*app.window()).contains(u"\u05D0\u2067x"_s)); // alone in its place
        app->setTab(AppTab::models);
        Q_EMIT app.find<ModelRow>()->deleteRequested(name);
        auto *const dialog = app.find<ConfirmationDialog>();
        QVERIFY(dialog);
        QVERIFY(
            onscreen::words(dialog->findChild<SelectableText *>()).startsWith(shown + u" will be removed"_s));
        ModelSettingsView sheet(*app, name, nullptr);
        QCOMPARE(sheet.findChild<TextLabel *>()->text(), u"Settings for "_s + shown);
    }

    void buttonsAndTooltips()
    {
        const QString name = u"<b>a</b> && b & c"_s;
        QCOMPARE(ProminentButton(name).text(), u"<b>a</b> &&&& b && c"_s);
        QCOMPARE(BorderlessButton(u"trash"_s, name).toolTip(),
                 u"<qt>&lt;b&gt;a&lt;/b&gt; &amp;&amp; b &amp; c</qt>"_s);
    }

    void nothingOfAChatIsLogged()
    {
        AppUnderTest app({{u"DEMO_ENGINE_INSTALLED"_s, u"gemma3:4b"_s}});
        const QtMessageHandler usual = qInstallMessageHandler(keepLog);
        const auto restore = qScopeGuard([usual] { qInstallMessageHandler(usual); });
        qWarning("this is noticed");
        for (const QString &model :
             {u"gemma3:4b"_s, u"fault-error-line"_s, u"fault-reset_1"_s, u"fault-not-http"_s,
              u"fault-invalid-utf8"_s, u"fault-truncated-lines"_s}) {
            const QUuid chat = app.newConversation(model);
            QVERIFY(app.isAnswered(u"echo secret words"_s, chat));
            QVERIFY(app.saved(chat));
            app->chats().deleteConversation(chat);
        }
        QVERIFY(logged.contains(u"this is noticed"_s));
        QVERIFY2(!logged.join(u'\n').contains("secret"_L1), qUtf8Printable(logged.join(u'\n')));
    }
};

QTEST_MAIN(OutsideTextTest)
#include "tst_outsidetext.moc"
