// Leads a new user in three steps from a machine with no engine to a first chat; ends for good when that chat
// is opened or the guide is skipped.
#pragma once

#include "core/models/ModelCatalog.h"
#include "ui/widgets/ScrollPage.h"

class AppState;
class DownloadProgressView;
class EngineInstallView;
class GuideStep;
class ProminentButton;
class TextLabel;
class UserDefaults;

class GuideView : public ScrollPage
{
    Q_OBJECT

public:
    // Both must outlive the view.
    GuideView(AppState &state, UserDefaults &defaults, QWidget *parent = nullptr);

    // The user has finished the guide or skipped it, now or before.
    static bool isDone(const UserDefaults &defaults);

protected:
    void showEvent(QShowEvent *event) override;

private:
    void fillEngineStep();
    void fillModelStep();
    void fillChatStep();
    void addPage();
    void render();
    void openChat();
    void finish();

    AppState &m_state;
    UserDefaults &m_defaults;
    const CatalogModel m_best;
    GuideStep *const m_engineStep;
    TextLabel *const m_engineReady;
    TextLabel *const m_engineMissing;
    EngineInstallView *const m_install;
    GuideStep *const m_modelStep;
    TextLabel *const m_modelInstalled;
    ProminentButton *const m_download; // before the progress, which takes its place and its focus
    DownloadProgressView *const m_progress;
    GuideStep *const m_chatStep;
    ProminentButton *const m_chat;
};
