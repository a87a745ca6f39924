// The columns of a data-driven test and its rows, one call each.
#pragma once

#include <QByteArray>
#include <QTest>

// Declares the columns; every call of what is returned adds a row, its name first.
template <class... Values, class... Names>
auto table(Names... columns)
{
    static_assert(sizeof...(Values) == sizeof...(Names));
    (QTest::addColumn<Values>(columns), ...);
    return [](const QByteArray &name, const Values &...values) {
        QTestData &row = QTest::newRow(name.constData());
        (row << ... << values);
    };
}
