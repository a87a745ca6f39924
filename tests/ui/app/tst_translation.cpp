#include "platform/tray/TrayHost.h"
#include "support/AllTexts.h"
#include "support/PseudoTranslator.h"
#include "support/Readable.h"
#include "support/ScreenTour.h"
#include "ui/app/StatusItem.h"

#include <QRegularExpression>

using namespace Qt::StringLiterals;

namespace {

// The first text that is not; names, addresses, versions and what the engine says are nobody's to translate.
QString untranslated(const QStringList &texts)
{
    static const QRegularExpression letters(u"\\p{L}"_s);
    static const QRegularExpression data(
        u"^(Tarnwick|New chat|pulling .*|\\S*/\\S*|[a-z0-9.-]+(:[a-z0-9.]+)?( \\(\\))?)$"_s);
    for (const QString &text : texts) {
        const QString rest = PseudoTranslator::untranslated(text);
        if (rest.contains(letters) && !data.match(rest.trimmed()).hasMatch())
            return text;
    }
    return {};
}

} // namespace

// The whole program in a pseudo-language: nothing may escape translation, and what is longer than English has
// to stay readable.
class TranslationTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void screens_data() { ScreenTour::addRows(); }
    void screens()
    {
        QFETCH(const QString, screen);
        ScreenTour tour(screen);
        QTRY_COMPARE(untranslated(alltexts::ofWindow(tour.window())), QString());
        QTRY_COMPARE(readable::unreadable(tour.window(), readable::Cut::withToolTip), QString());
    }

    void statusItem()
    {
        AppUnderTest app;
        TrayHost host;
        StatusItem item(*app, app.desktop, app.sandbox.defaults(), host);
        QCOMPARE(untranslated(alltexts::ofActions(item.menu().actions())), QString());
    }

private:
    const PseudoTranslator m_language;
};

QTEST_MAIN(TranslationTest)
#include "tst_translation.moc"
