#include "ui/app/SidebarView.h"

#include "core/app/AppState.h"
#include "ui/widgets/RenderScheduler.h"
#include "ui/widgets/RowDelegate.h"

#include <QStandardItemModel>

using namespace Qt::StringLiterals;

namespace {

struct Tab
{
    AppTab tab;
    QString label;
    QString symbol;
};

QList<Tab> tabs()
{
    return {{AppTab::models, SidebarView::tr("Models"), u"square.stack.3d.up"_s},
            {AppTab::chat, SidebarView::tr("Chat"), u"bubble.left.and.bubble.right"_s},
            {AppTab::server, SidebarView::tr("Server"), u"server.rack"_s}};
}

} // namespace

SidebarView::SidebarView(AppState &state, QWidget *parent) : RowListView(parent), m_state(state)
{
    setFixedWidth(170);
    setViewportMargins(0, 8, 0, 8);
    setAccessibleName(tr("Tabs"));
    auto *rows = new QStandardItemModel(this);
    for (const Tab &tab : tabs()) {
        auto *row = new QStandardItem(tab.label);
        row->setData(tab.symbol, RowDelegate::symbolRole);
        rows->appendRow(row);
    }
    setModel(rows);
    connect(selectionModel(), &QItemSelectionModel::currentChanged, this, [this](const QModelIndex &row) {
        if (row.isValid())
            m_state.setTab(tabs().at(row.row()).tab);
    });

    render();
    auto *scheduler = new RenderScheduler(this, [this] { render(); });
    scheduler->follow(&m_state, &AppState::tabChanged);
}

void SidebarView::render()
{
    const QList<Tab> all = tabs();
    for (int row = 0; row < all.size(); ++row) {
        if (all.at(row).tab == m_state.tab())
            setCurrentIndex(model()->index(row, 0));
    }
}
