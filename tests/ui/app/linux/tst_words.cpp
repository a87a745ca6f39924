#include "core/api/Friendly.h"
#include "platform/tray/TrayHost.h"
#include "support/AllTexts.h"
#include "support/ScreenTour.h"
#include "ui/app/StatusItem.h"
#include "ui/app/Translations.h"

#include <QRegularExpression>

using namespace Qt::StringLiterals;

// Nobody's desktop is called by the name of another.
class WordsTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void screens_data() { ScreenTour::addRows(); }
    void screens()
    {
        QFETCH(const QString, screen);
        ScreenTour tour(screen);
        QTRY_COMPARE(ofApple(alltexts::ofWindow(tour.window())), QStringList());
    }

    void elsewhere()
    {
        AppUnderTest app;
        TrayHost host;
        StatusItem item(*app, app.desktop, app.sandbox.defaults(), host);
        QStringList texts = alltexts::ofActions(item.menu().actions());
        texts << Friendly::text(u"model requires more system memory (9 GiB) than is available"_s);
        QCOMPARE(ofApple(texts), QStringList());
        QVERIFY(texts.last().contains("computer"_L1));
    }

private:
    static QStringList ofApple(const QStringList &texts)
    {
        static const QRegularExpression words(u"\\b(Mac|macOS|Finder|[Mm]enu bar)\\b"_s);
        return texts.filter(words);
    }

    // A language that the program does not speak: English, then, with this system's words.
    const Translations m_translations{QLocale(u"tlh"_s)};
};

QTEST_MAIN(WordsTest)
#include "tst_words.moc"
