// The panel that installs the engine or lets the user choose one, and that shows how far an installation is.
#pragma once

#include <QWidget>

class Button;
class ElidedLabel;
class EngineManager;
class ProgressBar;
class ProminentButton;
class SelectableText;

class EngineInstallView : public QWidget
{
    Q_OBJECT

public:
    explicit EngineInstallView(EngineManager &engine, QWidget *parent = nullptr);

private:
    void render();

    EngineManager &m_engine;
    ProgressBar *const m_bar;
    ElidedLabel *const m_text;
    Button *const m_cancel;
    ProminentButton *const m_install;
    Button *const m_choose;
    SelectableText *const m_error;
};
