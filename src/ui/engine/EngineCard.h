// The card that says where the engine program is and which version it has, and that installs or chooses
// another.
#pragma once

#include "ui/widgets/Card.h"

class ElidedLabel;
class EngineInstallView;
class EngineManager;
class SelectableText;

class EngineCard : public Card
{
    Q_OBJECT

public:
    explicit EngineCard(EngineManager &engine, QWidget *parent = nullptr);

private:
    void render();
    void fillReplacement();

    EngineManager &m_engine;
    ElidedLabel *const m_path;
    ElidedLabel *const m_version;
    EngineInstallView *const m_install;
    SelectableText *const m_error;
    QWidget *const m_replacement; // the buttons for another engine than the one found
};
