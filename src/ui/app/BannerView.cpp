#include "ui/app/BannerView.h"

#include "core/app/AppState.h"
#include "ui/widgets/Announcer.h"
#include "ui/widgets/BorderlessButton.h"
#include "ui/widgets/RenderScheduler.h"
#include "ui/widgets/SelectableText.h"
#include "ui/widgets/SymbolLabel.h"

#include <QHBoxLayout>
#include <QPainter>

using namespace Qt::StringLiterals;

BannerView::BannerView(AppState &state, QWidget *parent)
    : QWidget(parent),
      m_state(state),
      m_row(new QWidget),
      m_message(new SelectableText(TextStyle::callout)),
      m_announcer(new Announcer(this))
{
    m_message->setAccessibleName(tr("Notice"));
    auto *dismiss = new BorderlessButton(tr("Dismiss"), TextStyle::body);
    dismiss->setAccessibleDescription(m_message->accessibleName());
    auto *row = new QHBoxLayout(m_row);
    row->setContentsMargins(8, 8, 8, 8);
    row->setSpacing(8);
    row->addWidget(new SymbolLabel(u"exclamationmark.triangle.fill"_s, TextStyle::headline, Tint::orange,
                                   tr("Warning")));
    row->addWidget(m_message, 1, Qt::AlignVCenter);
    row->addWidget(dismiss);
    auto *column = new QVBoxLayout(this);
    column->setContentsMargins(0, 0, 0, 0);
    column->addWidget(m_row);
    setSizePolicy(QSizePolicy::Preferred, QSizePolicy::Fixed);

    connect(dismiss, &QToolButton::clicked, this, [this] { m_state.setBanner(std::nullopt); });

    render();
    auto *scheduler = new RenderScheduler(this, [this] { render(); });
    scheduler->follow(&m_state, &AppState::bannerChanged);
}

void BannerView::render()
{
    m_message->showText(m_state.banner().value_or(QString()));
    m_row->setVisible(m_state.banner().has_value());
    if (m_state.banner())
        m_announcer->announce(m_message->toPlainText());
}

void BannerView::paintEvent(QPaintEvent *)
{
    if (!m_row->isHidden())
        QPainter(this).fillRect(rect(), tintColor(Tint::orange, palette(), 0.15));
}
