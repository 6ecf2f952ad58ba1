#pragma once

#include <QHash>
#include <QString>
#include <QStringList>

/// How the requests of one datasource ended.
struct StatusTally
{
    int rows = 0;
    int accepted = 0;
    int duplicates = 0;
    int rejected = 0;
    int lookupErrors = 0;
    int downloadErrors = 0;
};

/// What the files of a session say, each read independently.
struct SessionEvidence
{
    static SessionEvidence of(const QString &sessionDirectory);

    StatusTally manifest; ///< of all datasources
    QString lastRequestedUtc;
    int pictures = 0; ///< in the folders, originals and annotated copies
    bool isCanceled = false;
    QStringList faults; ///< a sentence for each thing that does not agree with the manifest
};
