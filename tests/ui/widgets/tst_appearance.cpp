#include "platform/appearance/AppearanceSource.h"
#include "platform/text/OutsideText.h"
#include "support/Table.h"
#include "ui/app/Appearance.h"
#include "ui/widgets/AppearanceWatch.h"
#include "ui/widgets/Contrast.h"
#include "ui/widgets/ElidedLabel.h"
#include "ui/widgets/Palettes.h"
#include "ui/widgets/SelectableText.h"
#include "ui/widgets/SymbolIcon.h"
#include "ui/widgets/TextLabel.h"

#include <QApplication>
#include <QClipboard>
#include <QMimeData>

using namespace Qt::StringLiterals;

class AppearanceTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void cleanup()
    {
        QApplication::setPalette(QPalette());
        QApplication::setFont(m_font);
        QCoreApplication::processEvents();
    }

    // Drawn at all, in the colour asked for and no other, and in the screen's own pixels.
    void symbols()
    {
        const QColor color(0xff, 0x80, 0x00);
        const QString all =
            u"1.circle 2.circle 3.circle bubble.left.and.bubble.right chevron.right cpu doc.on.doc "
            "checkmark.circle.fill magnifyingglass exclamationmark.triangle.fill memorychip "
            "paperplane.fill server.rack questionmark.circle square.and.pencil "
            "slider.horizontal.3 square.stack.3d.up square.and.arrow.up stop.circle.fill "
            "star.fill trash"_s;
        const QStringList symbols = all.split(u' ');
        for (const QString &symbol : symbols) {
            const QPixmap pixmap = SymbolIcon::pixmap(symbol, 18, color, 1.5);
            QCOMPARE(pixmap.size(), QSize(27, 27));
            QCOMPARE(pixmap.deviceIndependentSize(), QSizeF(18, 18));
            const QImage image = pixmap.toImage().convertToFormat(QImage::Format_ARGB32);
            int drawn = 0;
            for (int pixel = 0; pixel < 27 * 27; ++pixel) {
                const QColor found = image.pixelColor(pixel % 27, pixel / 27);
                if (found.alpha() < 200)
                    continue;
                ++drawn;
                QVERIFY2(qAbs(found.red() - color.red()) < 4 && qAbs(found.green() - color.green()) < 4 &&
                             found.blue() < 4,
                         qUtf8Printable(symbol));
            }
            QVERIFY2(drawn > 20, qUtf8Printable(symbol));
        }
    }

    void tintsFollowThePalette()
    {
        const QPalette light = QApplication::palette();
        QWidget window;
        const TextLabel label(u"Text"_s, TextStyle::body, Tint::secondary, &window);
        const SelectableText text(TextStyle::body, Tint::red, &window);
        window.show();
        QPalette dark = light;
        dark.setColor(QPalette::Window, Qt::black);
        dark.setColor(QPalette::WindowText, Qt::white);
        for (const QPalette &palette : {light, dark, light}) {
            QApplication::setPalette(palette);
            QCoreApplication::processEvents();
            QCOMPARE(label.palette().color(QPalette::WindowText), tintColor(Tint::secondary, palette));
            QCOMPARE(text.palette().color(QPalette::Text), tintColor(Tint::red, palette));
            // What is written in a colour stands out from the ground it stands on.
            for (const Tint tint : {Tint::text, Tint::green, Tint::orange, Tint::red}) {
                const float ground = palette.color(QPalette::Window).lightnessF();
                QVERIFY(qAbs(tintColor(tint, palette).lightnessF() - ground) > 0.3F);
            }
        }
    }

    void palettes_data()
    {
        using Scheme = AppearanceWishes::Scheme;
        const auto row = table<AppearanceWishes, bool, bool>("wishes", "isThemeDark", "isDark");
        row("no wish", {}, false, false);
        row("no wish, dark theme", {}, true, true);
        row("dark, light theme", {.scheme = Scheme::dark}, false, true);
        row("dark theme already", {.scheme = Scheme::dark}, true, true);
        row("light, dark theme", {.scheme = Scheme::light}, true, false);
        row("contrast", {.moreContrast = true}, false, false);
        row("contrast, dark theme", {.moreContrast = true}, true, true);
        row("faint accent", {.accent = 0xfffff0a0}, false, false);
        row("dark accent on dark", {.scheme = Scheme::dark, .accent = 0xff101040}, false, true);
    }

    void palettes()
    {
        QFETCH(const AppearanceWishes, wishes);
        QFETCH(const bool, isThemeDark);
        QPalette theme(isThemeDark ? QColor(0x31, 0x36, 0x3b) : QColor(0xef, 0xf0, 0xf1));
        theme.setColor(QPalette::PlaceholderText, Qt::red);
        theme.setColor(QPalette::Inactive, QPalette::WindowText, theme.color(QPalette::Mid));
        theme.setColor(QPalette::Inactive, QPalette::HighlightedText, theme.color(QPalette::Highlight));
        const QPalette palette = paletteFor(wishes, theme);
        QTEST(isDark(palette), "isDark");
        QCOMPARE(isHighContrast(palette), wishes.moreContrast);
        const auto contrast = [&palette](QPalette::ColorRole ink, QPalette::ColorRole ground) {
            const auto in = [=, &palette](QPalette::ColorGroup group) {
                return contrastRatio(palette.color(group, ink), palette.color(group, ground));
            };
            return std::min(in(QPalette::Active), in(QPalette::Inactive));
        };
        QVERIFY(contrast(QPalette::PlaceholderText, QPalette::Base) >= textContrast);
        QVERIFY(contrast(QPalette::Link, QPalette::Base) >= textContrast);
        QVERIFY(contrast(QPalette::HighlightedText, QPalette::Highlight) >= textContrast);
        QVERIFY(contrast(QPalette::WindowText, QPalette::Window) >= (wishes.moreContrast ? 15 : 7));
        QCOMPARE(paletteFor(wishes, palette), palette);
        QCOMPARE(isDark(paletteFor(wishes, theme, ThemeRole::decides)), isThemeDark);
    }

    // The theme's colours come back where the wishes go.
    void followsTheWishes()
    {
        AppearanceSource source;
        const Appearance appearance(source);
        const QPalette before = QApplication::palette();
        source.setWishes({.scheme = AppearanceWishes::Scheme::dark, .lessMotion = true});
        QVERIFY(isDark(QApplication::palette()) && AppearanceWatch::shared().isMotionReduced());
        source.setWishes({});
        QCOMPARE(QApplication::palette(), before);
        QVERIFY(!AppearanceWatch::shared().isMotionReduced());
    }

    void textSizesFollowTheFont()
    {
        TextLabel title(TextStyle::title);
        title.show();
        QFont large = m_font;
        large.setPointSizeF(20);
        QApplication::setFont(large);
        QCoreApplication::processEvents();
        QCOMPARE(title.font().pointSizeF(), 34.0);
        large.setPixelSize(20);
        QApplication::setFont(large);
        QCoreApplication::processEvents();
        QCOMPARE(title.font().pixelSize(), 34);
    }

    void shortened_data()
    {
        const auto row = table<QString, QString>("text", "shown");
        const QString lines = u"line\n"_s.repeated(11);
        row("longer", QString(1001, u'a'), QString(1000, u'a') + u'…');
        row("no half character", QString(999, u'a') + u"\U0001F600"_s, QString(999, u'a') + u'…');
        const QString turning = u"a\u05d0"_s.repeated(101);
        row("201 turns", turning, turning.first(201) + u'…');
        row("13 lines", lines + u"12\n13"_s, lines + u"12…"_s);
    }

    void shortened()
    {
        QFETCH(const QString, text);
        QTEST(shownLines(text), "shown");
    }

    void cutsOnlyWhatDoesNotFit()
    {
        for (int size = 8; size < 20; ++size) {
            QFont font = m_font;
            font.setPointSize(size);
            QApplication::setFont(font);
            for (const QString &name : {u"phi3.5"_s, u"qwen2.5-coder:7b"_s, u"http://127.0.0.1:11435"_s}) {
                const ElidedLabel label(name, TextStyle::headline);
                const QFontMetrics metrics(label.font());
                QCOMPARE(metrics.elidedText(name, Qt::ElideMiddle, label.sizeHint().width()), name);
            }
        }
    }

    void growingTextKeepsTheSelection()
    {
        SelectableText text(TextStyle::body);
        text.resize(300, 200);
        text.showText(u"One two"_s);
        text.moveCursor(QTextCursor::Start);
        QVERIFY(text.find(u"two"_s));
        text.showText(u"One two\u00a0three\n<i>four</i>"_s);
        QCOMPARE(text.textCursor().selectedText(), u"two"_s);
        text.selectAll();
        text.copy();
        QCOMPARE(QApplication::clipboard()->text(), u"One two\u00a0three\n<i>four</i>"_s);
        QVERIFY(!QApplication::clipboard()->mimeData()->hasHtml());
        text.showText(u"Other"_s);
        QCOMPARE(text.toPlainText(), u"Other"_s);
    }

private:
    const QFont m_font = QApplication::font();
};

QTEST_MAIN(AppearanceTest)
#include "tst_appearance.moc"
