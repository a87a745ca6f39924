// The card that shows the engine's recent output.
#pragma once

#include "ui/widgets/Card.h"

#include <QStringList>

class EngineManager;
class LogBox;
class TextLabel;

class DetailsCard : public Card
{
    Q_OBJECT

public:
    explicit DetailsCard(EngineManager &engine, QWidget *parent = nullptr);

private:
    void render();

    EngineManager &m_engine;
    TextLabel *const m_empty;
    LogBox *const m_log;
};
