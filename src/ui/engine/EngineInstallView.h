// The panel that installs the engine or lets the user choose one, and that shows how far either is.
#pragma once

#include <QWidget>

class Button;
class ElidedLabel;
class EngineManager;
class ProgressBar;
class SelectableText;

class EngineInstallView : public QWidget
{
    Q_OBJECT

public:
    // To somebody without an engine, or to somebody who may want another one.
    enum class Offer
    {
        first,
        another
    };

    explicit EngineInstallView(EngineManager &engine, Offer offer = Offer::first, QWidget *parent = nullptr);

private:
    void render();

    EngineManager &m_engine;
    ProgressBar *const m_bar;
    ElidedLabel *const m_text;
    Button *const m_cancel;
    Button *const m_install;
    Button *const m_choose;
    SelectableText *const m_error;
};
