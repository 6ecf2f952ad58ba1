#pragma once

#include "session/datasource.h"

#include <QVector>

/// The films still to be made, in order, and whether all went well so far.
class EncodeQueue final
{
public:
    void append(const DataSource &source);
    void noteFailure() { m_allSucceeded = false; } ///< frames are then kept

    bool atEnd() const { return m_position >= m_sources.size(); }
    const DataSource &current() const { return m_sources.at(m_position); }
    int position() const { return m_position; }
    bool allSucceeded() const { return m_allSucceeded; }
    void advance() { ++m_position; }

private:
    QVector<DataSource> m_sources;
    int m_position = 0;
    bool m_allSucceeded = true;
};
