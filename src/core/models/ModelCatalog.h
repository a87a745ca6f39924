// The built-in catalogue of recommended models, how well each fits a machine's memory, and the one rule by
// which model names are compared.
#pragma once

#include <QCoreApplication>
#include <QList>
#include <QString>
#include <QtGlobal>

// How a model's download size compares with the machine's memory: under 35 %, under 60 %, or more.
enum class Fit
{
    good,
    tight,
    tooBig
};

struct CatalogModel
{
    QString name;         // the engine's model name, under which it is pulled
    qint64 sizeBytes = 0; // approximate download size
    QString sizeLabel;    // the size as shown
    QString bestFor;      // one line on what the model is good for
    QString note;         // a short remark, often empty

    bool operator==(const CatalogModel &) const = default;
};

size_t qHash(const CatalogModel &model, size_t seed = 0) noexcept;

class ModelCatalog
{
    Q_DECLARE_TR_FUNCTIONS(ModelCatalog)

public:
    // Ten entries by ascending size.
    static const QList<CatalogModel> &models();

    // The entry to propose on a machine with `memory` bytes; there always is one.
    static CatalogModel bestPick(quint64 memory);

    // Whether an entry has a name of the same normalised form.
    static bool has(const QString &name);

    // How a download of `sizeBytes` fits `memory` bytes; a memory of 0 counts as 1 byte.
    static Fit fit(qint64 sizeBytes, quint64 memory);

    // The form in which names are compared: trimmed of white space other than line breaks, lower case, with
    // ":latest" where there is no tag.
    static QString normalized(const QString &name);
};
