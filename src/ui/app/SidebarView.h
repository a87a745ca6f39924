// The list of the three tabs; one of them is always marked.
#pragma once

#include "ui/widgets/RowListView.h"

class AppState;

class SidebarView : public RowListView
{
    Q_OBJECT

public:
    explicit SidebarView(AppState &state, QWidget *parent = nullptr);

private:
    void render();

    AppState &m_state;
};
