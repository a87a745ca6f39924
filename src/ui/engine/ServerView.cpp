#include "ui/engine/ServerView.h"

#include "core/app/AppState.h"
#include "ui/engine/DetailsCard.h"
#include "ui/engine/EngineCard.h"
#include "ui/engine/NetworkCard.h"
#include "ui/engine/StatusCard.h"
#include "ui/widgets/TextLabel.h"

ServerView::ServerView(AppState &state, Desktop &desktop, QWidget *parent) : ScrollPage(parent)
{
    auto *title = new TextLabel(tr("Server"), TextStyle::title);
    title->setBold();
    column()->addWidget(title);
    column()->addWidget(new StatusCard(state, desktop));
    column()->addWidget(new EngineCard(state.engine()));
    column()->addWidget(new NetworkCard(state.engine()));
    column()->addWidget(new DetailsCard(state.engine()));
    column()->addStretch(1);
}
