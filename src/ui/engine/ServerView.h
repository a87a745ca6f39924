// The server tab: a scrolling page of four cards on the state of the server, its engine, the network and the
// engine's output.
#pragma once

#include "ui/widgets/ScrollPage.h"

class AppState;
class Desktop;

class ServerView : public ScrollPage
{
    Q_OBJECT

public:
    ServerView(AppState &state, Desktop &desktop, QWidget *parent = nullptr);
};
