#include "ui/widgets/LazyColumn.h"

#include "ui/widgets/ScrollPage.h"

#include <QEvent>
#include <QHash>
#include <QResizeEvent>
#include <QScopedValueRollback>
#include <QScrollBar>

#include <algorithm>
#include <set>
#include <utility>

namespace {

// Made beyond those in sight, so that the Tab key and a screen reader find them.
constexpr int rowsBeyond = 8;

} // namespace

LazyColumn::LazyColumn(ScrollPage &page, int spacing, Make make)
    : m_page(page), m_spacing(spacing), m_make(std::move(make))
{
    setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
    page.viewport()->installEventFilter(this);
    connect(page.verticalScrollBar(), &QScrollBar::valueChanged, this, &LazyColumn::arrange);
}

void LazyColumn::setKeys(const QStringList &keys)
{
    if (keys == m_keys)
        return;
    QHash<QString, QWidget *> left;
    for (const auto &[place, row] : m_rows)
        left.insert(m_keys.at(place), row);
    m_keys = keys;
    m_rows.clear();
    for (int place = 0; place < keys.size() && !left.isEmpty(); ++place) {
        if (QWidget *const row = left.take(keys.at(place)))
            m_rows.emplace(place, row);
    }
    for (QWidget *row : std::as_const(left))
        drop(row);
    guessHeights();
    arrange();
}

QList<QWidget *> LazyColumn::rows() const
{
    QList<QWidget *> list;
    for (const auto &[place, row] : m_rows)
        list.append(row);
    return list;
}

QSize LazyColumn::sizeHint() const
{
    int width = 0;
    for (const auto &[place, row] : m_rows)
        width = std::max(width, row->minimumSizeHint().width());
    return {width, std::clamp(m_heights.total() - m_spacing, 0, QWIDGETSIZE_MAX)};
}

bool LazyColumn::event(QEvent *event)
{
    if (event->type() == QEvent::LayoutRequest)
        arrange();
    return QWidget::event(event);
}

bool LazyColumn::eventFilter(QObject *watched, QEvent *event)
{
    if (event->type() == QEvent::Resize)
        arrange();
    return QWidget::eventFilter(watched, event);
}

void LazyColumn::moveEvent(QMoveEvent *)
{
    arrange();
}

void LazyColumn::resizeEvent(QResizeEvent *event)
{
    if (event->size().width() == event->oldSize().width())
        return;
    m_guess = 0;
    arrange();
}

void LazyColumn::showEvent(QShowEvent *)
{
    arrange();
}

void LazyColumn::arrange()
{
    if (m_arranging)
        return;
    {
        const QScopedValueRollback<bool> arranging(m_arranging, true);
        arrangeRows();
        if (const QSize hint = sizeHint(); std::exchange(m_hint, hint) != hint)
            updateGeometry();
    }
    if (std::exchange(m_madeSome, false))
        Q_EMIT rowsMade();
}

void LazyColumn::arrangeRows()
{
    if (m_keys.isEmpty())
        return;
    const int top = -mapTo(m_page.viewport(), QPoint()).y();
    const int anchor = m_heights.at(top);
    const int anchorTop = m_heights.top(anchor);
    makeSeen(top, top + m_page.viewport()->height());
    for (const auto &[place, row] : m_rows) {
        row->move(0, m_heights.top(place));
        if (m_madeSome)
            row->raise(); // the order in which screen readers find them
        row->show();
    }
    // What grows above the view does not move what is seen.
    const int growth = m_heights.top(anchor) - anchorTop;
    if (top > 0 && growth != 0)
        m_page.verticalScrollBar()->setValue(m_page.verticalScrollBar()->value() + growth);
}

// Makes the rows between two heights of the column and those that go with them; the others go.
void LazyColumn::makeSeen(int top, int bottom)
{
    for (const auto &[place, row] : m_rows)
        measure(place, row);
    ensure(0);
    const int first = m_heights.at(top);
    const int count = static_cast<int>(m_keys.size());
    int end = first;
    for (; end < count && m_heights.top(end) < bottom; ++end)
        ensure(end);

    std::set<int> wanted{0, count - 1};
    for (int place = first - rowsBeyond; place < end + rowsBeyond; ++place)
        wanted.insert(std::clamp(place, 0, count - 1));
    if (const int focused = focusedPlace(); focused >= 0) {
        for (const int place : {focused - 1, focused, focused + 1})
            wanted.insert(std::clamp(place, 0, count - 1));
    }
    std::erase_if(m_rows, [&](const auto &each) {
        const bool goes = !wanted.contains(each.first);
        if (goes)
            drop(each.second);
        return goes;
    });
    for (const int place : wanted)
        ensure(place);
}

void LazyColumn::ensure(int place)
{
    if (m_rows.contains(place))
        return;
    QWidget *const row = m_make(m_keys.at(place));
    row->setParent(this);
    m_rows.emplace(place, row);
    m_madeSome = true;
    measure(place, row);
}

void LazyColumn::measure(int place, QWidget *row)
{
    const int height = row->hasHeightForWidth() ? row->heightForWidth(width()) : row->sizeHint().height();
    row->resize(width(), height);
    if (m_guess > 0 && height >= m_guess) {
        m_heights.set(place, height + m_spacing);
        return;
    }
    m_guess = height;
    guessHeights();
}

void LazyColumn::guessHeights()
{
    m_heights.truncate(0);
    auto made = m_rows.begin();
    for (int place = 0; place < m_keys.size(); ++place) {
        const bool isMade = made != m_rows.end() && made->first == place;
        m_heights.append((isMade ? (made++)->second->height() : m_guess) + m_spacing);
    }
}

// The place of the row that has the focus, or -1.
int LazyColumn::focusedPlace() const
{
    const QWidget *const focused = window()->focusWidget();
    const auto holdsIt = [focused](const auto &each) { return each.second->isAncestorOf(focused); };
    const auto found = std::ranges::find_if(m_rows, holdsIt);
    return focused && found != m_rows.end() ? found->first : -1;
}

void LazyColumn::drop(QWidget *row)
{
    if (row->isAncestorOf(window()->focusWidget()))
        Q_EMIT focusLeaves();
    row->hide();
    row->deleteLater();
}
