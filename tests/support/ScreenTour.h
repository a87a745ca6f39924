// Every screen of the program, one at a time, with all in it that it can show.
#pragma once

#include "core/models/ModelCatalog.h"
#include "platform/error/SimpleError.h"
#include "platform/loginitem/LoginItem.h"
#include "support/AppOnScreen.h"
#include "support/AppWithItsEngine.h"
#include "ui/app/SettingsView.h"
#include "ui/chat/ModelSettingsView.h"
#include "ui/models/ModelDetailsView.h"
#include "ui/widgets/ConfirmationDialog.h"
#include "ui/widgets/ScrollPage.h"
#include "ui/widgets/Switch.h"

#include <memory>
#include <optional>

class ScreenTour
{
public:
    // The rows of a test of them all; "screen" is the name of each.
    static void addRows()
    {
        QTest::addColumn<QString>("screen");
        for (const char *const screen :
             {"guide", "failed guide", "models", "models, server off", "models, no engine", "chat",
              "new chat", "chat, server off", "chat, no engine", "server", "server, server off",
              "server, no engine", "settings", "model settings", "details", "confirmation"})
            QTest::newRow(screen) << QString::fromLatin1(screen);
    }

    // Opens one of them; ends the test program when it does not get there.
    explicit ScreenTour(const QString &name) : m_screen(name)
    {
        if (m_screen.endsWith(QLatin1String("no engine")))
            launchWithoutEngine();
        else
            launch();
        AppState &state = this->state();
        if (m_screen.startsWith(QLatin1String("models")))
            state.setTab(AppTab::models);
        if (m_screen.startsWith(QLatin1String("chat")))
            state.setTab(AppTab::chat);
        if (m_screen.startsWith(QLatin1String("server")))
            state.setTab(AppTab::server);
        if (m_screen.endsWith(QLatin1String("server off"))) {
            state.setServer(false);
            waitUntil([&] { return state.engine().state().kind == EngineManager::State::stopped; });
        }
        openAbove();
    }

    // The window that shows the screen, laid out as things are now: the main one, or the one above it.
    QWidget &window()
    {
        QCoreApplication::processEvents();
        if (m_above)
            return *m_above;
        return m_bare ? *m_bareWindow : *m_app->window();
    }
    bool isMainWindow() const { return !m_above; }
    AppState &state() { return m_bare ? **m_bare : **m_app; }

    // Makes the window above anew, if there is one.
    void openAbove()
    {
        if (m_screen == QLatin1String("settings"))
            m_above = std::make_unique<SettingsView>(**m_app, m_app->desktop, m_app->sandbox.defaults(),
                                                     m_loginItem);
        else if (m_screen == QLatin1String("model settings"))
            m_above = std::make_unique<ModelSettingsView>(**m_app, longName, m_app->window());
        else if (m_screen == QLatin1String("details"))
            m_above =
                std::make_unique<ModelDetailsView>((*m_app)->engine().port(), longName, m_app->window());
        else if (m_screen == QLatin1String("confirmation"))
            m_above = std::make_unique<ConfirmationDialog>(confirmation(), m_app->window());
        else
            return;
        if (m_screen == QLatin1String("settings")) {
            m_above->show();
            QTest::mouseClick(m_above->findChild<Switch *>(), Qt::LeftButton);
        } else {
            m_above->open();
        }
        if (const auto *page = m_above->findChild<ScrollPage *>())
            waitUntil([page] { return page->isVisible(); });
    }

private:
    // Says at length that it cannot.
    class RefusedLoginItem final : public LoginItem
    {
    public:
        bool isEnabled() const override { return false; }
        void enable() override { throw SimpleError(QLatin1Char('/') + QString(200, QLatin1Char('y'))); }
        void disable() override {}
    };

    static inline const QString small = QStringLiteral("qwen3:0.6b");
    static inline const QString longName = QStringLiteral("hf.co/somebody-with-a-name/") +
                                           QString(60, QLatin1Char('w')) + QStringLiteral(":Q4_K_M");

    void launchWithoutEngine()
    {
        m_bare.emplace();
        m_bare->sandbox.defaults().remove(QStringLiteral("manualEnginePath"));
        m_bare->launch();
        m_bareWindow.emplace(**m_bare, m_bare->desktop, m_bare->sandbox.defaults());
        m_bareWindow->show();
    }

    void launch()
    {
        const bool guided = m_screen.endsWith(QLatin1String("guide"));
        const QString installed = guided ? QString() : small + QLatin1Char(',') + longName;
        m_app.emplace(QMap<QString, QString>{{QStringLiteral("DEMO_ENGINE_INSTALLED"), installed}},
                      guided ? AppOnScreen::first : AppOnScreen::later);
        if (m_screen == QLatin1String("failed guide"))
            failDownload(ModelCatalog::bestPick((*m_app)->memory()).name);
        if (!guided)
            haveChat();
        if (m_screen.startsWith(QLatin1String("models")))
            fillModels();
        if (m_screen == QLatin1String("new chat"))
            (*m_app)->newChat();
        (*m_app)->setBanner(QCoreApplication::translate("any", "Something went wrong."));
    }

    void failDownload(const QString &name)
    {
        AppOnScreen &app = *m_app;
        app.demo.setFaults(QStringLiteral("pull:no-space"));
        app->queue().enqueue(name, std::nullopt);
        waitUntil([&] { return app->queue().item(name)->phase.kind == DownloadItem::Phase::failed; });
        app.demo.setFaults({});
    }

    void haveChat()
    {
        (*m_app)->openChat(small);
        if (!m_app->isAnswered(QStringLiteral("1"), *(*m_app)->chats().selectedID()))
            qFatal("The model does not answer");
    }

    // A row in every state.
    void fillModels()
    {
        AppOnScreen &app = *m_app;
        failDownload(QStringLiteral("tiny:1b"));
        app.setPace("{\"pullMs\":60000}");
        app->queue().enqueue(QStringLiteral("phi3.5"), std::nullopt);
        app->queue().cancel(QStringLiteral("phi3.5"));
        const QString running = QStringLiteral("llama3.2:3b");
        app->queue().enqueue(running, std::nullopt);
        app->queue().enqueue(QStringLiteral("qwen3:1.7b"), std::nullopt);
        waitUntil([&] {
            const DownloadItem *const item = app->queue().item(running);
            return app->isLoaded(small) && item && item->speed > 0;
        });
    }

    static ConfirmationDialog::Texts confirmation()
    {
        return {.title = QCoreApplication::translate("any", "Is this so?"),
                .message = QCoreApplication::translate("any", "%1 will not come back.").arg(longName),
                .action = QCoreApplication::translate("any", "Do it")};
    }

    template <class Condition>
    static void waitUntil(const Condition &condition)
    {
        if (!QTest::qWaitFor(condition, 30'000))
            qFatal("The screen does not get there");
    }

    const QString m_screen;
    RefusedLoginItem m_loginItem;
    std::optional<AppOnScreen> m_app;
    std::optional<AppWithItsEngine> m_bare;
    std::optional<MainWindow> m_bareWindow;
    std::unique_ptr<QDialog> m_above;
};
