// The card that shares the server on the network, after a confirmation.
#pragma once

#include "ui/widgets/Card.h"

class EngineManager;
class Switch;
class TextLabel;

class NetworkCard : public Card
{
    Q_OBJECT

public:
    explicit NetworkCard(EngineManager &engine, QWidget *parent = nullptr);

private:
    void render();
    void confirmShare();
    void setShare(bool share);

    EngineManager &m_engine;
    Switch *const m_share;
    TextLabel *const m_caption;
};
