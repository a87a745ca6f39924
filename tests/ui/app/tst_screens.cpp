#include "platform/text/OutsideText.h"
#include "support/Readable.h"
#include "support/ScreenTour.h"
#include "ui/app/BannerView.h"
#include "ui/models/ModelRow.h"

#include <QAbstractItemView>
#include <QAccessible>
#include <QApplication>

using namespace Qt::StringLiterals;

namespace {

QRect placeOf(const QWidget *widget)
{
    return {widget->mapToGlobal(QPoint()), widget->size()};
}

// Whether Tab goes the way one reads from `last` to `next`; what stands beside a list comes after it.
bool goesOn(const QWidget *last, const QWidget *next)
{
    const QRect from = placeOf(last);
    const QRect to = placeOf(next);
    const bool above = to.bottom() < from.top() && !qobject_cast<const QAbstractItemView *>(last);
    const bool below = to.top() > from.bottom();
    return !above && (below || to.right() >= from.left());
}

// What a screen reader tells controls apart by.
QStringList spoken(QWidget *widget)
{
    QAccessibleInterface *const control = QAccessible::queryAccessibleInterface(widget);
    return {control->text(QAccessible::Name), control->text(QAccessible::Description),
            QString::number(control->role())};
}

// Nothing is cut off, Tab goes the way one reads, and every control has a name of its own: what is wrong with
// that.
QString fault(const QWidget &window)
{
    const QString cutOff = readable::unreadable(window, readable::Cut::never);
    if (!cutOff.isEmpty())
        return u"Cut off: "_s + cutOff;
    const QList<ScrollPage *> pages = window.findChildren<ScrollPage *>();
    for (const ScrollPage *page : pages) {
        if (page->isVisible() && page->widget()->width() > page->viewport()->width())
            return u"A page is too wide"_s;
    }
    QSet<QStringList> controls;
    const QWidget *last = nullptr;
    for (QWidget *next = window.nextInFocusChain(); next != &window; next = next->nextInFocusChain()) {
        if (!next->isVisible() || !next->isEnabled() || !(next->focusPolicy() & Qt::TabFocus) ||
            next->window() != &window || qobject_cast<const ScrollPage *>(next))
            continue;
        if (readable::nameOf(next).isEmpty())
            return u"Without a name: "_s + QString::fromLatin1(next->metaObject()->className());
        const QStringList control = spoken(next);
        if (controls.contains(control))
            return u"Named like another: "_s + readable::nameOf(next);
        controls.insert(control);
        if (last && !goesOn(last, next))
            return u"Tab goes back to "_s + readable::nameOf(next);
        last = next;
    }
    return last ? QString() : u"Nothing can have the focus"_s;
}

} // namespace

class ScreensTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init() { m_font = QApplication::font(); }
    void cleanup() { QApplication::setFont(m_font); }

    void smallAndWithALargeFont_data() { ScreenTour::addRows(); }

    void smallAndWithALargeFont()
    {
        QFETCH(const QString, screen);
        ScreenTour tour(screen);
        for (const double factor : {1.0, 1.3}) {
            QFont font = m_font;
            font.setPointSizeF(m_font.pointSizeF() * factor);
            QApplication::setFont(font);
            tour.openAbove();
            if (tour.isMainWindow())
                tour.window().resize(tour.window().minimumSizeHint());
            QTRY_COMPARE(fault(tour.window()), QString());
        }
    }

    // However much the engine writes, the window stays one.
    void textsOfAnyLength()
    {
        AppOnScreen app({{u"DEMO_ENGINE_VERSION"_s, QString(10'000, u'v')}});
        app.demo.setFaults(u"pull:error-line="_s + QString(100'000, u'x'));
        app->queue().enqueue(u"phi3.5"_s, std::nullopt);
        QTRY_COMPARE(app->queue().item(u"phi3.5"_s)->phase.kind, DownloadItem::Phase::failed);
        app->setBanner(QString(1 << 20, u'z') + QString(100, u'\n'));
        QTRY_VERIFY(app.find<BannerView>()->height() > 50);
        QVERIFY(app.find<BannerView>()->height() < 300);
        QTRY_COMPARE(fault(*app.window()), QString());
        QVERIFY(onscreen::find<ModelRow>(app.window(), u"phi3.5"_s)->height() < 620);
        app->setTab(AppTab::server);
        QTRY_VERIFY(app.shows(shownLines(u"Version "_s + QString(10'000, u'v'))));
        QTRY_COMPARE(fault(*app.window()), QString());
    }

private:
    QFont m_font;
};

QTEST_MAIN(ScreensTest)
#include "tst_screens.moc"
