#include "platform/appearance/AppearanceSource.h"
#include "support/Legible.h"
#include "support/ScreenTour.h"
#include "ui/app/Appearance.h"

#include <QApplication>

using namespace Qt::StringLiterals;

using namespace legibility;

using Scheme = AppearanceWishes::Scheme;

// What is written on every screen can be told from what it is written on, judged by the pixels that show.
class LegibilityTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase()
    {
        QFont font = QApplication::font();
        font.setStyleStrategy(QFont::NoAntialias); // whose edges are neither of the two colours
        QApplication::setFont(font);
    }

    void light_data() { ScreenTour::addRows(); }
    void light() { look({.scheme = Scheme::light}); }
    void dark_data() { ScreenTour::addRows(); }
    void dark() { look({.scheme = Scheme::dark}); }
    void darkWithAccent_data() { ScreenTour::addRows(); }
    void darkWithAccent() { look({.scheme = Scheme::dark, .accent = 0xffe66100}); }

private:
    void look(const AppearanceWishes &wishes)
    {
        QFETCH(const QString, screen);
        m_source.setWishes(wishes);
        ScreenTour tour(screen);
        QWidget &window = tour.window();
        QTRY_COMPARE(readable::unreadable(window, readable::Cut::withToolTip), QString());
        const QImage picture = window.grab().toImage().convertToFormat(QImage::Format_RGB32);
        const QList<Part> parts = partsOf(window);
        QVERIFY(!parts.isEmpty());
        for (const Part &part : parts) {
            const QRect inner = part.rect.marginsRemoved(part.frame) & picture.rect();
            if (inner.isEmpty())
                continue;
            const double contrast = contrastIn(picture.copy(inner));
            QVERIFY2(contrast >= part.contrast, qUtf8Printable(u"%1: %2"_s.arg(part.name).arg(contrast)));
        }
    }

    AppearanceSource m_source;
    const Appearance m_appearance{m_source};
};

QTEST_MAIN(LegibilityTest)
#include "tst_legibility.moc"
