#include "support/Table.h"

#include <QDirIterator>
#include <QRegularExpression>

using namespace Qt::StringLiterals;

// The build keeps the floors apart by what each links; this also sees headers that need no linking.
class FloorsTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void includesPointDownward_data()
    {
        const auto row = table<QString>("forbidden");
        const QString widgets =
            u"|<QtWidgets|<Q(Application|Widget|MainWindow|Dialog|Label|PushButton|MessageBox)>"_s;
        row("platform", u"\"(core|ui)/"_s + widgets);
        row("core", u"\"ui/"_s + widgets);
        row("ui", u"\"main"_s);
    }
    void includesPointDownward()
    {
        QFETCH(const QString, forbidden);
        const QRegularExpression include(u"#include (%1)"_s.arg(forbidden));
        const QString floor = QStringLiteral(TARNWICK_SOURCE_DIR "/src/%1");
        QDirIterator walk(floor.arg(QLatin1StringView(QTest::currentDataTag())),
                          {u"*.h"_s, u"*.cpp"_s, u"*.mm"_s}, QDir::Files, QDirIterator::Subdirectories);
        QVERIFY(walk.hasNext());
        while (walk.hasNext()) {
            QFile file(walk.next());
            QVERIFY(file.open(QIODevice::ReadOnly));
            const auto match = include.match(QString::fromUtf8(file.readAll()));
            QVERIFY2(!match.hasMatch(), qPrintable(file.fileName() + ": "_L1 + match.captured()));
        }
    }
};

QTEST_GUILESS_MAIN(FloorsTest)
#include "tst_floors.moc"
