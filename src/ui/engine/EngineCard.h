// The card that says where the engine program is and which version it has, and that installs or chooses
// another.
#pragma once

#include "ui/widgets/Card.h"

class ElidedLabel;
class EngineInstallView;
class EngineManager;

class EngineCard : public Card
{
    Q_OBJECT

public:
    explicit EngineCard(EngineManager &engine, QWidget *parent = nullptr);

private:
    void render();

    EngineManager &m_engine;
    ElidedLabel *const m_path;
    ElidedLabel *const m_version;
    EngineInstallView *const m_first;   // while there is no engine
    EngineInstallView *const m_another; // than the one found
};
